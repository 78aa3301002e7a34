#include "host/output.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <thread>
#include <vector>

#include "texts/texts.h"

extern char **environ;

namespace fax::host {
namespace {

namespace fs = std::filesystem;

Failure file_failure(std::string const &path, int error) {
  return {ExitCode::file, tr("The file \"{0}\" cannot be written: {1}.", path, std::strerror(error)),
          tr("Choose another folder or make room there.")};
}

// A new file that is removed unless it is kept.
class FreshFile {
 public:
  // pattern ends in XXXXXX and suffix.
  FreshFile(std::string pattern, int suffix) : path_(std::move(pattern)), fd_(mkstemps(path_.data(), suffix)) {}
  ~FreshFile() {
    if (fd_ < 0) return;
    close(fd_);
    if (!kept_) unlink(path_.c_str());
  }
  FreshFile(FreshFile const &) = delete;
  FreshFile &operator=(FreshFile const &) = delete;

  int fd() const { return fd_; }
  std::string const &path() const { return path_; }
  void keep() { kept_ = true; }

 private:
  std::string path_;
  int fd_;
  bool kept_ = false;
};

std::optional<std::string> program(std::string const &name) {
  char const *const path_of_shells = std::getenv("PATH");
  std::string const folders = std::string(path_of_shells ? path_of_shells : "") + ":/usr/sbin:/sbin";
  for (std::size_t at = 0; at <= folders.size();) {
    std::size_t const end = std::min(folders.find(':', at), folders.size());
    std::string const path = folders.substr(at, end - at) + "/" + name;
    if (end > at && access(path.c_str(), X_OK) == 0 && fs::is_regular_file(path)) return path;
    at = end + 1;
  }
  return std::nullopt;
}

// Starts a program with nothing to read and its output in the given file; 0 when it cannot be started.
pid_t start(std::vector<std::string> arguments, int output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output, 1);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  std::vector<char *> words;
  words.reserve(arguments.size() + 1);
  for (auto &argument : arguments) words.push_back(argument.data());
  words.push_back(nullptr);
  pid_t pid = 0;
  int const failed = posix_spawn(&pid, words[0], &actions, nullptr, words.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  return failed ? 0 : pid;
}

std::optional<Failure> copy(Document const &document, int fd, std::string const &path, OutputProgress const &progress) {
  std::array<char, 65536> buffer;
  std::uint64_t done = 0;
  for (;;) {
    if (progress && !progress(done, document.size())) {
      return Failure{ExitCode::cancelled, tr("Writing the file was cancelled."), ""};
    }
    auto const got = document.read(done, buffer);
    if (!got) return got.failure();
    if (got.value() == 0) return std::nullopt;
    for (std::size_t at = 0; at < got.value();) {
      ssize_t const written = write(fd, buffer.data() + at, got.value() - at);
      if (written < 0 && errno == EINTR) continue;
      if (written < 0) return file_failure(path, errno);
      at += static_cast<std::size_t>(written);
    }
    done += got.value();
  }
}

std::optional<Failure> fill(Document const &document, FreshFile &file, std::string const &path,
                            OutputProgress const &progress) {
  if (document.format() != "application/pdf") {
    return Failure{ExitCode::file, tr("The document \"{0}\" cannot be turned into a PDF.", document.title()),
                   tr("Save it as PDF in the program that made it, and print that file.")};
  }
  auto failed = copy(document, file.fd(), path, progress);
  if (!failed && fsync(file.fd()) != 0) failed = file_failure(path, errno);
  return failed;
}

}  // namespace

std::optional<Failure> write_output(Document const &document, std::string const &path, OutputProgress const &progress) {
  FreshFile file{path + ".XXXXXX", 0};
  if (file.fd() < 0) return file_failure(path, errno);
  if (auto failed = fill(document, file, path, progress)) return failed;
  mode_t const mask = umask(0);
  umask(mask);
  fchmod(file.fd(), 0666 & ~mask);
  std::error_code failed;
  fs::rename(file.path(), path, failed);
  if (failed) return file_failure(path, failed.value());
  file.keep();
  return std::nullopt;
}

std::optional<Failure> open_preview(Document const &document, OutputProgress const &progress) {
  auto const opener = program("xdg-open");
  if (!opener) {
    return Failure{ExitCode::file, tr("The preview cannot be opened: the program {0} is not installed.", "xdg-open"),
                   tr("Install the package {0}, or choose \"Save as File\".", "xdg-utils")};
  }
  FreshFile file{(fs::temp_directory_path() / "faxprint-XXXXXX.pdf").string(), 4};
  if (file.fd() < 0) return file_failure(file.path(), errno);
  if (auto failed = fill(document, file, file.path(), progress)) return failed;
  int const nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  pid_t const pid = start({*opener, file.path()}, nowhere);
  close(nowhere);
  int status = 0;
  bool ended = false;
  for (int tick = 0; pid && !ended && tick < 150; ++tick) {
    ended = waitpid(pid, &status, WNOHANG) == pid;
    if (!ended) std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  if (!pid || (ended && !(WIFEXITED(status) && WEXITSTATUS(status) == 0))) {
    return Failure{ExitCode::file, tr("The preview cannot be opened: no program shows this kind of file."),
                   tr("Install a PDF viewer, or choose \"Save as File\".")};
  }
  file.keep();
  return std::nullopt;
}

}  // namespace fax::host
