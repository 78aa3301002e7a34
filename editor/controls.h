// Controls as the editor's windows use them.
#pragma once
#import <AppKit/AppKit.h>

namespace fax::editor {

inline constexpr CGFloat kMargin = 16;
inline constexpr CGFloat kGap = 8;
inline constexpr CGFloat kRow = 24;  // height of a line with a button or a field

// All autoreleased, and as wide as their text needs with room for longer languages.
NSTextField *make_label(NSString *text);
NSButton *make_button(NSString *title, id target, SEL action, NSString *tip);
NSTextField *make_field(Class kind);
NSPopUpButton *make_pop_up(id target, SEL action);

// A text of several lines, with the given width; its height follows from wrapping.
NSString *wrapped(NSString *text, NSUInteger characters);

// Puts views into a row from x on, kGap apart, each at its own width. Returns where the next would begin.
CGFloat place_in_row(NSView *parent, CGFloat x, CGFloat y, NSArray *views, NSUInteger resizing);

// A table in a scroll view that takes its rows from source, unless that is nil. columns: identifier, title, width after one another.
NSScrollView *make_list(NSTableView *table, NSRect frame, id source);
NSTableColumn *add_column(NSTableView *table, NSString *identifier, NSString *title, CGFloat width);

// Makes the views a ring for the Tab key, in this order.
void join_focus(NSArray *views);

// A red that can be read on the windows' own background, light or dark.
NSColor *error_color();

// Returns when the user has read it.
void tell(NSString *what);
// Whether the user chose the first of two buttons.
bool ask(NSString *what, NSString *yes, NSString *no);

}  // namespace fax::editor

// What a list does with keys.
@protocol EditorListKeys
- (void)listReturn:(NSTableView *)list;
- (void)listDelete:(NSTableView *)list;
- (void)listSpace:(NSTableView *)list;
@end

// A table that hands Return, Delete and Space to its delegate. Tab leaves it.
@interface EditorList : NSTableView {
  NSString *_emptyText;
}
// Stands in the middle of the list while it has no rows.
- (void)setEmptyText:(NSString *)text;
@end
