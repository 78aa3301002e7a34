// The theme inside a started application, on a display.
#import <AppKit/AppKit.h>

#include <gmock/gmock.h>

#include <fstream>
#include <string>
#include <vector>

#import "host/theme/AlertPanel.h"
#import "host/theme/FaxTheme.h"

using namespace fax::theme;

// Tells what of it was drawn.
@interface DrawnField : NSTextField {
 @public
  NSRect drawn;
}
@end

@implementation DrawnField
- (void)drawRect:(NSRect)area {
  drawn = NSUnionRect(drawn, area);
  [super drawRect:area];
}
@end

namespace {

class Theme : public testing::Test {
 protected:
  static void SetUpTestSuite() { start_application(Choice::dark); }
  void SetUp() override { pool_ = [NSAutoreleasePool new]; }
  void TearDown() override { [pool_ release]; }

 private:
  NSAutoreleasePool *pool_ = nil;
};

// Stays when it is closed.
NSWindow *new_window(NSSize size, NSUInteger style) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:NSMakeRect(50, 50, size.width, size.height)
                                                 styleMask:style
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setReleasedWhenClosed:NO];
  return window;
}

NSString *repeated(NSString *text, int times) {
  NSMutableString *whole = [NSMutableString string];
  for (int at = 0; at < times; ++at) [whole appendString:text];
  return whole;
}

TEST_F(Theme, AnswersTheToolkitsColoursAndPictures) {
  NSColor *ground = [[NSColor windowBackgroundColor] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
  Colour const expected = palette(Scheme::dark).window;
  EXPECT_NEAR([ground redComponent] * 255, expected.red, 1);
  EXPECT_NEAR([ground blueComponent] * 255, expected.blue, 1);
  NSButton *box = [[[NSButton alloc] initWithFrame:NSMakeRect(0, 0, 100, 20)] autorelease];
  [box setButtonType:NSSwitchButton];
  EXPECT_EQ([[box image] size].width, 15);
  EXPECT_EQ([[box alternateImage] size].width, 15);
  EXPECT_NE([box image], [box alternateImage]);
}

// As strings of red, green and blue, one a pixel.
std::vector<std::string> pixels_of(NSView *view) {
  [view lockFocus];
  NSBitmapImageRep *const seen = [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[view bounds]] autorelease];
  [view unlockFocus];
  std::vector<std::string> pixels;
  for (NSInteger row = 0; row < [seen pixelsHigh]; ++row) {
    for (NSInteger column = 0; column < [seen pixelsWide]; ++column) {
      NSUInteger parts[4]{};
      [seen getPixel:parts atX:column y:row];
      pixels.push_back(std::to_string(parts[0]) + " " + std::to_string(parts[1]) + " " + std::to_string(parts[2]));
    }
  }
  return pixels;
}

// A picture lets the ground through, and the display server keeps it from the first drawing on.
TEST_F(Theme, DrawsAPictureFromOneCopy) {
  NSWindow *window = new_window(NSMakeSize(40, 40), NSBorderlessWindowMask);
  NSView *const view = [window contentView];
  std::vector<std::vector<std::string>> drawn;
  std::vector<NSUInteger> windows;
  for (CGFloat fraction : {1.0, 1.0, 0.5}) {
    [view lockFocus];
    [[NSColor whiteColor] set];
    NSRectFill([view bounds]);
    [[NSImage imageNamed:@"NSFolder"] drawInRect:NSMakeRect(4, 4, 32, 32)
                                        fromRect:NSZeroRect
                                       operation:NSCompositeSourceOver
                                        fraction:fraction];
    [view unlockFocus];
    drawn.push_back(pixels_of(view));
    windows.push_back([[NSApp windows] count]);
  }
  EXPECT_EQ(drawn[0], drawn[1]);
  EXPECT_NE(drawn[0], drawn[2]);
  EXPECT_EQ(windows[0], windows[2]);
  for (auto const &pixels : drawn) {
    EXPECT_EQ(pixels.front(), "255 255 255");
    EXPECT_NE(pixels[20 * 40 + 20], "255 255 255");
  }
  [window release];
}

// No module of ImageMagick is loaded until there is a picture that needs it.
TEST_F(Theme, KnowsKindsOfPicturesByName) {
  auto const modules = [] {
    std::ifstream maps("/proc/self/maps");
    std::string const all{std::istreambuf_iterator<char>(maps), {}};
    return all.find("/coders/") != std::string::npos;
  };
  NSArray *const types = [NSImage imageFileTypes];
  for (NSString *type : {@"png", @"tiff", @"webp", @"svg"}) EXPECT_TRUE([types containsObject:type]) << [type UTF8String];
  EXPECT_FALSE(modules());
  char const text[] = "/* XPM */ static char *dot[] = {\"2 1 1 1\", \". c #ff0000\", \"..\"};";
  NSImage *const image =
      [[[NSImage alloc] initWithData:[NSData dataWithBytes:text length:sizeof text - 1]] autorelease];
  EXPECT_EQ([image size].width, 2);
  EXPECT_TRUE(modules());
}

// Every control of a kind is drawn, in every state, without an exception, a look at the disk or a pixel outside it.
TEST_F(Theme, DrawsEveryControl) {
  NSWindow *window = new_window(NSMakeSize(400, 300), NSTitledWindowMask);
  NSTabView *tabs = [[[NSTabView alloc] initWithFrame:NSMakeRect(0, 0, 1, 1)] autorelease];
  for (NSString *title : {@"One", @"Two"}) {
    NSTabViewItem *item = [[[NSTabViewItem alloc] initWithIdentifier:title] autorelease];
    [item setLabel:title];
    [tabs addTabViewItem:item];
  }
  NSProgressIndicator *waiting = [[[NSProgressIndicator alloc] initWithFrame:NSZeroRect] autorelease];
  [waiting setIndeterminate:YES];
  NSProgressIndicator *spinning = [[[NSProgressIndicator alloc] initWithFrame:NSZeroRect] autorelease];
  [spinning setStyle:NSProgressIndicatorSpinningStyle];
  NSScrollView *scroll = [[[NSScrollView alloc] initWithFrame:NSZeroRect] autorelease];
  [scroll setHasVerticalScroller:YES];
  [scroll setHasHorizontalScroller:YES];
  [scroll setBorderType:NSBezelBorder];
  [scroll setDocumentView:[[[NSTableView alloc] initWithFrame:NSMakeRect(0, 0, 900, 900)] autorelease]];
  NSArray *views = [NSArray
      arrayWithObjects:[[NSButton new] autorelease], [[NSPopUpButton new] autorelease], [[NSTextField new] autorelease],
                       [[NSSearchField new] autorelease], [[NSSecureTextField new] autorelease],
                       [[NSComboBox new] autorelease], [[NSStepper new] autorelease], [[NSBox new] autorelease],
                       [[NSBrowser new] autorelease], [[NSSlider new] autorelease],
                       [[NSProgressIndicator new] autorelease], waiting, spinning, tabs, scroll, nil];
  [window makeKeyAndOrderFront:nil];
  for (NSUInteger at = 0; at < [views count]; ++at) {
    NSView *view = [views objectAtIndex:at];
    for (NSSize size : {NSMakeSize(180, 120), NSMakeSize(60, 22), NSMakeSize(3, 3)}) {
      [view setFrame:NSMakeRect(20, 20, size.width, size.height)];
      [[window contentView] addSubview:view];
      for (BOOL enabled : {YES, NO}) {
        if ([view respondsToSelector:@selector(setEnabled:)]) [static_cast<id>(view) setEnabled:enabled];
        [window makeFirstResponder:view];
        EXPECT_NO_THROW([window display]) << [[view className] UTF8String];
      }
      [view removeFromSuperview];
    }
  }
  [window orderOut:nil];
  [window release];
}

// What is framed for the focus has to be drawn anew when the focus leaves, too.
TEST_F(Theme, DrawsAFieldAnewThatLosesTheFocus) {
  NSWindow *window = new_window(NSMakeSize(300, 100), NSTitledWindowMask);
  DrawnField *first = [[[DrawnField alloc] initWithFrame:NSMakeRect(10, 60, 200, 22)] autorelease];
  DrawnField *second = [[[DrawnField alloc] initWithFrame:NSMakeRect(10, 20, 200, 22)] autorelease];
  [[window contentView] addSubview:first];
  [[window contentView] addSubview:second];
  [first setNextKeyView:second];
  [window makeKeyAndOrderFront:nil];
  [window makeFirstResponder:first];
  [window displayIfNeeded];
  NSText *editor = [first currentEditor];
  ASSERT_NE(editor, nil);
  [editor doCommandBySelector:@selector(insertTab:)];
  EXPECT_EQ([second currentEditor], editor);
  first->drawn = second->drawn = NSZeroRect;
  [window displayIfNeeded];
  for (DrawnField *field : {first, second}) EXPECT_TRUE(NSContainsRect(field->drawn, [field bounds]));
  [window orderOut:nil];
  [window release];
}

TEST_F(Theme, GivesTooltipsTheRoomTheyNeed) {
  NSWindow *panel = [[NSClassFromString(@"GSTTPanel") alloc] initWithContentRect:NSMakeRect(0, 0, 100, 25)
                                                                       styleMask:NSBorderlessWindowMask
                                                                         backing:NSBackingStoreBuffered
                                                                           defer:YES];
  CGFloat before = 0;
  for (int sentences : {1, 3, 12}) {
    NSAttributedString *text = [[[NSAttributedString alloc]
        initWithString:repeated(@"Found at 127.0.0.1, as the queue says. ", sentences)] autorelease];
    [[panel contentView] performSelector:@selector(setText:) withObject:text];
    [panel setFrame:NSMakeRect(300, 400, 300, 18) display:NO];
    CGFloat const height = [panel frame].size.height;
    EXPECT_GE([panel frame].size.width * height, [text size].width * [text size].height);
    EXPECT_GT(height, before);
    EXPECT_EQ(NSMaxY([panel frame]), 418) << "it hangs from where the pointer is";
    before = height;
  }
  [panel release];
}

TEST_F(Theme, LaysAlertsOut) {
  struct Case {
    NSString *message, *advice;
    std::vector<NSString *> buttons;
  };
  NSString *sentence = @"The printer did not answer within the time that was set for it. ";
  Case const cases[] = {
      {@"Short.", @"", {@"OK"}},
      {@"Short.", @"And some advice.", {}},
      {@"", @"Advice alone.", {@"Delete", @"Cancel"}},
      {repeated(sentence, 3), repeated(sentence, 6), {@"Delete", @"Cancel", @"Find out more about deleting things"}},
      {@"A long report", repeated(sentence, 200), {@"OK"}},
      {@"Lines", repeated(@"line\n", 12), {@"OK"}},
  };
  for (Case const &one : cases) {
    NSAlert *alert = [[[NSAlert alloc] init] autorelease];
    [alert setMessageText:one.message];
    [alert setInformativeText:one.advice];
    for (NSString *title : one.buttons) [alert addButtonWithTitle:title];
    FaxAlertPanel *panel = [[FaxAlertPanel alloc] initWithAlert:alert];
    SCOPED_TRACE([one.message UTF8String]);
    NSView *content = [panel contentView];
    NSArray *inside = [content subviews];
    for (NSUInteger at = 0; at < [inside count]; ++at) {
      NSView *view = [inside objectAtIndex:at];
      EXPECT_TRUE(NSContainsRect(NSInsetRect([content bounds], 15, 15), [view frame]));
      for (NSUInteger other = 0; other < at; ++other)
        EXPECT_FALSE(NSIntersectsRect([view frame], [[inside objectAtIndex:other] frame]));
      if (![view isKindOfClass:[NSTextField class]]) continue;
      NSSize const needed = [[static_cast<NSTextField *>(view) cell]
          cellSizeForBounds:NSMakeRect(0, 0, [view frame].size.width, 1e5)];
      EXPECT_LE(needed.height, [view frame].size.height) << "a text is cut";
    }
    EXPECT_LT([panel frame].size.height, 600);
    NSButton *first = [[alert buttons] objectAtIndex:0];
    EXPECT_EQ([panel defaultButtonCell], [first cell]);
    for (NSUInteger at = 1; at < [[alert buttons] count]; ++at)
      EXPECT_LT(NSMaxX([[[alert buttons] objectAtIndex:at] frame]), NSMinX([first frame]));
    [panel release];
  }
}

}  // namespace
