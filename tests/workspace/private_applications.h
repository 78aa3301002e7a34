// Application folders of the test's own, the only ones that the toolkit knows in this program, and the editor's
// stand-in.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace test {

extern char const *const kEditor;  // the stand-in's identifier

// What one stand-in told about itself.
struct EditorRecord {
  pid_t process = 0;
  int given_descriptors = 0;
  std::vector<std::string> arguments;
};

// Empty application folders at the start, and again, with every stand-in ended, when the object goes.
class PrivateApplications {
 public:
  PrivateApplications();
  ~PrivateApplications();
  PrivateApplications(PrivateApplications const &) = delete;
  PrivateApplications &operator=(PrivateApplications const &) = delete;

  // The folder of applications for all users of this computer, searched before the system's.
  static std::filesystem::path local();
  static std::filesystem::path system();

  // The stand-in's wrapper, as "AddressBookEditor.app" in local().
  std::filesystem::path install_editor();
  // A wrapper without a program, described by information; gives the wrapper.
  std::filesystem::path install(std::filesystem::path const &wrapper, std::string const &information);

  // "dies" or "waits", for stand-ins started from now on.
  void set_editor_mode(std::string const &mode);
  // The stand-ins started so far, waited for up to ten seconds while there are fewer than this many.
  std::vector<EditorRecord> editors(std::size_t at_least);
  // Ends them, as if there had been none.
  void forget_editors();
};

// Ends a process and waits until it is gone.
void end_process(pid_t process);

// Of the active window, as the window manager tells it; "" for none.
std::string active_title();

// Waits, up to ten seconds, while events are dealt with; false when it has not become true.
bool becomes_true(bool (*question)(void *), void *context);
template <typename Question>
bool becomes(Question question) {
  return becomes_true([](void *context) -> bool { return (*static_cast<Question *>(context))(); }, &question);
}

}  // namespace test
