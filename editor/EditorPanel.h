// What the editor's modal windows share: a form with a line for messages, a button that accepts and one that cancels.
#pragma once
#import <AppKit/AppKit.h>

@interface EditorPanel : NSObject {
  NSPanel *_panel;
  NSTextField *_message;
  NSButton *_accept;
  NSButton *_cancel;
}
// Room for height points above the message line; the form's fields go into content there.
- (id)initWithTitle:(NSString *)title width:(CGFloat)width height:(CGFloat)height accept:(NSString *)accept;
- (NSView *)content;
- (CGFloat)width;
// The lowest point that fields may take.
- (CGFloat)floor;
// A label with a field behind it, y above the floor.
- (void)addField:(NSView *)field label:(NSString *)label at:(CGFloat)y height:(CGFloat)height;
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
