#include "message_bus.h"

#include <csignal>
#include <cstdlib>
#include <dbus/dbus.h>
#include <fstream>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fax::host {

namespace {

using namespace std::chrono_literals;

constexpr char kDaemon[] = "/usr/bin/dbus-daemon";
constexpr char kName[] = "org.freedesktop.Notifications";

// Starts no services by itself: what is installed here must not answer.
constexpr char kConfiguration[] = R"(<busconfig><type>session</type><listen>unix:path=@/bus</listen>
<policy context="default"><allow send_destination="*"/><allow receive_sender="*"/><allow own="*"/></policy>
</busconfig>
)";

std::string text_at(DBusMessageIter &at) {
  char const *text = "";
  dbus_message_iter_get_basic(&at, &text);
  return text;
}

int urgency_in(DBusMessageIter hints) {
  DBusMessageIter entry, value;
  dbus_message_iter_recurse(&hints, &entry);
  if (dbus_message_iter_get_arg_type(&entry) != DBUS_TYPE_DICT_ENTRY) return -1;
  DBusMessageIter pair;
  dbus_message_iter_recurse(&entry, &pair);
  if (text_at(pair) != "urgency" || !dbus_message_iter_next(&pair)) return -1;
  dbus_message_iter_recurse(&pair, &value);
  unsigned char level = 0;
  dbus_message_iter_get_basic(&value, &level);
  return level;
}

// The arguments as the desktop's convention has them: program, replaced note, icon, title, text, actions, hints, time.
ReceivedNote read_note(DBusMessage *call) {
  ReceivedNote note;
  if (!dbus_message_has_signature(call, "susssasa{sv}i")) return note;
  DBusMessageIter at;
  dbus_message_iter_init(call, &at);
  for (int skipped = 0; skipped < 3; ++skipped) dbus_message_iter_next(&at);
  note.title = text_at(at);
  dbus_message_iter_next(&at);
  note.text = text_at(at);
  dbus_message_iter_next(&at);
  dbus_message_iter_next(&at);
  note.urgency = urgency_in(at);
  return note;
}

}  // namespace

bool MessageBus::is_installed() { return access(kDaemon, X_OK) == 0; }

MessageBus::MessageBus() {
  std::string name = (std::filesystem::temp_directory_path() / "bus-XXXXXX").string();
  folder_ = mkdtemp(name.data());
  std::string text = kConfiguration;
  text.replace(text.find('@'), 1, folder_.string());
  std::ofstream(folder_ / "bus.conf") << text;
  std::string const configuration = "--config-file=" + (folder_ / "bus.conf").string();
  pid_ = fork();
  if (pid_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    execl(kDaemon, kDaemon, configuration.c_str(), "--nofork", "--nopidfile", nullptr);
    _exit(127);
  }
  setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + (folder_ / "bus").string()).c_str(), 1);
  for (int look = 0; look < 200; ++look, std::this_thread::sleep_for(25ms)) {
    if (DBusConnection *const bus = join()) {
      dbus_connection_close(bus);
      dbus_connection_unref(bus);
      return;
    }
  }
  throw std::runtime_error("dbus-daemon does not start");
}

MessageBus::~MessageBus() {
  kill(pid_, SIGKILL);
  waitpid(pid_, nullptr, 0);
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  std::filesystem::remove_all(folder_);
}

DBusConnection *MessageBus::join() {
  dbus_threads_init_default();
  DBusConnection *const bus = dbus_connection_open_private(std::getenv("DBUS_SESSION_BUS_ADDRESS"), nullptr);
  if (!bus) return nullptr;
  dbus_connection_set_exit_on_disconnect(bus, false);
  if (!dbus_bus_register(bus, nullptr)) throw std::runtime_error("the bus takes nobody");
  return bus;
}

NotificationService::NotificationService(bool answers) : answers_(answers), bus_(MessageBus::join()) {
  dbus_bus_request_name(bus_, kName, DBUS_NAME_FLAG_DO_NOT_QUEUE, nullptr);
  thread_ = std::thread([this] { serve(); });
}

NotificationService::~NotificationService() {
  over_ = true;
  thread_.join();
  dbus_connection_close(bus_);
  dbus_connection_unref(bus_);
}

void NotificationService::serve() {
  while (!over_ && dbus_connection_read_write(bus_, 20)) {
    while (DBusMessage *const call = dbus_connection_pop_message(bus_)) {
      if (dbus_message_is_method_call(call, kName, "Notify")) {
        std::lock_guard const lock(mutex_);
        notes_.push_back(read_note(call));
        DBusMessage *const answer = answers_ ? dbus_message_new_method_return(call) : nullptr;
        dbus_uint32_t const number = 1;
        if (answer) {
          dbus_message_append_args(answer, DBUS_TYPE_UINT32, &number, DBUS_TYPE_INVALID);
          dbus_connection_send(bus_, answer, nullptr);
          dbus_connection_flush(bus_);
          dbus_message_unref(answer);
        }
      }
      dbus_message_unref(call);
    }
  }
}

std::vector<ReceivedNote> NotificationService::notes(std::chrono::milliseconds limit) {
  for (auto const end = std::chrono::steady_clock::now() + limit;; std::this_thread::sleep_for(10ms)) {
    std::lock_guard const lock(mutex_);
    if (!notes_.empty() || std::chrono::steady_clock::now() >= end) return notes_;
  }
}

}  // namespace fax::host
