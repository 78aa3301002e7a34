#import "host/controls.h"

#import <GNUstepGUI/GSDisplayServer.h>

#include <cmath>

#include "host/x_display.h"

@implementation HostFlippedView
- (BOOL)isFlipped {
  return YES;
}
@end

namespace fax::host {

using namespace toolkit;

namespace {

// What takes the focus, or would if it were enabled: it may be by the time that somebody comes there with Tab.
bool takes_focus(NSView *view) {
  if (![view isKindOfClass:[NSControl class]]) return [view acceptsFirstResponder];
  if ([view isKindOfClass:[NSTextField class]]) return [(NSTextField *)view isSelectable];
  return ![(NSControl *)view refusesFirstResponder];
}

void collect(NSView *view, NSMutableArray *found) {
  if ([view isHidden]) return;
  if (takes_focus(view) && ![view isKindOfClass:[NSScrollView class]] &&
      ![view isKindOfClass:[NSClipView class]] && ![view isKindOfClass:[NSScroller class]]) {
    [found addObject:view];
    if ([view isKindOfClass:[NSControl class]]) return;
  }
  NSArray *inner = [view subviews];
  for (NSUInteger at = 0; at < [inner count]; ++at) collect([inner objectAtIndex:at], found);
}

NSComparisonResult reading_order(id one, id other, void *) {
  NSRect const a = [one convertRect:[one bounds] toView:nil];
  NSRect const b = [other convertRect:[other bounds] toView:nil];
  // Controls whose middles lie within half a line of each other are on one line.
  if (std::abs(NSMidY(a) - NSMidY(b)) > kRow / 2) {
    return NSMidY(a) > NSMidY(b) ? NSOrderedAscending : NSOrderedDescending;
  }
  return NSMinX(a) < NSMinX(b) ? NSOrderedAscending : NSOrderedDescending;
}

}  // namespace

NSString *fitted(NSString *text, CGFloat width) {
  if (text_width(text) <= width) return text;
  for (NSUInteger length = [text length]; length > 0; --length) {
    NSRange const whole = [text rangeOfComposedCharacterSequenceAtIndex:length - 1];
    NSString *part = [[text substringToIndex:whole.location] stringByAppendingString:@"\u2026"];
    if (text_width(part) <= width) return part;
    length = whole.location + 1;
  }
  return @"";
}

void fill_pop_up(NSPopUpButton *button, NSArray *titles) {
  [button removeAllItems];
  for (NSUInteger at = 0; at < [titles count]; ++at) {
    // addItemWithTitle: would take an earlier item of the same title away.
    [[button menu] addItemWithTitle:[titles objectAtIndex:at] action:NULL keyEquivalent:@""];
  }
  [button selectItemAtIndex:[titles count] ? 0 : -1];
}

unsigned long window_device(NSWindow *window) {
  return reinterpret_cast<unsigned long>([GSServerForWindow(window) windowDevice:[window windowNumber]]);
}

void draw_now(NSWindow *window) {
  [window displayIfNeeded];
  [window flushWindow];
  finish_drawing([GSServerForWindow(window) serverDevice]);
}

void keep_above(NSWindow *window, NSWindow *parent) {
  GSDisplayServer *server = GSServerForWindow(window);
  keep_above([server serverDevice], window_device(window), window_device(parent));
}

NSArray *focus_order(NSView *view) {
  NSMutableArray *found = [NSMutableArray array];
  collect(view, found);
  [found sortUsingFunction:reading_order context:nullptr];
  return found;
}

}  // namespace fax::host
