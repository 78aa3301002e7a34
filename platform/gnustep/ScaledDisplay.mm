// Drawing in windows that are scaled (GSScaleFactor). A view that has just drawn what was invalid counts as drawn only
// when the numbers agree to the last bit, which they do not after a division: it would be drawn a second time, over itself,
// and its text would become bold. And a part of a view that ends within a pixel would leave an edge of what was there.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

constexpr CGFloat kHair = 0.01;  // points; far less than a pixel

// As it is drawn: whole pixels of the window.
NSRect whole_pixels(NSView *view, NSRect area) {
  NSRect const pixels = NSInsetRect([view convertRect:area toView:nil], kHair, kHair);
  return NSIsEmptyRect(pixels) ? area : [view convertRect:NSIntegralRect(pixels) fromView:nil];
}

}  // namespace

@interface NSView (DirectFaxScaledDisplay)
- (NSRect)directFaxInvalidRect;
@end

@implementation NSView (DirectFaxScaledDisplay)
- (NSRect)directFaxInvalidRect {
  return _invalidRect;
}
@end

namespace {

using Display = void(NSRect, NSGraphicsContext *);
fax::Repair<Display> display{
    "NSView", "displayRectIgnoringOpacity:inContext:",
    [](id self, SEL command, NSRect area, NSGraphicsContext *context) {
      NSWindow *const window = [self window];
      bool const on_screen = context == nil || context == [window graphicsContext];
      if (window == nil || !on_screen || [window userSpaceScaleFactor] == 1) return display(self, command, area, context);
      NSRect const seen = [self visibleRect];
      area = whole_pixels(self, area);
      NSRect const needed = NSInsetRect(NSIntersectionRect([self directFaxInvalidRect], seen), kHair, kHair);
      if ([self canDraw] && (NSIsEmptyRect(needed) || NSContainsRect(area, needed))) [self setNeedsDisplay:NO];
      display(self, command, area, context);
    }};

}  // namespace
