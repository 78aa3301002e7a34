// What the editor's windows use beside toolkit/controls.h.
#pragma once
#import <AppKit/AppKit.h>

namespace fax::editor {

inline constexpr CGFloat kGap = 8;

// Autoreleased. kind is NSTextField or a class of it.
NSTextField *make_field(Class kind);

// A text of several lines, with the given width; its height follows from wrapping.
NSString *wrapped(NSString *text, NSUInteger characters);

// Puts views into a row from x on, kGap apart, each at its own width.
void place_in_row(NSView *parent, CGFloat x, CGFloat y, NSArray *views, NSUInteger resizing);

// A table in a scroll view that takes its rows from source, unless that is nil. columns: identifier, title, width after one another.
NSScrollView *make_list(NSTableView *table, NSRect frame, id source);
// width points wide, or as wide as the title.
NSTableColumn *add_column(NSTableView *table, NSString *identifier, NSString *title, CGFloat width);

// A red that can be read on the windows' own background, light or dark.
NSColor *error_color();

// Returns when the user has read it.
void tell(NSString *what);

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
