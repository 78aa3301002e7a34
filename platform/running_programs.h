// The programs that run for this user.
#pragma once

#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace fax {

struct RunningProgram {
  pid_t process = 0;
  // Of the file that the kernel runs, absolute and without links: of a script, its interpreter. A program that was
  // replaced while it ran has the path it was started from.
  std::string path;
};

// In the order of process numbers. Left out: other users' processes, and those that have ended and are not waited for
// yet. processes is the folder where the kernel shows them; where it shows none, the answer is empty.
std::vector<RunningProgram> running_programs(std::string const &processes = "/proc");

// True when a process of this user was started for the X display of this name, on whichever of its screens.
bool was_started_for(std::string_view display, pid_t process, std::string const &processes = "/proc");

// The part of an X display's name that tells one display from another: "localhost:10.1" -> "localhost:10".
std::string_view display_without_screen(std::string_view display);

}  // namespace fax
