#include "platform/launch.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::string text_of(fs::path const &file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

class Launch : public testing::Test {
protected:
  Launch() {
    std::string name = (fs::temp_directory_path() / "launch-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    folder_ = name;
  }
  ~Launch() override { fs::remove_all(folder_); }

  std::string program(std::string const &body) {
    fs::path const file = folder_ / "program";
    std::ofstream(file) << body;
    fs::permissions(file, fs::perms::owner_all);
    return file.string();
  }

  fs::path folder_;
};

TEST_F(Launch, ProgramRunsOnItsOwn) {
  fs::path const told = folder_ / "told";
  int open_end[2];
  ASSERT_EQ(pipe(open_end), 0);  // not closed on exec: the program must not get it all the same
  std::signal(SIGUSR1, SIG_IGN);  // a program must not start with what we ignore
  std::string const path = program("#!/bin/sh\n{ echo $$; grep SigIgn /proc/$$/status; printf '%s|' \"$@\"; "
                                   "ls -l /proc/$$/fd; } > '" +
                                   told.string() + ".new'\nmv '" + told.string() + ".new' '" + told.string() + "'\n");
  pid_t process = 0;
  EXPECT_EQ(fax::launch({path, "a b", "$HOME"}, &process), 0);
  std::signal(SIGUSR1, SIG_DFL);
  for (int i = 0; i < 500 && !fs::exists(told); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  std::string const text = text_of(told);
  EXPECT_THAT(text, testing::StartsWith(std::to_string(process) + "\nSigIgn:\t0000000000000000\na b|$HOME|"));
  struct stat pipe_status;
  ASSERT_EQ(fstat(open_end[0], &pipe_status), 0);
  EXPECT_THAT(text, testing::HasSubstr("2 -> /dev/null"));
  EXPECT_THAT(text, testing::Not(testing::HasSubstr("pipe:[" + std::to_string(pipe_status.st_ino) + "]")));
  for (int end : open_end) close(end);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);  // no child is left to us
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(Launch, FailuresAreTold) {
  EXPECT_EQ(fax::launch({}), EINVAL);
  EXPECT_EQ(fax::launch({"no-such-program-anywhere"}), ENOENT);
  EXPECT_EQ(fax::launch({folder_.string()}), ENOENT);  // a folder
  EXPECT_EQ(fax::launch({program("#!/no/such/interpreter\n")}), ENOENT);
  EXPECT_EQ(fax::launch({program("no program at all")}), ENOEXEC);
}

}  // namespace
