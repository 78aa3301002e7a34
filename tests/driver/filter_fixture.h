// Runs the driver's filter as CUPS does: a program with its job in the arguments.
#pragma once

#include "fax_job.h"

#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace fax::test {

struct Ended {
  int code = -1;  // exit code, or -signal
  std::string output, messages;
  long most_memory = 0;  // kB
};

class FilterTest : public testing::Test {
 protected:
  // Arguments after the program's name. `during` runs while the filter does and gets its process number.
  Ended run(std::vector<std::string> const &arguments, std::string const &input_path,
            std::function<void(pid_t)> const &during = {}) {
    auto const out_path = folder_.path() / "stdout", messages_path = folder_.path() / "stderr";
    std::vector<std::string> words{FILTER};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char *> argv;
    for (auto &word : words) argv.push_back(word.data());
    argv.push_back(nullptr);

    pid_t const child = ::fork();
    if (child == 0) {
      ::setenv("PPD", PPD, 1);
      ::setenv("DIRECTFAX_TICKETS", tickets().c_str(), 1);
      // Opened both ways so that a FIFO does not wait for its other end, nor see one.
      int const in = ::open(input_path.c_str(), during ? O_RDWR : O_RDONLY);
      int const out = ::open(out_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      int const messages = ::open(messages_path.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
      ::dup2(in, 0);
      ::dup2(out, 1);
      ::dup2(messages, 2);
      ::execv(argv[0], argv.data());
      ::_exit(126);
    }
    if (during) during(child);
    int status = 0;
    rusage usage{};
    ::wait4(child, &status, 0, &usage);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status), contents(out_path),
            contents(messages_path), usage.ru_maxrss};
  }

  std::filesystem::path tickets() const { return folder_.path() / "tickets"; }

  void SetUp() override { std::filesystem::create_directory(tickets()); }

  Folder folder_;
};

}  // namespace fax::test
