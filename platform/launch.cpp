#include "platform/launch.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fax {

namespace {

bool is_program(std::string const &path) {
  struct stat status;
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && access(path.c_str(), X_OK) == 0;
}

std::string find_program(std::string const &name) {
  if (name.find('/') != std::string::npos) return is_program(name) ? name : "";
  char const *set = std::getenv("PATH");
  std::string_view rest = set != nullptr ? set : "/usr/local/bin:/usr/bin:/bin";
  for (;;) {
    std::size_t const colon = rest.find(':');
    std::string const folder(rest.substr(0, colon));
    std::string path = (folder.empty() ? "." : folder) + "/" + name;
    if (is_program(path)) return path;
    if (colon == std::string_view::npos) return "";
    rest.remove_prefix(colon + 1);
  }
}

void tell(int report, int number) { [[maybe_unused]] ssize_t const written = write(report, &number, sizeof number); }

// From here to the exec only calls that are safe after fork in a process with threads.
[[noreturn]] void become(char const *path, char *const *arguments, int report) {
  tell(report, getpid());
  // What a host ignores stays ignored through an exec.
  for (int signal_number = 1; signal_number < NSIG; ++signal_number) signal(signal_number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  if (int const nothing = open("/dev/null", O_RDWR); nothing >= 0)
    for (int each : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nothing, each);
  if (report > STDERR_FILENO + 1) close_range(STDERR_FILENO + 1, unsigned(report) - 1, 0);
  close_range(unsigned(report) + 1, ~0U, 0);
  execv(path, arguments);
  tell(report, errno);
  _exit(127);
}

// The next number told; 0 when no more comes: the other end was closed.
int next_told(int from) {
  int number = 0;
  ssize_t got;
  while ((got = read(from, &number, sizeof number)) < 0 && errno == EINTR) {
  }
  return got == ssize_t(sizeof number) ? number : 0;
}

}  // namespace

int launch(std::vector<std::string> const &arguments, pid_t *process) {
  if (arguments.empty()) return EINVAL;
  std::string const path = find_program(arguments[0]);
  if (path.empty()) return ENOENT;
  std::vector<char *> pointers;
  pointers.reserve(arguments.size() + 1);
  for (auto const &argument : arguments) pointers.push_back(const_cast<char *>(argument.c_str()));
  pointers.push_back(nullptr);

  // What comes through the pipe: the number of the program's process, or why there is none as a negative number; then
  // why the program does not run. When it runs, its end of the pipe is closed.
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return errno;
  // A host may run with one of the first three closed; the child is about to overwrite them.
  int const report = fcntl(ends[1], F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  int const report_error = errno;
  close(ends[1]);
  if (report < 0) {
    close(ends[0]);
    return report_error;
  }
  // Two generations: the program's parent ends at once, so nothing of it is left for the host to wait for.
  pid_t const between = fork();
  if (between == 0) {
    setsid();
    pid_t const program = fork();
    if (program == 0) become(path.c_str(), pointers.data(), report);
    if (program < 0) tell(report, -errno);
    _exit(0);
  }
  int const fork_error = errno;
  close(report);
  if (between < 0) {
    close(ends[0]);
    return fork_error;
  }
  while (waitpid(between, nullptr, 0) < 0 && errno == EINTR) {
  }
  int const number = next_told(ends[0]);
  int const error = next_told(ends[0]);
  close(ends[0]);
  if (number <= 0) return number < 0 ? -number : EAGAIN;
  if (error == 0 && process != nullptr) *process = number;
  return error;
}

}  // namespace fax
