#import "view/BasicPdeView+Hints.h"

namespace {

bool deletes(NSEvent *event) {
  NSString *characters = [event charactersIgnoringModifiers];
  if ([characters length] != 1) return false;
  unsigned const modifiers = NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSShiftKeyMask;
  unichar const key = [characters characterAtIndex:0];
  bool const is_key = key == NSDeleteFunctionKey || key == NSDeleteCharacter || key == NSBackspaceCharacter;
  return is_key && ([event modifierFlags] & modifiers) == 0;
}

}  // namespace

@implementation BasicPdeView (Hints)

- (void)viewWillMoveToWindow:(NSWindow *)window {
  NSNotificationCenter *center = [NSNotificationCenter defaultCenter];
  [center removeObserver:self name:NSWindowDidUpdateNotification object:nil];
  if (window != nil && hintLabel != nil)
    [center addObserver:self selector:@selector(windowDidUpdate:) name:NSWindowDidUpdateNotification object:window];
  [super viewWillMoveToWindow:window];
}

// The window may have come before the outlet.
- (void)awakeFromNib {
  [self viewWillMoveToWindow:[self window]];
}

- (NSString *)hint {
  return nil;
}

- (NSButton *)deleteButtonOfTable:(NSView *)table {
  (void)table;
  return nil;
}

- (void)say:(NSString *)text bold:(BOOL)bold {
  if ([[hintLabel stringValue] isEqualToString:text]) return;
  CGFloat const size = [[hintLabel font] pointSize];
  [hintLabel setFont:bold ? [NSFont boldSystemFontOfSize:size] : [NSFont systemFontOfSize:size]];
  [hintLabel setStringValue:text];
}

- (void)showHint {
  if (hintLabel == nil || showsRefusal) return;
  NSString *key = [self hint];
  [self say:key != nil ? [self translationOf:key] : @"" bold:NO];
}

- (void)beginHints {
  [self localizeToolTips:self];
  showsRefusal = NO;
  [self showHint];
}

- (void)windowDidUpdate:(NSNotification *)notification {
  (void)notification;
  [self showHint];
}

- (void)control:(NSControl *)control
    didFailToValidatePartialString:(NSString *)text
                  errorDescription:(NSString *)error {
  (void)text;
  (void)error;
  if (hintLabel == nil) return;
  showsRefusal = YES;
  [self say:[control toolTip] != nil ? [control toolTip] : @"" bold:YES];
}

- (void)controlTextDidChange:(NSNotification *)notification {
  (void)notification;
  showsRefusal = NO;
}

- (void)controlTextDidEndEditing:(NSNotification *)notification {
  (void)notification;
  showsRefusal = NO;
}

// Keys that the focused table does not take come here.
- (void)keyDown:(NSEvent *)event {
  id focused = [[self window] firstResponder];
  NSButton *button = deletes(event) && [focused isKindOfClass:[NSTableView class]]
                         ? [self deleteButtonOfTable:(NSView *)focused]
                         : nil;
  if (button == nil) {
    [super keyDown:event];
  } else if ([button isEnabled]) {
    [button performClick:self];
  } else {
    NSBeep();
  }
}

@end
