// What the driver's filter finds in the job.
#import "bundle_fixture.h"

#include <chrono>
#include <cstdio>
#include <initializer_list>

namespace {

using test::utf8;

constexpr char kPrefix[] = "com.norvalt.tk.o.print.printsettings.";

class JobSettingsTest : public test::BundleTest {
 protected:
  JobSettingsTest() {
    panel_ = [panel() retain];
    in_modal_session([] {});
    [panel_ shouldPrint];
    controller_ = [panel_ valueForKey:@"detailedFaxSettingContoller"];
    fakes().stored_keys.clear();
  }
  ~JobSettingsTest() override {
    [controller_ stopSending:nil];
    [panel_ release];
  }

  void add(NSString *name, NSString *number) {
    id entry = [[[test::class_named("AddressInformation") alloc] init] autorelease];
    [entry setValue:name forKey:@"name"];
    [entry setValue:number forKey:@"phoneNumber"];
    [[controller_ valueForKey:@"addressArrayController"] addObject:entry];
  }

  std::string setting(std::string const &name) {
    CFTypeRef value = NULL;
    PMPrintSettingsGetValue(host_->settings, (CFStringRef)test::ns(kPrefix + name), &value);
    return utf8((NSString *)value);
  }

  id panel_;
  id controller_;
};

TEST_F(JobSettingsTest, KeysAreWrittenInTheirOrder) {
  add(@"J\u00fcrgen", @"1");
  add(@"\u6771\u4eac", @"2");
  [controller_ setValue:@"1234" forKey:@"password"];
  [controller_ setValue:[NSNumber numberWithInt:1] forKey:@"delayedPrint"];
  NSDateComponents *evening = [[[NSDateComponents alloc] init] autorelease];
  [evening setYear:2026];
  [evening setMonth:3];
  [evening setDay:4];
  [evening setHour:21];
  [evening setMinute:5];
  [controller_ setValue:[[NSCalendar currentCalendar] dateFromComponents:evening] forKey:@"delayedTime"];
  [controller_ setPrintSettings:host_->settings];

  std::vector<std::string> expected;
  for (char const *name :
       {"DFaxPassword", "DFaxDelayedPrint", "DFaxDelayedTime", "DFaxDestinationNumber", "DFaxDestinationName1",
        "DFaxDestinationPhoneNumber1", "DFaxDestinationName2", "DFaxDestinationPhoneNumber2"})
    expected.push_back(std::string(kPrefix) + name);
  EXPECT_EQ(fakes().stored_keys, expected);
  // 1234 XOR tovq = 45 5D 45 45
  EXPECT_EQ(setting("DFaxPassword"), "RV1FRQ==");
  EXPECT_EQ(setting("DFaxDelayedPrint"), "1");
  EXPECT_EQ(setting("DFaxDelayedTime"), "21:05");
  EXPECT_EQ(setting("DFaxDestinationNumber"), "2");
  EXPECT_EQ(setting("DFaxDestinationName1"), "\xE6\x9D\xB1\xE4\xBA\xAC");
  EXPECT_EQ(setting("DFaxDestinationPhoneNumber1"), "2");
  EXPECT_EQ(setting("DFaxDestinationName2"), "J\xC3\xBCrgen");
}

TEST_F(JobSettingsTest, WithoutPasswordOrDestinationsLittleIsWritten) {
  for (NSString *password : std::initializer_list<NSString *>{@"", nil}) {
    [controller_ setValue:password forKey:@"password"];
    [controller_ setPrintSettings:host_->settings];
    EXPECT_EQ(setting("DFaxPassword"), "");
  }
  EXPECT_EQ(setting("DFaxDelayedPrint"), "0");
  EXPECT_EQ(setting("DFaxDelayedTime").size(), 5u);
  EXPECT_EQ(setting("DFaxDestinationNumber"), "(nil)");
}

TEST_F(JobSettingsTest, AFailedStoreOfTheFirstThreeEndsTheTransfer) {
  struct {
    int first, last;
    std::size_t stores;
  } const cases[] = {{0, 0, 1}, {1, 1, 2}, {2, 2, 3}, {3, 99, 6}};
  add(@"Ann", @"1");
  for (auto const &row : cases) {
    fakes().stored_keys.clear();
    fakes().first_failing_store = row.first;
    fakes().last_failing_store = row.last;
    [controller_ setPrintSettings:host_->settings];
    EXPECT_EQ(fakes().stored_keys.size(), row.stores) << row.first;
  }
}

TEST_F(JobSettingsTest, KeysOfAnEarlierJobStay) {
  add(@"Ann", @"1");
  add(@"Bob", @"2");
  [controller_ setPrintSettings:host_->settings];
  NSArrayController *list = [controller_ valueForKey:@"addressArrayController"];
  [list removeObject:[[list arrangedObjects] objectAtIndex:0]];
  [controller_ setPrintSettings:host_->settings];
  EXPECT_EQ(setting("DFaxDestinationNumber"), "1");
  EXPECT_EQ(setting("DFaxDestinationName1"), "Ann");
  EXPECT_EQ(setting("DFaxDestinationName2"), "Ann");
}

TEST_F(JobSettingsTest, ThirtyDestinationsTakeLessThanAMillisecond) {
  for (int i = 1; i <= 30; i++)
    add([NSString stringWithFormat:@"Recipient %02d of the list", i], [NSString stringWithFormat:@"030-1234%02d", i]);
  [controller_ setValue:@"1234" forKey:@"password"];
  double best = 1e9;
  for (int round = 0; round < 20; round++) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    auto const start = std::chrono::steady_clock::now();
    [controller_ setPrintSettings:host_->settings];
    std::chrono::duration<double, std::milli> const taken = std::chrono::steady_clock::now() - start;
    best = std::min(best, taken.count());
    [pool release];
  }
  EXPECT_EQ(setting("DFaxDestinationNumber"), "30");
  EXPECT_EQ(setting("DFaxDestinationPhoneNumber30"), "030-123401");
  EXPECT_EQ(fakes().stored_keys.size() / 20, 64u);
  std::printf("30 destinations into the settings: %.3f ms\n", best);
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "not a build to be timed";
#endif
  EXPECT_LT(best, 1.0);
}

}  // namespace
