#include <gmock/gmock.h>

#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dbus/dbus.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>

#include "host/theme/portal.h"
#include "host/theme/preference.h"

using namespace fax::theme;

namespace {

constexpr auto kLight = Scheme::light;
constexpr auto kDark = Scheme::dark;
constexpr auto kNone = std::nullopt;

TEST(Preference, TheNearestWordCounts) {
  struct Case {
    Choice choice;
    Desktop desktop;
    Scheme expected;
  };
  Case const cases[] = {
      {Choice::automatic, {"", "", kNone, kNone, {}}, kLight},
      {Choice::automatic, {"", "", kNone, kDark, {}}, kDark},
      {Choice::automatic, {"", "", kLight, kDark, {}}, kLight},
      {Choice::automatic, {"", "", kDark, kLight, {}}, kDark},
      {Choice::automatic, {"", "Adwaita:dark", kLight, kLight, {}}, kDark},
      {Choice::automatic, {"", "Adwaita", kDark, kDark, {}}, kLight},
      {Choice::automatic, {"light", "Adwaita:dark", kDark, kDark, {}}, kLight},
      {Choice::automatic, {"dark", "", kLight, kLight, {}}, kDark},
      {Choice::automatic, {"auto", "", kDark, kNone, {}}, kDark},
      {Choice::automatic, {"Dark please", "", kNone, kNone, {}}, kLight},
      {Choice::light, {"dark", "Adwaita:dark", kDark, kDark, {}}, kLight},
      {Choice::dark, {"light", "Adwaita", kLight, kLight, {}}, kDark},
  };
  for (std::size_t at = 0; at < std::size(cases); ++at)
    EXPECT_EQ(scheme_for(cases[at].choice, cases[at].desktop), cases[at].expected) << "case " << at;
}

TEST(Preference, ReadsGtkSettings) {
  struct Case {
    char const *text;
    std::optional<Scheme> expected;
  };
  Case const cases[] = {
      {"", kNone},
      {"[Settings]\ngtk-font-name=Sans 10\n", kNone},
      {"[Settings]\ngtk-application-prefer-dark-theme=1\n", kDark},
      {"[Settings]\r\n gtk-application-prefer-dark-theme = TRUE \r\n", kDark},
      {"[Settings]\ngtk-application-prefer-dark-theme=0\n", kNone},
      {"[Settings]\ngtk-theme-name=Adwaita-dark\ngtk-application-prefer-dark-theme=0", kDark},
      {"[Settings]\ngtk-theme-name=Adwaita", kLight},
      {"[Settings]\ngtk-theme-name=Adwaita\ngtk-application-prefer-dark-theme=true", kDark},
      {"[Other]\ngtk-application-prefer-dark-theme=1\n", kNone},
      {"gtk-application-prefer-dark-theme=1\n[Settings]\n", kNone},
      {"[Settings]\n#gtk-application-prefer-dark-theme=1\n=\n==\n", kNone},
  };
  for (Case const &one : cases) EXPECT_EQ(scheme_of_gtk_settings(read_gtk_settings(one.text)), one.expected) << one.text;
}

// A bus of the test's own, with a portal on it that answers as it is told to. One test only: libdbus keeps the first
// address that it hears of.
class Portal : public testing::Test {
 protected:
  void SetUp() override {
    std::string const config = folder() + "/bus.conf";
    std::ofstream(config) << "<busconfig><type>session</type><listen>unix:dir=" << folder()
                          << "</listen><policy context='default'><allow send_destination='*'/><allow own='*'/>"
                             "<allow eavesdrop='true'/></policy></busconfig>";
    daemon_ = popen(("exec dbus-daemon --nofork --print-address=1 --print-pid=1 --config-file=" + config).c_str(), "r");
    ASSERT_NE(daemon_, nullptr);
    std::array<char, 512> line{};
    ASSERT_NE(std::fgets(line.data(), line.size(), daemon_), nullptr);
    setenv("DBUS_SESSION_BUS_ADDRESS", std::string(line.data(), std::strcspn(line.data(), "\n")).c_str(), 1);
    ASSERT_NE(std::fgets(line.data(), line.size(), daemon_), nullptr);
    pid_ = std::atoi(line.data());
  }
  void TearDown() override {
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
    if (pid_ > 0) kill(pid_, SIGKILL);
    if (daemon_ != nullptr) pclose(daemon_);
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }

  std::string const &folder() {
    if (folder_.empty()) {
      std::string name = std::filesystem::temp_directory_path() / "portal.XXXXXX";
      if (mkdtemp(name.data()) != nullptr) folder_ = name;
    }
    return folder_;
  }

  // What is read while a portal answers one call with this; without an answer it keeps silent.
  PortalLooks read_while_answering(std::function<bool(DBusMessageIter *)> answer) {
    DBusConnection *bus = dbus_bus_get_private(DBUS_BUS_SESSION, nullptr);
    if (bus == nullptr) throw std::runtime_error("no bus");
    dbus_connection_set_exit_on_disconnect(bus, FALSE);
    dbus_bus_request_name(bus, "org.freedesktop.portal.Desktop", 0, nullptr);
    std::atomic<bool> over = false;
    std::thread portal([&] {
      while (!over) {
        dbus_connection_read_write(bus, 20);
        DBusMessage *call = dbus_connection_pop_message(bus);
        if (call == nullptr) continue;
        if (answer && dbus_message_is_method_call(call, "org.freedesktop.portal.Settings", "Read")) {
          DBusMessage *reply = dbus_message_new_method_return(call);
          DBusMessageIter at;
          dbus_message_iter_init_append(reply, &at);
          if (answer(&at)) dbus_connection_send(bus, reply, nullptr);
          dbus_connection_flush(bus);
          dbus_message_unref(reply);
        }
        dbus_message_unref(call);
      }
    });
    PortalLooks const looks = looks_of_portal();
    over = true;
    portal.join();
    dbus_connection_close(bus);
    dbus_connection_unref(bus);
    return looks;
  }

 private:
  std::string folder_;
  FILE *daemon_ = nullptr;
  pid_t pid_ = 0;
};

std::function<bool(DBusMessageIter *)> wrapped(dbus_uint32_t number) {
  return [number](DBusMessageIter *at) {
    DBusMessageIter outer, inner;
    dbus_message_iter_open_container(at, DBUS_TYPE_VARIANT, "v", &outer);
    dbus_message_iter_open_container(&outer, DBUS_TYPE_VARIANT, "u", &inner);
    dbus_message_iter_append_basic(&inner, DBUS_TYPE_UINT32, &number);
    dbus_message_iter_close_container(&outer, &inner);
    return static_cast<bool>(dbus_message_iter_close_container(at, &outer));
  };
}

bool a_text(DBusMessageIter *at) {
  char const *const text = "dark";
  return dbus_message_iter_append_basic(at, DBUS_TYPE_STRING, &text);
}

TEST_F(Portal, TellsItsColourScheme) {
  EXPECT_EQ(read_while_answering(wrapped(1)).scheme, kDark);
  EXPECT_EQ(read_while_answering(wrapped(2)).scheme, kLight);
  EXPECT_EQ(read_while_answering(wrapped(0)).scheme, kNone);
  EXPECT_EQ(read_while_answering(wrapped(9)).scheme, kNone);
  EXPECT_EQ(read_while_answering(a_text).scheme, kNone);
  EXPECT_EQ(read_while_answering(a_text).font, "dark");
  EXPECT_EQ(read_while_answering(wrapped(1)).font, "");
  EXPECT_EQ(read_while_answering([](DBusMessageIter *) { return true; }).scheme, kNone);

  // One that does not answer is not waited for long.
  auto const start = std::chrono::steady_clock::now();
  EXPECT_EQ(read_while_answering(nullptr).scheme, kNone);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
  EXPECT_EQ(looks_of_portal().scheme, kNone) << "a bus without a portal";
}

TEST(NoPortal, IsFoundWithoutABus) {
  unsetenv("DBUS_SESSION_BUS_ADDRESS");
  unsetenv("XDG_RUNTIME_DIR");
  EXPECT_EQ(looks_of_portal().scheme, kNone);
}

}  // namespace
