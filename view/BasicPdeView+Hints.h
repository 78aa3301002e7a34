// A line of text in a view that says what to do next: why a button is disabled, and when a field has refused an edit, in
// bold, what it takes: its tool tip. For that the view is the delegate of its text fields. The Delete key in a table
// presses the table's Delete button.
//
// All of it goes by outlets of the nib; without hintLabel nothing is said.
#pragma once
#import "view/BasicPdeView.h"

@interface BasicPdeView (Hints)

// For subclasses: what to say now, a key of the string table; nil to say nothing.
- (NSString *)hint;
// For subclasses: the button that deletes what is selected in the table; nil for none.
- (NSButton *)deleteButtonOfTable:(NSView *)table;

// Translates the tool tips of all controls and begins with a hint. Later it follows each event of the window.
- (void)beginHints;
@end
