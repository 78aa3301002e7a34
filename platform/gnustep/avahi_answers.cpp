#include "platform/gnustep/avahi_answers.h"

#include <cstdlib>
#include <dbus/dbus.h>
#include <memory>
#include <utility>

namespace fax {

namespace {

struct CloseConnection {
  void operator()(DBusConnection *connection) const {
    dbus_connection_close(connection);
    dbus_connection_unref(connection);
  }
};
struct ReleaseMessage {
  void operator()(DBusMessage *message) const { dbus_message_unref(message); }
};
struct ReleaseCall {
  void operator()(DBusPendingCall *call) const { dbus_pending_call_unref(call); }
};
using Connection = std::unique_ptr<DBusConnection, CloseConnection>;
using Message = std::unique_ptr<DBusMessage, ReleaseMessage>;
using Call = std::unique_ptr<DBusPendingCall, ReleaseCall>;
using Clock = std::chrono::steady_clock;

constexpr char kBusName[] = "org.freedesktop.DBus";
constexpr char kAvahiName[] = "org.freedesktop.Avahi";

Connection open_bus() {
  char const *const set = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
  return Connection(
      dbus_connection_open_private(set != nullptr ? set : "unix:path=/var/run/dbus/system_bus_socket", nullptr));
}

Message to_bus(char const *method) {
  return Message(dbus_message_new_method_call(kBusName, "/org/freedesktop/DBus", kBusName, method));
}

// The answer, or nullptr: none in time, or an error. The library's own call that waits for an answer is of no use here:
// it waits for ever until the question is sent, and a bus that hangs takes none.
Message ask(Connection const &bus, Message const &question, Clock::time_point end) {
  DBusPendingCall *pending = nullptr;
  if (question == nullptr || !dbus_connection_send_with_reply(bus.get(), question.get(), &pending, -1)) return nullptr;
  Call const call(pending);
  while (call != nullptr && !dbus_pending_call_get_completed(call.get())) {
    auto const left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    if (left <= 0 || !dbus_connection_read_write_dispatch(bus.get(), int(left))) break;
  }
  if (call == nullptr || !dbus_pending_call_get_completed(call.get())) return nullptr;
  Message answer(dbus_pending_call_steal_reply(call.get()));
  bool const is_answer =
      answer != nullptr && dbus_message_get_type(answer.get()) == DBUS_MESSAGE_TYPE_METHOD_RETURN;
  return is_answer ? std::move(answer) : nullptr;
}

bool is_on_bus(Connection const &bus, Clock::time_point end) {
  Message const question = to_bus("NameHasOwner");
  char const *name = kAvahiName;
  if (question == nullptr || !dbus_message_append_args(question.get(), DBUS_TYPE_STRING, &name, DBUS_TYPE_INVALID))
    return false;
  Message const answer = ask(bus, question, end);
  dbus_bool_t owned = false;
  return answer != nullptr &&
         dbus_message_get_args(answer.get(), nullptr, DBUS_TYPE_BOOLEAN, &owned, DBUS_TYPE_INVALID) && owned;
}

}  // namespace

bool avahi_answers(std::chrono::milliseconds limit) {
  Clock::time_point const end = Clock::now() + limit;
  Connection const bus = open_bus();
  if (bus == nullptr || ask(bus, to_bus("Hello"), end) == nullptr || !is_on_bus(bus, end)) return false;
  Message const question(dbus_message_new_method_call(kAvahiName, "/", "org.freedesktop.Avahi.Server", "GetAPIVersion"));
  return ask(bus, question, end) != nullptr;
}

}  // namespace fax
