// Controls as the windows of our programs use them, in the system font. Everything that is made is autoreleased.
#pragma once
#import <AppKit/AppKit.h>

namespace fax::toolkit {

inline constexpr CGFloat kMargin = 16;
inline constexpr CGFloat kRow = 24;  // height of a line with a button, a pop-up or a field, in a font of usual size

// Of a text in the system font, in whole points.
CGFloat text_width(NSString *text);

// Heights in whole points: of one line of text, and of a line with a button, a pop-up or a field, which is kRow unless
// the font is large.
CGFloat text_height();
CGFloat row_height();

// As large as its text.
NSTextField *make_label(NSString *text, NSTextAlignment alignment = NSLeftTextAlignment);
// As wide as its title needs, 80 at least, and row_height() high. tip may be nil.
NSButton *make_button(NSString *title, id target, SEL action, NSString *tip = nil);
NSPopUpButton *make_pop_up(id target, SEL action);

// Makes the views a ring for the Tab key, in this order.
void join_focus(NSArray *views);

}  // namespace fax::toolkit
