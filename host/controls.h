// What the dialog's windows need besides toolkit/controls.h.
#pragma once
#import <AppKit/AppKit.h>

#import "toolkit/controls.h"

namespace fax::host {

inline constexpr CGFloat kGap = 10;

// Longest part of a text that fits the width, with "…" when something was left out.
NSString *fitted(NSString *text, CGFloat width);
// Replaces a pop-up's items. Titles may repeat.
void fill_pop_up(NSPopUpButton *button, NSArray *titles);

// The window's number at the X server.
unsigned long window_device(NSWindow *window);

// Draws the window now and returns when the display server has done it.
void draw_now(NSWindow *window);

// Keeps a window above another one, whatever the user clicks on. Both were on the screen at least once.
void keep_above(NSWindow *window, NSWindow *parent);

// What can take the focus inside a view, in reading order.
NSArray *focus_order(NSView *view);

}  // namespace fax::host

// Origin at the top left.
@interface HostFlippedView : NSView
@end
