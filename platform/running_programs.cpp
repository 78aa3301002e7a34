#include "platform/running_programs.h"

#include "platform/application_folders.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace fax {

namespace {

constexpr std::string_view kDeleted = " (deleted)";
// The kernel's own bound for all arguments and variables of a program, by default.
constexpr std::size_t kMostEnvironment = 2 << 20;

bool is_ours(fs::path const &process) {
  struct stat status;
  return stat(process.c_str(), &status) == 0 && status.st_uid == geteuid();
}

std::string program_of(fs::path const &process) {
  std::error_code error;
  std::string path = fs::read_symlink(process / "exe", error).native();
  if (error) return "";
  if (path.ends_with(kDeleted) && !fs::exists(path, error)) path.resize(path.size() - kDeleted.size());
  return path;
}

// The value of DISPLAY that a process was started with; "" for none.
std::string display_of(fs::path const &process) {
  constexpr std::string_view kName = "DISPLAY=";
  std::string const all = file_bytes((process / "environ").native(), kMostEnvironment).value_or("");
  std::string_view rest = all;
  while (!rest.empty()) {
    std::string_view const variable = rest.substr(0, rest.find('\0'));
    if (variable.starts_with(kName)) return std::string(variable.substr(kName.size()));
    rest.remove_prefix(std::min(variable.size() + 1, rest.size()));
  }
  return "";
}

}  // namespace

std::string_view display_without_screen(std::string_view display) {
  std::size_t const colon = display.rfind(':');
  std::size_t const point = display.rfind('.');
  bool const has_screen = colon != std::string_view::npos && point != std::string_view::npos && point > colon;
  return has_screen ? display.substr(0, point) : display;
}

std::vector<RunningProgram> running_programs(std::string const &processes) {
  std::vector<RunningProgram> found;
  std::error_code error;
  for (fs::directory_iterator at(processes, error); !error && at != fs::directory_iterator(); at.increment(error)) {
    std::string const name = at->path().filename().native();
    RunningProgram program;
    char const *const end = name.data() + name.size();
    auto const number = std::from_chars(name.data(), end, program.process);
    if (number.ec != std::errc() || number.ptr != end || !is_ours(at->path())) continue;
    program.path = program_of(at->path());
    if (!program.path.empty()) found.push_back(std::move(program));
  }
  std::sort(found.begin(), found.end(), [](auto const &one, auto const &other) { return one.process < other.process; });
  return found;
}

bool was_started_for(std::string_view display, pid_t process, std::string const &processes) {
  std::string const theirs = display_of(fs::path(processes) / std::to_string(process));
  return display_without_screen(theirs) == display_without_screen(display);
}

}  // namespace fax
