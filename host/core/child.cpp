#include "host/core/child.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

extern char **environ;

namespace fax::host {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kOutOfTheWay = 100;  // the program's own descriptors are set below
constexpr std::chrono::milliseconds kTick{20};

std::vector<char *> pointers(std::vector<std::string> &words) {
  std::vector<char *> list;
  list.reserve(words.size() + 1);
  for (auto &word : words) list.push_back(word.data());
  list.push_back(nullptr);
  return list;
}

std::vector<std::string> whole_environment(std::vector<std::string> const &ours) {
  std::vector<std::string> all = ours;
  for (char **entry = environ; *entry != nullptr; ++entry) {
    std::string const known = *entry;
    bool replaced = false;
    for (auto const &own : ours) replaced = replaced || known.starts_with(own.substr(0, own.find('=') + 1));
    if (!replaced) all.push_back(known);
  }
  return all;
}

// Starts the program in a process group of its own; 0 when it cannot be started.
pid_t start(Child const &child, int output) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_adddup2(&actions, output, 1);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  std::vector<Descriptor> copies;
  for (int const handed : child.handed) {
    copies.emplace_back(fcntl(handed, F_DUPFD_CLOEXEC, kOutOfTheWay));
    posix_spawn_file_actions_adddup2(&actions, copies.back().get(), 2 + static_cast<int>(copies.size()));
  }
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  auto words = child.words;
  auto environment = whole_environment(child.environment);
  pid_t pid = 0;
  int const failed = posix_spawn(&pid, words.front().c_str(), &actions, &attributes, pointers(words).data(),
                                 pointers(environment).data());
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  return failed ? 0 : pid;
}

// The program while it runs, and what is known of its end.
class Running {
public:
  Running(Child const &child, Stop const &stop, pid_t pid)
      : child_(child), stop_(stop), pid_(pid), end_(Clock::now() + child.limit) {}

  // Takes what the program says until it closes its output.
  void listen(int descriptor) {
    std::array<char, 65536> buffer;
    while (may_go_on()) {
      pollfd ready{descriptor, POLLIN, 0};
      if (poll(&ready, 1, static_cast<int>(kTick.count())) <= 0) continue;
      ssize_t const got = read(descriptor, buffer.data(), buffer.size());
      if (got < 0 && errno == EINTR) continue;
      if (got <= 0) return;
      result_.said.append(buffer.data(), static_cast<std::size_t>(got));
      if (result_.said.size() > child_.most_said) give_up(ChildEnd::How::crashed);
    }
  }

  ChildEnd end() {
    while (may_go_on() && !has_ended()) std::this_thread::sleep_for(kTick / 4);
    kill(-pid_, SIGKILL);  // and whoever it left behind; until it is waited for, nobody else gets its number
    int status = 0;
    waitpid(pid_, &status, 0);
    if (!given_up_) {
      result_.how = WIFEXITED(status) ? ChildEnd::How::exited : ChildEnd::How::crashed;
      result_.code = WIFEXITED(status) ? WEXITSTATUS(status) : 0;
    }
    return std::move(result_);
  }

private:
  bool has_ended() const {
    siginfo_t about{};
    return waitid(P_PID, static_cast<id_t>(pid_), &about, WEXITED | WNOHANG | WNOWAIT) != 0 || about.si_pid != 0;
  }

  void give_up(ChildEnd::How how) {
    given_up_ = true;
    result_.how = how;
  }

  bool may_go_on() {
    if (!given_up_ && stop_ && stop_()) give_up(ChildEnd::How::stopped);
    if (!given_up_ && Clock::now() >= end_) give_up(ChildEnd::How::late);
    return !given_up_;
  }

  Child const &child_;
  Stop const &stop_;
  pid_t pid_;
  Clock::time_point end_;
  bool given_up_ = false;
  ChildEnd result_;
};

}  // namespace

Descriptor &Descriptor::operator=(Descriptor &&other) noexcept {
  if (this != &other) {
    if (number_ >= 0) close(number_);
    number_ = other.release();
  }
  return *this;
}

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

int Descriptor::release() { return std::exchange(number_, -1); }

Descriptor unnamed_file() {
  std::error_code ignored;
  std::string const folder = std::filesystem::temp_directory_path(ignored).string();
  int const unnamed = open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (unnamed >= 0) return Descriptor(unnamed);
  std::string path = folder + "/faxprint-XXXXXX";  // a file system that has no files without a name
  int const named = mkostemp(path.data(), O_CLOEXEC);
  if (named >= 0) unlink(path.c_str());
  return Descriptor(named);
}

ChildEnd run_child(Child const &child, Stop const &stop) {
  std::array<int, 2> ends{-1, -1};
  if (child.output < 0 && pipe2(ends.data(), O_CLOEXEC) != 0) return {};
  Descriptor const reading(ends[0]);
  Descriptor writing(ends[1]);
  pid_t const pid = start(child, child.output < 0 ? writing.get() : child.output);
  writing = Descriptor();
  if (pid == 0) return {};
  Running running(child, stop, pid);
  if (reading) running.listen(reading.get());
  return running.end();
}

}  // namespace fax::host
