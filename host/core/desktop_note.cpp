#include "host/core/desktop_note.h"

#include <cstdlib>
#include <dbus/dbus.h>
#include <filesystem>
#include <memory>
#include <system_error>
#include <thread>

namespace fax::host {

namespace {

// Left to itself the bus library starts a bus where there is none, and that would outlive us.
std::string bus_address() {
  if (char const *const named = std::getenv("DBUS_SESSION_BUS_ADDRESS"); named != nullptr && *named != '\0')
    return named;
  char const *const folder = std::getenv("XDG_RUNTIME_DIR");
  if (folder == nullptr || *folder == '\0') return "";
  std::string const socket = std::string(folder) + "/bus";
  std::error_code ignored;
  return std::filesystem::is_socket(socket, ignored) ? "unix:path=" + socket : "";
}

struct CloseBus {
  void operator()(DBusConnection *bus) const {
    dbus_connection_close(bus);
    dbus_connection_unref(bus);
  }
};
using Bus = std::unique_ptr<DBusConnection, CloseBus>;

struct FreeMessage {
  void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};
using Message = std::unique_ptr<DBusMessage, FreeMessage>;

Bus join_bus() {
  std::string const address = bus_address();
  if (address.empty() || !dbus_threads_init_default()) return nullptr;
  Bus bus(dbus_connection_open_private(address.c_str(), nullptr));
  if (!bus) return nullptr;
  dbus_connection_set_exit_on_disconnect(bus.get(), false);
  return dbus_bus_register(bus.get(), nullptr) ? std::move(bus) : nullptr;
}

bool add_urgency(DBusMessageIter *arguments, unsigned char urgency) {
  DBusMessageIter hints, entry, value;
  char const *const key = "urgency";
  return dbus_message_iter_open_container(arguments, DBUS_TYPE_ARRAY, "{sv}", &hints) &&
         dbus_message_iter_open_container(&hints, DBUS_TYPE_DICT_ENTRY, nullptr, &entry) &&
         dbus_message_iter_append_basic(&entry, DBUS_TYPE_STRING, &key) &&
         dbus_message_iter_open_container(&entry, DBUS_TYPE_VARIANT, "y", &value) &&
         dbus_message_iter_append_basic(&value, DBUS_TYPE_BYTE, &urgency) &&
         dbus_message_iter_close_container(&entry, &value) && dbus_message_iter_close_container(&hints, &entry) &&
         dbus_message_iter_close_container(arguments, &hints);
}

// A service may read markup in the text.
std::string without_markup(std::string const &text) {
  std::string safe;
  for (char const letter : text) {
    if (letter == '&') safe += "&amp;";
    else if (letter == '<') safe += "&lt;";
    else if (letter == '>') safe += "&gt;";
    else safe += letter;
  }
  return safe;
}

Message notify_call(DesktopNote const &note) {
  Message call(dbus_message_new_method_call("org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                                            "org.freedesktop.Notifications", "Notify"));
  if (!call) return nullptr;
  std::string const body = without_markup(note.text);
  char const *const program = "faxprint";
  char const *const icon = note.urgent ? "printer-error" : "printer";
  char const *const title = note.title.c_str();
  char const *const text = body.c_str();
  dbus_uint32_t const replaces = 0;
  dbus_int32_t const as_long_as_usual = -1;
  DBusMessageIter arguments, actions;
  dbus_message_iter_init_append(call.get(), &arguments);
  bool const made = dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &program) &&
                    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_UINT32, &replaces) &&
                    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &icon) &&
                    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &title) &&
                    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_STRING, &text) &&
                    dbus_message_iter_open_container(&arguments, DBUS_TYPE_ARRAY, "s", &actions) &&
                    dbus_message_iter_close_container(&arguments, &actions) &&
                    add_urgency(&arguments, note.urgent ? 2 : 1) &&
                    dbus_message_iter_append_basic(&arguments, DBUS_TYPE_INT32, &as_long_as_usual);
  return made ? std::move(call) : nullptr;
}

}  // namespace

bool send_note(DesktopNote const &note, std::chrono::milliseconds limit) {
  Message const call = notify_call(note);
  Bus const bus = call ? join_bus() : nullptr;
  if (!bus) return false;
  Message const answer(
      dbus_connection_send_with_reply_and_block(bus.get(), call.get(), static_cast<int>(limit.count()), nullptr));
  return answer != nullptr;
}

void post_note(DesktopNote const &note) {
  try {
    std::thread([note] { send_note(note, std::chrono::seconds(5)); }).detach();
  } catch (std::system_error const &) {
    // Without a thread there is no note: the window says the same.
  }
}

}  // namespace fax::host
