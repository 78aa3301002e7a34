// A note by the desktop's notification service (org.freedesktop.Notifications), for a user who looks elsewhere.
#pragma once

#include <chrono>
#include <string>

namespace fax::host {

// All text is UTF-8, without markup.
struct DesktopNote {
  std::string title;
  std::string text;
  bool urgent = false;  // stays until the user has seen it, where the service knows that
};

// Hands the note to the service on the user's message bus. False when there is no bus or no service, or it does not
// take the note within limit. Blocks; joining a bus that hangs takes as long as the bus library waits, 25 s.
bool send_note(DesktopNote const &note, std::chrono::milliseconds limit);

// The same on a thread that nobody waits for, within 5 s, and without a word where it fails.
void post_note(DesktopNote const &note);

}  // namespace fax::host
