// Whether Avahi is there to be talked to.
#pragma once

#include <chrono>

namespace fax {

// Asks Avahi, by the system's message bus (DBUS_SYSTEM_BUS_ADDRESS, else where it always is), for a sign of life. False
// without a bus, without Avahi on it, and when they have not answered within the limit. Never starts Avahi.
bool avahi_answers(std::chrono::milliseconds limit);

}  // namespace fax
