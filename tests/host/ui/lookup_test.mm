// The dialog where the printer's address has to be asked for, and nobody, or not everybody, answers.
#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <cstdio>

#include "dialog_fixture.h"
#include "silent_network.h"

#import "toolkit/text.h"

using testing::HasSubstr;
using testing::IsEmpty;
using Clock = std::chrono::steady_clock;

// Notes how long the run loop did not come round.
@interface LoopWatch : NSObject {
 @public
  NSTimeInterval last;
  NSTimeInterval longest;
}
- (void)tick:(NSTimer *)timer;
@end

@implementation LoopWatch
- (void)tick:(NSTimer *)timer {
  NSTimeInterval const now = [NSDate timeIntervalSinceReferenceDate];
  longest = std::max(longest, now - last);
  last = now;
}
@end

namespace fax::host {

using namespace toolkit;

namespace {

// The device URIs of the two queues, as the next dialog finds them.
std::string fax_uri, plain_uri;

class PrinterSearch : public Dialog {
 protected:
  static void SetUpTestSuite() {
    Dialog::SetUpTestSuite();
    refused_ = enter_silent_network();
  }

  void SetUp() override {
    if (!refused_.empty()) GTEST_SKIP() << "no namespaces of our own: " << refused_;
    Dialog::SetUp();
  }

  void TearDown() override {
    if (refused_.empty()) Dialog::TearDown();
  }

  void open_at(char const *uri, char const *of_plain = "", std::string const &extension = "Recording") {
    fax_uri = uri;
    plain_uri = of_plain;
    open(extension, "fax", {}, [](DialogRequest &request) {
      for (auto &queue : request.queues) queue.device_uri = queue.name == "fax" ? fax_uri : plain_uri;
    });
  }

  // Runs the loop until the panels are there. False when that took too long.
  bool wait_until_ready(double seconds) {
    auto const end = Clock::now() + std::chrono::duration<double>(seconds);
    while (![dialog_ isReady] && Clock::now() < end) come_round();
    return [dialog_ isReady];
  }

  // What the panel was given, "none" for no URI, "" when there is no panel.
  std::string panel_uri() const { return utf8([answers_ objectForKey:@"deviceURI"]); }

  std::string printer_status() const { return mapped("printerStatus").value; }

  static std::string refused_;
};

std::string PrinterSearch::refused_;

// With the real panel, which would look the name up again if it were given it.
TEST_F(PrinterSearch, ADeadNameServerNeverStopsTheDialog) {
  auto const start = Clock::now();
  open_at("ipp://mfp.dead.example/ipp", "", FAX_EXTENSION);
  double const drawn = std::chrono::duration<double>(Clock::now() - start).count();
  EXPECT_LT(drawn, 1.0);
  EXPECT_EQ(printer_status(), "Looking for the printer…");
  EXPECT_THAT(mapped("printerStatus").tooltip, HasSubstr("mfp.dead.example"));
  ASSERT_FALSE([dialog_ isReady]);
  EXPECT_FALSE(mapped("Print").enabled);
  [dialog_ print:nil];
  EXPECT_THAT(service_->jobs(), IsEmpty());

  LoopWatch *watch = [[LoopWatch new] autorelease];
  watch->last = [NSDate timeIntervalSinceReferenceDate];
  NSTimer *timer = [NSTimer timerWithTimeInterval:0.01 target:watch selector:@selector(tick:) userInfo:nil repeats:YES];
  [[NSRunLoop currentRunLoop] addTimer:timer forMode:NSDefaultRunLoopMode];
  EXPECT_TRUE(wait_until_ready(7));
  double const ready = std::chrono::duration<double>(Clock::now() - start).count();
  come_round();
  [timer invalidate];
  std::printf("dialog drawn after %.0f ms, panel there after %.2f s, longest gap of the loop %.0f ms\n", drawn * 1000,
              ready, watch->longest * 1000);
  EXPECT_LT(watch->longest, 0.5);
  EXPECT_EQ(printer_status(), "Address unknown: the name service does not answer.");
  EXPECT_EQ(value(@"Options"), "Fax Settings");
  EXPECT_TRUE(mapped("Print").enabled);
}

struct KnownCase {
  char const *uri;
  char const *panel_uri;
  char const *status;
};

TEST_F(PrinterSearch, ThePanelGetsAnAddressThatNeedsNoLookUp) {
  for (auto const &[uri, given, status] : {
           KnownCase{"ipp://office.example/ipp", "ipp://192.0.2.20:631/ipp", "Found at 192.0.2.20."},
           KnownCase{"ipps://office.example/ipp", "ipp://192.0.2.20:631/ipp", "Found at 192.0.2.20."},
           KnownCase{"socket://unknown.example", "none", "Address unknown: \"unknown.example\" could not be looked up."},
           KnownCase{"socket://192.0.2.9", "socket://192.0.2.9", "Found at 192.0.2.9."},
           KnownCase{"usb://Norvalt/F1", "usb://Norvalt/F1", "Connected by USB."},
           KnownCase{"ippusb://F1/", "ippusb://F1/", "Address unknown: the queue's device is of the kind \"ippusb\"."},
           KnownCase{"", "none", "Address unknown: the queue has no device URI."},
       }) {
    SCOPED_TRACE(uri);
    open_at(uri);
    EXPECT_TRUE(wait_until_ready(3));
    EXPECT_EQ(panel_uri(), given);
    EXPECT_EQ(printer_status(), status);
    [dialog_ release];
    dialog_ = nil;
  }
}

TEST_F(PrinterSearch, AServiceWithoutDiscoveryIsToldAndKeepsNobodyWaiting) {
  open_at("ipps://Office%20MFP._ipps._tcp.local/");
  EXPECT_TRUE(wait_until_ready(1));
  EXPECT_EQ(panel_uri(), "none");
  EXPECT_EQ(printer_status(), "Address unknown: network discovery is not available.");
}

TEST_F(PrinterSearch, AnAnswerAboutTheFormerPrinterIsDropped) {
  NSAutoreleasePool *opening = [NSAutoreleasePool new];
  open_at("ipp://slow.example/ipp", "socket://192.0.2.9");
  EXPECT_FALSE([dialog_ isReady]);
  choose(@"Printer", @"Queue plain");
  EXPECT_TRUE([dialog_ isReady]);
  EXPECT_EQ(panel_uri(), "socket://192.0.2.9");
  auto const asked = calls_of([&] {
    for (auto const end = Clock::now() + std::chrono::seconds(1); Clock::now() < end;) come_round();
  });
  EXPECT_THAT(asked, IsEmpty());
  EXPECT_EQ(printer_status(), "Found at 192.0.2.9.");
  // And back: the question is asked again, and this time its answer counts.
  choose(@"Printer", @"Queue fax (fax)");
  EXPECT_FALSE([dialog_ isReady]);
  EXPECT_TRUE(wait_until_ready(3));
  EXPECT_EQ(printer_status(), "Address unknown: \"slow.example\" could not be looked up.");
  [opening release];
}

TEST_F(PrinterSearch, TheDialogMayEndBeforeTheAnswerComes) {
  open_at("ipp://slow.example/ipp");
  [dialog_ cancel:nil];
  EXPECT_EQ(owner_->ends, 1);
  [dialog_ release];
  dialog_ = nil;
  for (auto const end = Clock::now() + std::chrono::milliseconds(700); Clock::now() < end;) come_round();
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(PrinterSearch, TheFaxPanelKnowsTheAddressAsSoonAsItIsThere) {
  for (auto const &[uri, address] : {std::pair{"ipps://office.example/ipp", "192.0.2.20"},
                                     std::pair{"ipp://[v1.fe80::7+lo]/ipp", "fe80::7%lo"},
                                     std::pair{"usb://Norvalt/F1", ""}}) {
    SCOPED_TRACE(uri);
    open_at(uri, "", FAX_EXTENSION);
    ASSERT_TRUE(wait_until_ready(3));
    NSArray *panels = [dialog_ valueForKeyPath:@"panels.panels"];
    ASSERT_EQ([panels count], 1u);
    NSString *known = [[panels objectAtIndex:0] valueForKeyPath:@"panel.printerAddress"];
    ASSERT_TRUE(known);
    EXPECT_EQ(utf8(known), address);
    [dialog_ release];
    dialog_ = nil;
  }
}

}  // namespace
}  // namespace fax::host
