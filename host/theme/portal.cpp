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

Message ask(DBusConnection *bus, char const *space, char const *key) {
  Message call(dbus_message_new_method_call("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                                            "org.freedesktop.portal.Settings", "Read"));
  if (!call) return nullptr;
  if (!dbus_message_append_args(call.get(), DBUS_TYPE_STRING, &space, DBUS_TYPE_STRING, &key, DBUS_TYPE_INVALID))
    return nullptr;
  dbus_message_set_auto_start(call.get(), FALSE);
  return Message(dbus_connection_send_with_reply_and_block(bus, call.get(), kPatience, nullptr));
}

// The value is wrapped in a variant, and that in another one. True when there is one of that type.
bool find_value(DBusMessage *answer, int type, DBusMessageIter &at) {
  if (!dbus_message_iter_init(answer, &at)) return false;
  while (dbus_message_iter_get_arg_type(&at) == DBUS_TYPE_VARIANT) {
    DBusMessageIter inside;
    dbus_message_iter_recurse(&at, &inside);
    at = inside;
  }
  return dbus_message_iter_get_arg_type(&at) == type;
}

std::optional<Scheme> scheme_in(DBusMessage *answer) {
  DBusMessageIter at;
  if (!find_value(answer, DBUS_TYPE_UINT32, at)) return std::nullopt;
  dbus_uint32_t number = 0;
  dbus_message_iter_get_basic(&at, &number);
  if (number == 1) return Scheme::dark;
  if (number == 2) return Scheme::light;
  return std::nullopt;
}

std::string text_in(DBusMessage *answer) {
  DBusMessageIter at;
  if (!find_value(answer, DBUS_TYPE_STRING, at)) return {};
  char const *text = "";
  dbus_message_iter_get_basic(&at, &text);
  return text;
}

}  // namespace

PortalLooks looks_of_portal() {
  PortalLooks looks;
  if (!there_is_a_bus()) return looks;
  Connection const bus = session_bus();
  if (!bus) return looks;
  Message const scheme = ask(bus.get(), "org.freedesktop.appearance", "color-scheme");
  if (!scheme) return looks;  // a portal that is silent once is not asked again
  looks.scheme = scheme_in(scheme.get());
  if (Message const font = ask(bus.get(), "org.gnome.desktop.interface", "font-name")) looks.font = text_in(font.get());
  return looks;
}

}  // namespace fax::theme
