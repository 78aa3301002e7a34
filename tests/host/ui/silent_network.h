// A network of the process's own: no interface but loopback, and a name service whose answers the tests know.
#pragma once

#include <string>

namespace fax::host {

// Moves this thread, and those that it starts from now on, into namespaces of their own; the system's files and
// interfaces stay as they are. There
//   "office.example" is 192.0.2.20 by the hosts file,
//   a name that begins with "unknown" is denied at once, one that begins with "slow" after 0.4 s,
//   and no other name is ever answered by the name server, which takes every question;
//   neither D-Bus nor Avahi can be reached.
// Answers why it could not be done (the system does not allow it), "" when it was. Once a process; lasts until its end.
std::string enter_silent_network();

}  // namespace fax::host
