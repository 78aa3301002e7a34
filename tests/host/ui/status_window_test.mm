// The status window over real jobs in a print service of the test's own.
#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <chrono>
#include <functional>

#include "../core/message_bus.h"
#include "../core/private_cups.h"
#include "host/ui_map.h"

#import "host/HostScreenMap.h"
#import "host/HostStatusWindow.h"
#import "toolkit/text.h"

using testing::HasSubstr;
using Clock = std::chrono::steady_clock;

@interface CloseCounter : NSObject <HostStatusWindowOwner> {
 @public
  int closes;
}
@end
@implementation CloseCounter
- (void)statusWindowDidClose:(HostStatusWindow *)window {
  ++closes;
}
@end

namespace fax::host {

using namespace toolkit;

namespace {

class StatusWindow : public testing::Test {
 protected:
  void SetUp() override {
    if (!PrivateCups::is_installed() || !MessageBus::is_installed()) GTEST_SKIP() << "cupsd or dbus-daemon is missing";
    pool_ = [NSAutoreleasePool new];
    cups_ = std::make_unique<PrivateCups>("PreserveJobFiles No");
    cups_->add_queue("fax", TEST_DATA "/../core/fax.ppd");
    owner_ = [CloseCounter new];
  }

  void TearDown() override {
    if (cups_) cups_->let_go();
    [window_ release];
    [owner_ release];
    [pool_ release];
  }

  void follow(char const *title, std::vector<Setting> options = {}) {
    JobRequest const request{"fax", title, Document::of_bytes("%PDF-1.4\nfax", "Report"), 1, options, {}, {}, {}};
    auto const number = submit(cups_->server(), request, {});
    ASSERT_TRUE(number) << number.failure().text();
    SubmittedJob const job{number.value(), request};
    window_ = [[HostStatusWindow alloc] initWithServer:cups_->server() job:job owner:owner_];
    [window_ show];
  }

  // Lets the run loop go round until that is true; the longest it stood still must not be felt.
  bool comes(std::function<bool()> const &condition) {
    for (auto const end = Clock::now() + std::chrono::seconds(20); Clock::now() < end;) {
      if (condition()) return true;
      auto const turn = Clock::now();
      [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
      longest_ = std::max(longest_, Clock::now() - turn);
    }
    return false;
  }

  bool shows(std::string const &text) {
    return comes([&] {
      for (auto const &window : windows_on_screen())
        for (auto const &control : window.controls)
          if (control.value.find(text) != std::string::npos) return true;
      return false;
    });
  }

  NSButton *button(NSString *title) {
    NSArray *const views = [[[window_ window] contentView] subviews];
    for (NSUInteger at = 0; at < [views count]; ++at) {
      id const view = [views objectAtIndex:at];
      if ([view isKindOfClass:[NSButton class]] && [[view title] isEqual:title]) return view;
    }
    return nil;
  }

  void press(NSString *title) {
    ASSERT_TRUE(comes([&] { return [button(title) isEnabled]; })) << utf8(title);
    [button(title) performClick:nil];
  }

  // What the text takes when it is laid out within the field's width.
  static CGFloat drawn_height(NSTextField *field) {
    NSTextStorage *const text = [[[NSTextStorage alloc] initWithString:[field stringValue]] autorelease];
    [text addAttribute:NSFontAttributeName value:[field font] range:NSMakeRange(0, [text length])];
    NSLayoutManager *const layout = [[NSLayoutManager new] autorelease];
    NSSize const room = NSMakeSize([field frame].size.width, 1e6);
    NSTextContainer *const container = [[[NSTextContainer alloc] initWithContainerSize:room] autorelease];
    [layout addTextContainer:container];
    [text addLayoutManager:layout];
    [layout glyphRangeForTextContainer:container];
    return [layout usedRectForTextContainer:container].size.height;
  }

  NSAutoreleasePool *pool_ = nil;
  std::unique_ptr<PrivateCups> cups_;
  CloseCounter *owner_ = nil;
  HostStatusWindow *window_ = nil;
  Clock::duration longest_{};
};

TEST_F(StatusWindow, FollowsTellsTheDesktopAndClosesWithoutTouchingTheJob) {
  MessageBus const bus;
  NotificationService service(true);
  follow("hang <1>");
  EXPECT_TRUE(shows("Processing page 2"));
  EXPECT_TRUE(shows("Dialling"));
  EXPECT_TRUE([button(@"Cancel Job") isEnabled]);
  EXPECT_FALSE([button(@"Retry") isEnabled]);
  cups_->let_go();
  EXPECT_TRUE(shows("Done"));
  EXPECT_FALSE([button(@"Cancel Job") isEnabled]);
  auto const notes = service.notes();
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_EQ(notes[0].title, "Job 1 on the queue fax: Done");
  EXPECT_THAT(notes[0].text, HasSubstr("hang &lt;1&gt;"));
  EXPECT_EQ(notes[0].urgency, 1);
  press(@"OK");
  EXPECT_EQ(owner_->closes, 1);
}

TEST_F(StatusWindow, CancelsAndSendsAgain) {
  follow("", {{"job-hold-until", "indefinite"}});
  EXPECT_TRUE(shows("Held until it is released"));
  [[window_ window] makeFirstResponder:button(@"Cancel Job")];
  press(@"Cancel Job");
  EXPECT_TRUE(shows("Cancelled"));
  EXPECT_EQ([[window_ window] firstResponder], button(@"OK"));
  press(@"Retry");
  EXPECT_TRUE(shows("was sent again, as job 2."));
  EXPECT_TRUE(shows("Held until it is released"));
  EXPECT_EQ(utf8([[window_ window] title]), "Job 2 on the queue fax");
}

TEST_F(StatusWindow, GrowsForALongMessage) {
  follow("fail:The line is busy. The fax unit dialled three times, at intervals of one minute, and heard the busy tone "
         "each time; the number may be wrong, or its owner may be talking. Nothing was sent to anybody so far. Last word.");
  EXPECT_TRUE(shows("Last word."));
  EXPECT_TRUE(shows("still in the queue"));
  NSView *const content = [[window_ window] contentView];
  NSArray *const views = [content subviews];
  for (NSUInteger at = 0; at < [views count]; ++at) {
    NSView *const view = [views objectAtIndex:at];
    EXPECT_TRUE(NSContainsRect([content bounds], [view frame])) << utf8(view);
    if ([view isKindOfClass:[NSTextField class]]) {
      EXPECT_LE(drawn_height((NSTextField *)view), [view frame].size.height) << utf8([(NSTextField *)view stringValue]);
    }
  }
}

TEST_F(StatusWindow, NeverStandsStillWhileThePrintServiceHangs) {
  follow("hang");
  EXPECT_TRUE(shows("Processing page 2"));
  cups_->pause();
  longest_ = {};
  EXPECT_TRUE(shows("The print service does not answer"));
  EXPECT_TRUE(shows("The last that is known of the job: Processing page 2."));
  EXPECT_LT(longest_, std::chrono::milliseconds(500));
  cups_->resume();
  EXPECT_TRUE(shows("Dialling"));
  [[window_ window] performClose:nil];
  EXPECT_EQ(owner_->closes, 1);
}

}  // namespace
}  // namespace fax::host
