// Windows that are scaled (GSScaleFactor). A view that has just drawn what was invalid counts as drawn only when the numbers
// agree to the last bit, which they do not after a division: it would be drawn a second time, over itself, and its text
// would become bold. A part of a view that ends within a pixel would leave an edge of what was there. And views end at whole
// pixels, so that what lies in another one may be a part of a point larger, which is nothing to show scrollers for.
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

bool scaled(NSWindow *window) { return window != nil && [window userSpaceScaleFactor] != 1; }

using Display = void(NSRect, NSGraphicsContext *);
fax::Repair<Display> display{
    "NSView", "displayRectIgnoringOpacity:inContext:",
    [](id self, SEL command, NSRect area, NSGraphicsContext *context) {
      NSWindow *const window = [self window];
      bool const on_screen = context == nil || context == [window graphicsContext];
      if (!on_screen || !scaled(window)) return display(self, command, area, context);
      NSRect const seen = [self visibleRect];
      area = whole_pixels(self, area);
      NSRect const needed = NSInsetRect(NSIntersectionRect([self directFaxInvalidRect], seen), kHair, kHair);
      if ([self canDraw] && (NSIsEmptyRect(needed) || NSContainsRect(area, needed))) [self setNeedsDisplay:NO];
      display(self, command, area, context);
    }};

// What would be scrolled is less than a point.
bool fits(NSScrollView *view, bool across) {
  NSView *const document = [view documentView];
  if (!document || ![view autohidesScrollers] || !scaled([view window])) return false;
  NSSize const all = [document frame].size;
  NSSize const shown = [[view contentView] bounds].size;
  return across ? all.width < shown.width + 1 : all.height < shown.height + 1;
}

fax::Repair<void(BOOL)> set_across{"NSScrollView", "setHasHorizontalScroller:", [](id self, SEL command, BOOL has) {
                                     set_across(self, command, has && !fits(self, true));
                                   }};
fax::Repair<void(BOOL)> set_down{"NSScrollView", "setHasVerticalScroller:", [](id self, SEL command, BOOL has) {
                                   set_down(self, command, has && !fits(self, false));
                                 }};
fax::Repair<void(NSClipView *)> reflect{"NSScrollView", "reflectScrolledClipView:",
                                        [](id self, SEL command, NSClipView *clip) {
                                          if ([self hasHorizontalScroller] && fits(self, true))
                                            [self setHasHorizontalScroller:NO];
                                          if ([self hasVerticalScroller] && fits(self, false))
                                            [self setHasVerticalScroller:NO];
                                          reflect(self, command, clip);
                                        }};

}  // namespace
