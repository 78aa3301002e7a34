// Controls as the dialog's windows use them: system font, sizes with room for longer languages.
#pragma once
#import <AppKit/AppKit.h>

namespace fax::host {

inline constexpr CGFloat kMargin = 16;
inline constexpr CGFloat kGap = 10;
inline constexpr CGFloat kRow = 24;  // height of a line with a pop-up or a field

// All autoreleased.
NSTextField *make_label(NSString *text, NSTextAlignment alignment);
// As wide as its title needs with 40% to spare, 90 at least.
NSButton *make_button(NSString *title, id target, SEL action);
NSPopUpButton *make_pop_up(id target, SEL action);

// Width of a text in the system font with 40% to spare, in whole points.
CGFloat roomy_width(NSString *text);
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
// Makes the list a ring for the tab key.
void join_focus(NSArray *views);

}  // namespace fax::host

// Origin at the top left.
@interface HostFlippedView : NSView
@end
