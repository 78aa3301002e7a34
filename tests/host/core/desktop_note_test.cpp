#include "host/core/desktop_note.h"

#include <cstdlib>
#include <gtest/gtest.h>

#include "message_bus.h"

namespace fax::host {
namespace {

using namespace std::chrono_literals;

DesktopNote const kNote{"Job 3: Failed", "Müller & <b>Söhne</b>\nbusy", true};

class Note : public testing::Test {
protected:
  void SetUp() override {
    if (!MessageBus::is_installed()) GTEST_SKIP() << "dbus-daemon is not installed";
    unsetenv("DBUS_SESSION_BUS_ADDRESS");
  }
};

TEST_F(Note, ReachesTheServiceWithoutMarkup) {
  MessageBus const bus;
  NotificationService service(true);
  EXPECT_TRUE(send_note(kNote, 5s));
  auto const notes = service.notes();
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_EQ(notes[0].title, kNote.title);
  EXPECT_EQ(notes[0].text, "Müller &amp; &lt;b&gt;Söhne&lt;/b&gt;\nbusy");
  EXPECT_EQ(notes[0].urgency, 2);
}

TEST_F(Note, WaitsForASilentServiceNoLongerThanItsLimit) {
  MessageBus const bus;
  NotificationService service(false);
  auto const start = std::chrono::steady_clock::now();
  EXPECT_FALSE(send_note(kNote, 200ms));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
}

TEST_F(Note, GoesNowhereWithoutAServiceOrABus) {
  {
    MessageBus const bus;
    EXPECT_FALSE(send_note(kNote, 5s));
  }
  EXPECT_FALSE(send_note(kNote, 5s));
  setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus", 1);
  EXPECT_FALSE(send_note(kNote, 5s));
}

}  // namespace
}  // namespace fax::host
