// A window that is one and a half times as large as its points.
#import "fixture.h"

#include <gtest/gtest.h>

@interface CountedView : NSView {
 @public
  int drawn;
  NSRect last;
}
@end

@implementation CountedView
- (void)drawRect:(NSRect)area {
  ++drawn;
  last = area;
}
@end

namespace {

class ScaledTest : public testing::Test {
 protected:
  void SetUp() override {
    use_scale(@"1.5");
    window = [[NSWindow alloc] initWithContentRect:NSMakeRect(50, 50, 301, 203)
                                         styleMask:NSTitledWindowMask
                                           backing:NSBackingStoreBuffered
                                             defer:NO];
    [window setReleasedWhenClosed:NO];
  }
  void TearDown() override {
    [window orderOut:nil];
    [window release];
    use_scale(@"1");
    [pool release];
  }
  static void use_scale(NSString *factor) {
    [[NSUserDefaults standardUserDefaults] registerDefaults:[NSDictionary dictionaryWithObject:factor
                                                                                        forKey:@"GSScaleFactor"]];
  }

  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSWindow *window = nil;
};

// Wherever its edges fall, a view is drawn once for one change, and over whole pixels.
TEST_F(ScaledTest, DrawsEveryChangeOnce) {
  for (CGFloat place : {10.0, 10.1, 33.3, 70.7}) {
    CountedView *view = [[[CountedView alloc] initWithFrame:NSMakeRect(place, place / 3, 90.3, 17.7)] autorelease];
    [[window contentView] addSubview:view];
    [window orderFront:nil];
    [window displayIfNeeded];
    view->drawn = 0;
    [view setNeedsDisplayInRect:NSMakeRect(3.1, 2.3, 20.9, 11.3)];
    [window displayIfNeeded];
    [window displayIfNeeded];
    EXPECT_EQ(view->drawn, 1) << place;
    EXPECT_TRUE(NSContainsRect(view->last, NSMakeRect(3.1, 2.3, 20.9, 11.3))) << place;
    [view removeFromSuperview];
  }
}

TEST_F(ScaledTest, ScrollsNothingLessThanAPoint) {
  NSScrollView *scroll = [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 200, 100)] autorelease];
  [scroll setAutohidesScrollers:YES];
  [scroll setHasHorizontalScroller:YES];
  [scroll setHasVerticalScroller:YES];
  [[window contentView] addSubview:scroll];
  struct Case {
    CGFloat width, height;
    bool across, down;
  };
  for (Case const &one : {Case{200.5, 100.9, false, false}, Case{230, 60, true, false}, Case{150, 140, false, true}}) {
    [scroll setDocumentView:[[[NSView alloc] initWithFrame:NSMakeRect(0, 0, one.width, one.height)] autorelease]];
    [scroll reflectScrolledClipView:[scroll contentView]];
    EXPECT_EQ([scroll hasHorizontalScroller], one.across) << one.width;
    EXPECT_EQ([scroll hasVerticalScroller], one.down) << one.height;
  }
}

}  // namespace
