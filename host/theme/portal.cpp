#include "host/theme/portal.h"

#include <cstdlib>
#include <dbus/dbus.h>
#include <filesystem>
#include <memory>
#include <string>

namespace fax::theme {

namespace {

constexpr int kPatience = 300;  // milliseconds

// A connection of our own: the one that libdbus shares may be in use with other habits.
struct CloseConnection {
  void operator()(DBusConnection *connection) const {
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
  }
};
struct DropMessage {
  void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};
using Connection = std::unique_ptr<DBusConnection, CloseConnection>;
using Message = std::unique_ptr<DBusMessage, DropMessage>;

// Without an address libdbus would start a bus.
bool there_is_a_bus() {
  if (std::getenv("DBUS_SESSION_BUS_ADDRESS") != nullptr) return true;
  char const *const run = std::getenv("XDG_RUNTIME_DIR");
  std::error_code ignored;
  return run != nullptr && std::filesystem::exists(std::filesystem::path(run) / "bus", ignored);
}

Connection session_bus() {
  Connection connection(dbus_bus_get_private(DBUS_BUS_SESSION, nullptr));
  if (connection) dbus_connection_set_exit_on_disconnect(connection.get(), FALSE);
  return connection;
}

Message ask(DBusConnection *bus) {
  Message call(dbus_message_new_method_call("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                            "org.freedesktop.portal.Settings", "Read"));
  if (!call) return nullptr;
  char const *const space = "org.freedesktop.appearance";
  char const *const key = "color-scheme";
  if (!dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &space, DBUS_TYPE_STRING, &key, DBUS_TYPE_INVALID))
    return nullptr;
  dbus_message_set_auto_start(call.get(), FALSE);
  return Message(dbus_connection_send_with_reply_and_block(bus, call.get(), kPatience, nullptr));
}

// The number is wrapped in a variant, and that in another one.
std::optional<Scheme> scheme_in(DBusMessage *answer) {
  DBusMessageIter at;
  if (!dbus_message_iter_init(answer, &at)) return std::nullopt;
  while (dbus_message_iter_get_arg_type(&at) == DBUS_TYPE_VARIANT) {
    DBusMessageIter inside;
    dbus_message_iter_recurse(&at, &inside);
    at = inside;
  }
  if (dbus_message_iter_get_arg_type(&at) != DBUS_TYPE_UINT32) return std::nullopt;
  dbus_uint32_t number = 0;
  dbus_message_iter_get_basic(&at, &number);
  if (number == 1) return Scheme::dark;
  if (number == 2) return Scheme::light;
  return std::nullopt;
}

}  // namespace

std::optional<Scheme> scheme_of_portal() {
  if (!there_is_a_bus()) return std::nullopt;
  Connection const bus = session_bus();
  if (!bus) return std::nullopt;
  Message const answer = ask(bus.get());
  return answer ? scheme_in(answer.get()) : std::nullopt;
}

}  // namespace fax::theme
