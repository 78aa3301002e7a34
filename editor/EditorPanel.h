// What the editor's modal windows share: a form with a line for messages, a button that accepts and one that cancels.
#pragma once
#import <AppKit/AppKit.h>

@interface EditorPanel : NSObject {
  NSPanel *_panel;
  NSTextField *_message;
  NSButton *_accept;
  NSButton *_cancel;
  NSMutableArray *_lines;  // of the form: from above a label or NSNull, then a field
}
- (id)initWithTitle:(NSString *)title accept:(NSString *)accept;

// The form's lines, from above, as high as their fields are now. Without a label a field is as wide as the window.
- (void)addField:(NSView *)field label:(NSString *)label;
- (void)addField:(NSView *)field;
// Gives the window its size and everything its place; after the last addField. width is in points for a font of usual
// size, and more where the font or the buttons need it. tall, which may be nil, is the field that takes the room when
// the user makes the window larger.
- (void)layOutWithWidth:(CGFloat)width tall:(NSView *)tall;
// Tab goes through these, then the two buttons.
- (void)setFocusOrder:(NSArray *)fields;

- (void)showError:(NSString *)text;
- (void)showHint:(NSString *)text;

// Whether the user accepted. The focus begins at field.
- (BOOL)runFrom:(NSView *)field;

// Of subclasses: whether the window may close; NO after showError:.
- (BOOL)accepts;
- (void)accept:(id)sender;
@end
