// The toolkit's workspace and task, repaired.
#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <csignal>
#include <fstream>
#include <functional>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "private_applications.h"

namespace fs = std::filesystem;

namespace {

std::string text(NSString *string) { return string != nil ? [string UTF8String] : "(nil)"; }

std::string information(std::string const &identifier, std::string const &executable = "Program") {
  return "{ CFBundleIdentifier = \"" + identifier + "\"; NSExecutable = \"" + executable + "\"; }";
}

class WorkspaceTest : public testing::Test {
 protected:
  WorkspaceTest() : pool_([NSAutoreleasePool new]) {}
  ~WorkspaceTest() override { [pool_ release]; }

  static std::string path_of(NSString *identifier) {
    return text([[NSWorkspace sharedWorkspace] absolutePathForAppBundleWithIdentifier:identifier]);
  }
  static bool launch(NSString *identifier, NSNumber **launched = nullptr) {
    return [[NSWorkspace sharedWorkspace] launchAppWithBundleIdentifier:identifier
                                                                options:NSWorkspaceLaunchDefault
                                         additionalEventParamDescriptor:nil
                                                       launchIdentifier:launched];
  }
  static NSString *editor() { return [NSString stringWithUTF8String:test::kEditor]; }
  // Of the running applications, those that are the editor.
  static NSArray *running_editors() {
    NSPredicate *same = [NSPredicate predicateWithFormat:@"NSApplicationBundleIdentifier == %@", editor()];
    return [[[NSWorkspace sharedWorkspace] launchedApplications] filteredArrayUsingPredicate:same];
  }

  test::PrivateApplications applications_;

 private:
  NSAutoreleasePool *pool_;
};

TEST_F(WorkspaceTest, AnApplicationIsFoundByItsIdentifierAsSoonAsItIsThere) {
  EXPECT_EQ(path_of(@"test.first"), "(nil)");
  auto const system = applications_.install(applications_.system() / "First.app", information("test.first"));
  EXPECT_EQ(path_of(@"test.first"), system.native());
  auto const local = applications_.install(applications_.local() / "Tools/First.app", information("test.first"));
  EXPECT_EQ(path_of(@"test.first"), local.native()) << "this computer's come before the system's";
  applications_.install(local, information("test.other"));
  EXPECT_EQ(path_of(@"test.first"), system.native()) << "the wrapper says otherwise now";
  fs::remove_all(system);
  EXPECT_EQ(path_of(@"test.first"), "(nil)");
  EXPECT_EQ(path_of(@"test.other"), local.native());
  EXPECT_EQ(path_of(@"First"), "(nil)") << "a name is no identifier";
  EXPECT_EQ(path_of(@""), "(nil)");
  EXPECT_EQ(path_of(nil), "(nil)");
}

TEST_F(WorkspaceTest, BrokenWrappersAreInNobodysWay) {
  std::string const cycle("bplist00\xa1\x00\x08\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x01\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\x0a",
                          8 + 2 + 1 + 32);
  std::string const broken[] = {"",
                                "{ CFBundleIdentifier = \"test.whole",
                                "<?xml version=\"1.0\"?><plist><dict><key>CFBundleIdentifier</key>",
                                "{ CFBundleIdentifier = (\"test.whole\"); }",
                                "( \"test.whole\" )",
                                "\xff\xfe\xfd",
                                cycle,
                                std::string(60000, '('),
                                std::string(1 << 20, '(')};
  int number = 0;
  for (std::string const &each : broken)
    applications_.install(applications_.local() / ("A" + std::to_string(number++) + ".app"), each);
  fs::create_directories(applications_.local() / "Folder.app/Resources/Info-gnustep.plist");
  fs::create_directories(applications_.local() / "Pipe.app/Resources");
  ASSERT_EQ(mkfifo((applications_.local() / "Pipe.app/Resources/Info-gnustep.plist").c_str(), 0600), 0);
  fs::create_directory_symlink(applications_.local(), applications_.local() / "Loop");
  fs::create_directory_symlink("Nowhere", applications_.local() / "Nowhere");
  fs::create_directory(applications_.local() / "Closed");
  fs::permissions(applications_.local() / "Closed", fs::perms::none);
  auto const whole = applications_.install(applications_.local() / "Z.app", information("test.whole"));
  EXPECT_EQ(path_of(@"test.whole"), whole.native());
  EXPECT_FALSE(launch(@"test.whole")) << "it has no program";
}

TEST_F(WorkspaceTest, AStartedApplicationRunsUntilItEnds) {
  auto const wrapper = applications_.install_editor();
  applications_.set_editor_mode("waits");
  EXPECT_EQ([running_editors() count], 0u);
  NSNumber *launched = nil;
  ASSERT_TRUE(launch(editor(), &launched));
  auto const editors = applications_.editors(1);
  ASSERT_EQ(editors.size(), 1u);
  EXPECT_THAT(editors[0].arguments, testing::IsEmpty());
  EXPECT_EQ(editors[0].given_descriptors, 0);
  EXPECT_EQ([launched intValue], editors[0].process);

  ASSERT_EQ([running_editors() count], 1u);
  NSDictionary *running = [running_editors() objectAtIndex:0];
  EXPECT_EQ(text([running objectForKey:@"NSApplicationPath"]), wrapper.native());
  EXPECT_EQ(text([running objectForKey:@"NSApplicationName"]), "AddressBookEditor");
  EXPECT_EQ([[running objectForKey:@"NSApplicationProcessIdentifier"] intValue], editors[0].process);

  EXPECT_FALSE(launch(editor())) << "there is no window to bring forward";
  EXPECT_EQ(applications_.editors(1).size(), 1u) << "and no second one starts";
  test::end_process(editors[0].process);
  EXPECT_EQ([running_editors() count], 0u);
  EXPECT_EQ(waitpid(editors[0].process, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD) << "nobody's child: nothing of it is left to wait for";
}

TEST_F(WorkspaceTest, AnotherDisplaysApplicationDoesNotRunHere) {
  applications_.install_editor();
  applications_.set_editor_mode("waits");
  ASSERT_TRUE(launch(editor()));
  ASSERT_EQ(applications_.editors(1).size(), 1u);
  std::string const ours = std::getenv("DISPLAY");
  setenv("DISPLAY", (ours + ".0").c_str(), 1);
  EXPECT_EQ([running_editors() count], 1u) << "another screen of the same";
  setenv("DISPLAY", ":4711", 1);
  EXPECT_EQ([running_editors() count], 0u);
  setenv("DISPLAY", ours.c_str(), 1);
}

// The answer, or the exception.
NSTask *launched_task(std::string const &program, bool &raised) {
  raised = false;
  try {
    return [NSTask launchedTaskWithLaunchPath:[NSString stringWithUTF8String:program.c_str()]
                                    arguments:[NSArray arrayWithObjects:@"-a b", @"\u00e9", nil]];
  } catch (...) {
    raised = true;
    return nil;
  }
}

std::string write_program(fs::path const &file, std::string const &content, fs::perms permissions) {
  std::ofstream(file) << content;
  fs::permissions(file, permissions);
  return file.native();
}

TEST_F(WorkspaceTest, ATaskOfAnApplicationTellsTheTruth) {
  auto const wrapper = applications_.install(applications_.local() / "Slow.app", information("test.slow"));
  std::string const program = write_program(
      wrapper / "Program", "#!/bin/sh\necho \"$1|$2\" >\"$0.told\"\nexec sleep 100\n", fs::perms::owner_all);
  bool raised;
  NSTask *task = launched_task(program, raised);
  ASSERT_FALSE(raised);
  std::string told;
  EXPECT_TRUE(test::becomes([&] { return bool(std::getline(std::ifstream(program + ".told"), told)); }));
  EXPECT_EQ(told, "-a b|\u00e9");
  EXPECT_TRUE([task isRunning]);
  EXPECT_EQ(kill([task processIdentifier], 0), 0);
  [task terminate];
  EXPECT_TRUE(test::becomes([&] { return ![task isRunning]; }));
  EXPECT_EQ([task terminationStatus], 0);
}

TEST_F(WorkspaceTest, ATaskThatCannotStartRaises) {
  auto const wrapper = applications_.install(applications_.local() / "Bad.app", information("test.bad"));
  std::string const cases[] = {
      (wrapper / "missing").native(),
      (wrapper / "Resources").native(),
      write_program(wrapper / "plain", "#!/bin/sh\n", fs::perms::owner_read | fs::perms::owner_write),
      write_program(wrapper / "garbage", "no program at all", fs::perms::owner_all),
      write_program(wrapper / "orphan", "#!/no/such/interpreter\n", fs::perms::owner_all),
  };
  for (std::string const &each : cases) {
    bool raised;
    EXPECT_EQ(launched_task(each, raised), nil) << each;
    EXPECT_TRUE(raised) << each;
  }
}

TEST_F(WorkspaceTest, AToolIsTheToolkitsTask) {
  bool raised;
  NSTask *task = launched_task("/bin/false", raised);
  ASSERT_FALSE(raised);
  [task waitUntilExit];
  EXPECT_EQ([task terminationStatus], 1);
}

TEST_F(WorkspaceTest, AnAlertWithoutInformativeTextMakesNoneUp) {
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  EXPECT_EQ(text([alert informativeText]), "") << "of nil the toolkit makes a text of its own when it runs";
}

}  // namespace
