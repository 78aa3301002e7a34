// The panel's address book button, with a real application on the other side.
#import "../bundle/bundle_fixture.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fstream>

#include "private_applications.h"

namespace fs = std::filesystem;

namespace {

constexpr char kNotFound[] = "Address Book Editor not found.||OK";
constexpr char kUnknownAddress[] = "Failed to resolve the current printer URI!";

class EditorLaunch : public test::BundleTest {
 protected:
  // A panel for a printer with this device URI.
  id panel_for(std::string const &uri) {
    fakes().device_uri = uri;
    return panel();
  }

  test::PrivateApplications applications_;
};

TEST_F(EditorLaunch, TheEditorIsToldThePrintersAddress) {
  struct {
    char const *uri;
    std::vector<std::string> arguments;
    bool is_unknown;
  } const cases[] = {
      {"usb://Vendor/Model?serial=1", {"-DFAXConnectionType USB"}, false},
      {"socket://192.168.1.20", {"-DFAXConnectionType NET", "-DFAXAddress 192.168.1.20"}, false},
      {"ipp://[2001:db8::7]:631/ipp/print", {"-DFAXConnectionType NET", "-DFAXAddress 2001:db8::7"}, false},
      {"serial:/dev/ttyS0", {}, true},
  };
  applications_.set_editor_mode("waits");
  applications_.install_editor();
  for (auto const &row : cases) {
    SCOPED_TRACE(row.uri);
    id panel = panel_for(row.uri);
    testing::internal::CaptureStderr();
    [panel launchAddressBook:nil];
    bool const is_told = testing::internal::GetCapturedStderr().find(kUnknownAddress) != std::string::npos;
    EXPECT_EQ(is_told, row.is_unknown);
    auto const editors = applications_.editors(1);
    ASSERT_EQ(editors.size(), 1u);
    EXPECT_EQ(editors[0].arguments, row.arguments);
    EXPECT_EQ(editors[0].given_descriptors, 0);
    EXPECT_THAT(alerts(), testing::IsEmpty());
    applications_.forget_editors();
  }
}

// Runs xdotool on the window with this title until it finds one.
bool with_window(std::string const &title, std::string const &action) {
  std::string const command = "xdotool search --onlyvisible --name '^" + title + "$' " + action + " >/dev/null 2>&1";
  return test::becomes([&] { return std::system(command.c_str()) == 0; });
}

bool becomes_active(std::string const &title) {
  return test::becomes([&] { return test::active_title() == title; });
}

TEST_F(EditorLaunch, ARunningEditorComesForward) {
  applications_.install_editor();
  id panel = panel_for("socket://192.168.1.20");
  [panel launchAddressBook:nil];
  ASSERT_EQ(applications_.editors(1).size(), 1u);
  ASSERT_TRUE(with_window("Address Book Editor", ""));

  NSWindow *covering = [[[NSWindow alloc] initWithContentRect:NSMakeRect(100, 400, 500, 300)
                                                    styleMask:NSTitledWindowMask
                                                      backing:NSBackingStoreBuffered
                                                        defer:NO] autorelease];
  [covering setReleasedWhenClosed:NO];
  [covering setTitle:@"Covering"];
  [covering makeKeyAndOrderFront:nil];
  ASSERT_TRUE(with_window("Covering", "windowactivate"));
  ASSERT_TRUE(becomes_active("Covering"));
  [panel launchAddressBook:nil];
  EXPECT_TRUE(becomes_active("Address Book Editor"));

  EXPECT_EQ(applications_.editors(1).size(), 1u) << "no second process";
  EXPECT_THAT(alerts(), testing::IsEmpty());
  [covering close];
}

TEST_F(EditorLaunch, ARunningEditorIsNotStartedAgainThoughItHasNoWindow) {
  applications_.set_editor_mode("waits");
  applications_.install_editor();
  id panel = panel_for("");
  [panel launchAddressBook:nil];
  ASSERT_EQ(applications_.editors(1).size(), 1u);
  [panel launchAddressBook:nil];
  [panel launchAddressBook:nil];
  int turns = 0;
  test::becomes([&] { return ++turns > 20; });
  EXPECT_EQ(applications_.editors(1).size(), 1u);
  EXPECT_THAT(alerts(), testing::IsEmpty());
}

TEST_F(EditorLaunch, AnEditorThatDiesWasStarted) {
  applications_.set_editor_mode("dies");
  applications_.install_editor();
  id panel = panel_for("socket://192.168.1.20");
  for (std::size_t count : {1u, 2u}) {
    [panel launchAddressBook:nil];
    auto const editors = applications_.editors(count);
    EXPECT_EQ(editors.size(), count) << "it does not run, so it is started anew";
    for (auto const &each : editors) test::end_process(each.process);
  }
  EXPECT_THAT(alerts(), testing::IsEmpty());
}

TEST_F(EditorLaunch, AnEditorThatCannotStartIsTold) {
  struct {
    char const *name;
    std::function<void(fs::path const &program)> spoil;
  } const cases[] = {
      {"not installed", [](fs::path const &program) { fs::remove_all(program.parent_path()); }},
      {"no program", [](fs::path const &program) { fs::remove(program); }},
      {"not executable",
       [](fs::path const &program) { fs::permissions(program, fs::perms::owner_read | fs::perms::owner_write); }},
      {"a folder",
       [](fs::path const &program) {
         fs::remove(program);
         fs::create_directory(program);
       }},
      {"no program inside", [](fs::path const &program) { std::ofstream(program) << "no program at all"; }},
  };
  for (auto const &row : cases) {
    for (char const *uri : {"", "usb://Vendor/Model", "socket://192.168.1.20"}) {
      SCOPED_TRACE(std::string(row.name) + ", " + uri);
      auto const program = applications_.install_editor() / "AddressBookEditor";
      row.spoil(program);
      alerts().clear();
      [panel_for(uri) launchAddressBook:nil];
      EXPECT_THAT(alerts(), testing::ElementsAre(kNotFound));
      fs::remove_all(program.parent_path());
    }
  }
  EXPECT_THAT(applications_.editors(0), testing::IsEmpty());
}

}  // namespace
