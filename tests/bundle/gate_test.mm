// The print gate: when the fax dialog opens, and what lets a job go on.
#import "bundle_fixture.h"

#include <unistd.h>

#include <cstdio>

namespace {

class GateTest : public test::BundleTest {
 protected:
  std::string setting(NSString *name) {
    CFTypeRef value = NULL;
    NSString *key = [@"com.norvalt.tk.o.print.printsettings." stringByAppendingString:name];
    PMPrintSettingsGetValue(host_->settings, (CFStringRef)key, &value);
    return test::utf8((NSString *)value);
  }

  void in_dialog(id panel, std::function<void(id controller)> const &script) {
    in_modal_session([=, this] {
      opened_++;
      script([panel valueForKey:@"detailedFaxSettingContoller"]);
    });
  }

  int opened_ = 0;
};

void type(id controller, NSString *name, NSString *number) {
  [controller setValue:name forKey:@"addressName"];
  [controller setValue:number forKey:@"addressPhoneNumber"];
}

TEST_F(GateTest, OnlyAJobThatMayGoToThePrinterOpensTheDialog) {
  struct {
    char const *name;
    PMDestinationType destination;
    bool session, settings;
    OSStatus status;
    bool opens;
  } const cases[] = {
      {"printer", kPMDestinationPrinter, true, true, noErr, true},
      {"file", kPMDestinationFile, true, true, noErr, false},
      {"preview", kPMDestinationPreview, true, true, noErr, false},
      {"no session", kPMDestinationFile, false, true, noErr, true},
      {"no settings", kPMDestinationFile, true, false, noErr, true},
      {"call fails", kPMDestinationFile, true, true, kPMInvalidParameter, true},
  };
  for (auto const &row : cases) {
    SCOPED_TRACE(row.name);
    id panel = this->panel();
    PMSessionSetDestination(host_->session, host_->settings, row.destination, NULL, NULL);
    host_->hasSession = row.session;
    host_->hasSettings = row.settings;
    fakes().destination_status = row.status;
    opened_ = 0;
    in_dialog(panel, [](id controller) { [controller stopSending:nil]; });
    EXPECT_EQ([panel shouldPrint], !row.opens);
    EXPECT_EQ(opened_, row.opens);
  }
}

TEST_F(GateTest, StartWritesTheJobAndStopWritesNothing) {
  id panel = this->panel();
  in_dialog(panel, [](id controller) {
    type(controller, @"Anna", @"123");
    [controller addAddressInfo:nil];
    [controller startSending:nil];
  });
  EXPECT_TRUE([panel shouldPrint]);
  EXPECT_EQ(setting(@"DFaxDestinationNumber"), "1");
  EXPECT_EQ(setting(@"DFaxDestinationName1"), "Anna");

  fakes().stored_keys.clear();
  in_dialog(panel, [](id controller) { [controller stopSending:nil]; });
  EXPECT_FALSE([panel shouldPrint]);
  EXPECT_TRUE(fakes().stored_keys.empty());

  host_->hasSettings = NO;
  in_dialog(panel, [](id controller) {
    type(controller, @"", @"9");
    [controller addAddressInfo:nil];
    [controller startSending:nil];
  });
  EXPECT_TRUE([panel shouldPrint]) << "no settings to write into, and none needed";
}

TEST_F(GateTest, TheDialogIsLoadedOnceAndToldAnew) {
  id panel = this->panel();
  in_dialog(panel, [](id controller) { [controller stopSending:nil]; });
  [panel shouldPrint];
  id first = [panel valueForKey:@"detailedFaxSettingContoller"];
  [panel shouldPrint];
  EXPECT_EQ([panel valueForKey:@"detailedFaxSettingContoller"], first);
  EXPECT_EQ(opened_, 2);
  EXPECT_EQ([first valueForKey:@"bundle"], test::bundle());
}

TEST_F(GateTest, OpeningAndStoppingManyTimesLeavesNothingBehind) {
  id panel = this->panel();
  auto const resident_pages = [] {
    long total = 0, resident = 0;
    FILE *file = std::fopen("/proc/self/statm", "r");
    if (std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
    std::fclose(file);
    return resident;
  };
  long after_tenth = 0;
  for (int round = 1; round <= 200; round++) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    test::when_modal([&] {
      id controller = [panel valueForKey:@"detailedFaxSettingContoller"];
      for (int i = 0; i < 3; i++) {
        type(controller, @"Anna", [NSString stringWithFormat:@"%d", i]);
        [controller addAddressInfo:nil];
      }
      [controller stopSending:nil];
    });
    ASSERT_FALSE([panel shouldPrint]);
    [pool release];
    if (round == 10) after_tenth = resident_pages();
  }
  double const grown = double(resident_pages() - after_tenth) * double(sysconf(_SC_PAGESIZE)) / (1 << 20);
  RecordProperty("grown_mib", std::to_string(grown));
  std::printf("resident size grown by %.2f MiB from round 10 to 200\n", grown);
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizer keeps freed memory";
#endif
  EXPECT_LE(grown, 2.0);
}

TEST_F(GateTest, PanelsThatComeAndGoLeaveNothingRunning) {
  for (int round = 0; round < 20; round++) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    id panel = this->panel();
    in_dialog(panel, [](id controller) { [controller stopSending:nil]; });
    [panel shouldPrint];
    [pool release];
  }
  // A list of a dialog that is gone would still be observed, and its controller called.
  [[NSRunLoop currentRunLoop] runUntilDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
  EXPECT_EQ(opened_, 20);
}

}  // namespace
