#include "tool.h"

#include <gtest/gtest.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

extern char **environ;

namespace fax::tool::testing {

Outcome run(std::vector<std::string> const &command, std::string const &input) {
  Folder const files;
  std::string const in = files.file("in", input), out = files / "out", err = files / "err";
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 1, out.c_str(), O_WRONLY | O_CREAT, 0600);
  posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY | O_CREAT, 0600);
  std::vector<char *> words;
  for (std::string const &word : command) words.push_back(const_cast<char *>(word.c_str()));
  words.push_back(nullptr);
  pid_t child = 0;
  int const fault = posix_spawnp(&child, words[0], &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  EXPECT_EQ(fault, 0) << command[0];
  int status = 0;
  if (fault != 0 || waitpid(child, &status, 0) != child) return {};
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), content_of(out), content_of(err)};
}

Outcome gad(std::vector<std::string> arguments, std::string const &input) {
  arguments.insert(arguments.begin(), GAD);
  return run(arguments, input);
}

Folder::Folder() : path_(std::filesystem::temp_directory_path() / "gad.XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) std::abort();
}

Folder::~Folder() { std::filesystem::remove_all(path_); }

std::string Folder::file(std::string const &name, std::string const &content) const {
  std::ofstream(*this / name, std::ios::binary) << content;
  return *this / name;
}

std::string Folder::book(std::string const &name) const {
  EXPECT_EQ(gad({"create", *this / name}).code, 0);
  return *this / name;
}

std::vector<std::string> Folder::names() const {
  std::vector<std::string> names;
  for (auto const &entry : std::filesystem::directory_iterator(path_)) names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

std::string content_of(std::string const &path) {
  std::ostringstream content;
  content << std::ifstream(path, std::ios::binary).rdbuf();
  return content.str();
}

}  // namespace fax::tool::testing
