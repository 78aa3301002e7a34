// Bringing another program's window forward.
#pragma once

#include <sys/types.h>

namespace fax {

// Asks the window manager of the display that DISPLAY names to activate the topmost ordinary window of a process, also
// one that the window manager itself has minimised. (The toolkit's programs, hidden or minimised, take their windows
// back from the window manager: those stay away.) True when the window is the active one then, which is waited for, for
// 0.3 seconds at most; false also without a display on this computer, without a window manager that takes such requests,
// and when the process has no window there. Uses a connection of its own, and touches no error handler of the program's.
bool bring_forward(pid_t process);

}  // namespace fax
