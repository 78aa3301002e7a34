// Each fault is found, and nothing else.
#import "fitting.h"

#include <gmock/gmock.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

NSString *const kLong = @"A text that is much too long for its place";

class FittingReport : public testing::Test {
 protected:
  FittingReport() : pool_([NSAutoreleasePool new]) {
    window_ = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 400, 300)
                                          styleMask:NSTitledWindowMask
                                            backing:NSBackingStoreBuffered
                                              defer:YES];
  }
  ~FittingReport() override {
    [window_ release];
    [pool_ release];
  }

  template <typename View> View *put(CGFloat x, CGFloat y, CGFloat width, CGFloat height, NSView *into = nil) {
    View *view = [[[View alloc] initWithFrame:NSMakeRect(x, y, width, height)] autorelease];
    [into != nil ? into : [window_ contentView] addSubview:view];
    return view;
  }
  NSTextField *label(NSString *text, CGFloat x, CGFloat y, CGFloat width, NSView *into = nil) {
    NSTextField *field = put<NSTextField>(x, y, width, 18, into);
    [field setEditable:NO];
    [field setBezeled:NO];
    [field setStringValue:text];
    return field;
  }
  auto report() { return test::fitting_report(window_); }

  NSAutoreleasePool *pool_;
  NSWindow *window_;
};

TEST_F(FittingReport, SaysNothingOfWhatFits) {
  label(@"Short", 10, 10, 100);
  [put<NSButton>(10, 40, 100, 28) setTitle:@"Short"];
  [put<NSTextField>(10, 80, 40, 22) setStringValue:kLong];
  [label(kLong, 10, 110, 40) setHidden:YES];
  EXPECT_THAT(report(), IsEmpty());
}

TEST_F(FittingReport, TellsEveryTextThatIsCut) {
  label(kLong, 0, 0, 40);
  EXPECT_THAT(report(), ElementsAre(HasSubstr("label")));
  [put<NSButton>(0, 30, 40, 28) setTitle:kLong];
  NSButton *box = put<NSButton>(0, 60, 60, 18);
  [box setButtonType:NSSwitchButton];
  [box setTitle:kLong];
  NSPopUpButton *popUp = put<NSPopUpButton>(0, 80, 80, 22);
  [popUp addItemWithTitle:@"A"];
  [popUp addItemWithTitle:kLong];
  [put<NSBox>(0, 110, 100, 40) setTitle:kLong];
  NSTextField *broken = label(kLong, 200, 0, 60);
  [[broken cell] setWraps:YES];
  NSTableView *table = put<NSTableView>(200, 100, 100, 50);
  NSTableColumn *column = [[[NSTableColumn alloc] initWithIdentifier:@"x"] autorelease];
  [[column headerCell] setStringValue:kLong];
  [column setWidth:50];
  [table addTableColumn:column];
  NSTabView *tabs = put<NSTabView>(200, 200, 150, 90);
  for (NSString *name : {static_cast<NSString *>(@"One"), kLong}) {
    NSTabViewItem *item = [[[NSTabViewItem alloc] initWithIdentifier:name] autorelease];
    [item setLabel:name];
    [item setView:[[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 100, 50)] autorelease]];
    label(name, 0, 0, 60, [item view]);
    [tabs addTabViewItem:item];
  }
  [window_ setTitle:[kLong stringByAppendingString:kLong]];
  EXPECT_THAT(report(),
              ElementsAre(HasSubstr("title"), HasSubstr("label"), HasSubstr("button"), HasSubstr("button"),
                          HasSubstr("pop-up item"), HasSubstr("box"), HasSubstr("height of label"), HasSubstr("heading"),
                          HasSubstr("tabs"), HasSubstr("label")));
  EXPECT_NE(test::fitting_fault(label(@"", 300, 0, 40), kLong, true), "");
}

TEST_F(FittingReport, TellsWhatLiesOutsideOrUnderAnother) {
  label(@"A", 380, 10, 60);
  EXPECT_THAT(report(), ElementsAre(HasSubstr("lies outside")));
  label(@"B", 10, 10, 100);
  label(@"C", 100, 10, 100);
  EXPECT_THAT(report(), ElementsAre(HasSubstr("outside"), HasSubstr("\"B\" [10 10 100 18] overlaps")));
}

}  // namespace
