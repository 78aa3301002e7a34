// The keys that text and tables have on every Linux desktop: Control with A, C, X, V, Z, Y, and Insert and Delete with
// Shift or Control. The toolkit leaves them to an Edit menu, with the Command key; a dialog has no menu, and it binds
// Control to Emacs's commands. What is typed into a field can be undone while it has the focus.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

unsigned const kModifiers = NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSShiftKeyMask;

struct Shortcut {
  unichar key;
  unsigned modifiers;
  SEL action;
};

// NULL when the event is no such key.
SEL action_of(NSEvent *event) {
  static Shortcut const shortcuts[] = {
      {'a', NSControlKeyMask, @selector(selectAll:)},
      {'c', NSControlKeyMask, @selector(copy:)},
      {'x', NSControlKeyMask, @selector(cut:)},
      {'v', NSControlKeyMask, @selector(paste:)},
      {'z', NSControlKeyMask, @selector(undo:)},
      {'y', NSControlKeyMask, @selector(redo:)},
      {'z', NSControlKeyMask | NSShiftKeyMask, @selector(redo:)},
      {NSInsertFunctionKey, NSControlKeyMask, @selector(copy:)},
      {NSInsertFunctionKey, NSShiftKeyMask, @selector(paste:)},
      {NSDeleteFunctionKey, NSShiftKeyMask, @selector(cut:)},
  };
  NSString *const characters = [[event charactersIgnoringModifiers] lowercaseString];
  if ([characters length] != 1) return nullptr;
  for (Shortcut const &shortcut : shortcuts) {
    if ([characters characterAtIndex:0] == shortcut.key && ([event modifierFlags] & kModifiers) == shortcut.modifiers) {
      return shortcut.action;
    }
  }
  return nullptr;
}

void undo(NSUndoManager *manager, SEL action) {
  bool const back = sel_isEqual(action, @selector(undo:));
  if (back ? ![manager canUndo] : ![manager canRedo]) {
    NSBeep();
  } else if (back) {
    [manager undo];
  } else {
    [manager redo];
  }
}

// What is secret leaves its field on no way.
bool keeps_secret(NSTextView *view) {
  id field = [view isFieldEditor] ? [view delegate] : nil;
  return [field isKindOfClass:[NSSecureTextField class]];
}

void perform(NSTextView *view, SEL action) {
  bool const takes = sel_isEqual(action, @selector(copy:)) || sel_isEqual(action, @selector(cut:));
  bool const changes = !sel_isEqual(action, @selector(copy:)) && !sel_isEqual(action, @selector(selectAll:));
  bool const nothing = takes && ([view selectedRange].length == 0 || keeps_secret(view));
  if (nothing || (changes && ![view isEditable])) {
    NSBeep();
  } else if (sel_isEqual(action, @selector(undo:)) || sel_isEqual(action, @selector(redo:))) {
    undo([view undoManager], action);
  } else {
    [NSApp sendAction:action to:view from:nil];
  }
}

// What one key does is one step back. The manager ends its steps with the run loop's default mode, which does not run as
// long as there is a modal window.
void begin_step(NSTextView *view) {
  NSUndoManager *const manager = [view allowsUndo] ? [view undoManager] : nil;
  if ([manager groupsByEvent] && [manager groupingLevel] == 1) [manager endUndoGrouping];
}

// Tab in a field that can only be read goes on from the field; the toolkit goes on from the window's first one.
bool leave_with_tab(NSTextView *view, NSEvent *event) {
  id const field = [view isFieldEditor] && ![view isEditable] ? [view delegate] : nil;
  if (![field isKindOfClass:[NSView class]] || [[event characters] length] != 1) return false;
  if (([event modifierFlags] & (kModifiers & ~NSShiftKeyMask)) != 0) return false;
  unichar const key = [[event characters] characterAtIndex:0];
  if (key == NSBackTabCharacter || (key == NSTabCharacter && ([event modifierFlags] & NSShiftKeyMask) != 0)) {
    [[field window] selectKeyViewPrecedingView:field];
    return true;
  }
  if (key == NSTabCharacter) [[field window] selectKeyViewFollowingView:field];
  return key == NSTabCharacter;
}

fax::Repair<void(NSEvent *)> text_key_down{"NSTextView", "keyDown:", [](id self, SEL command, NSEvent *event) {
                                             begin_step(self);
                                             SEL const action = action_of(event);
                                             if (action != nullptr) {
                                               perform(self, action);
                                             } else if (!leave_with_tab(self, event)) {
                                               text_key_down(self, command, event);
                                             }
                                           }};

fax::Repair<void(NSEvent *)> table_key_down{
    "NSTableView", "keyDown:", [](id self, SEL command, NSEvent *event) {
      SEL const action = action_of(event);
      if (action == nullptr || !sel_isEqual(action, @selector(selectAll:))) {
        table_key_down(self, command, event);
      } else if ([self allowsMultipleSelection]) {
        [self selectAll:nil];
      } else {
        NSBeep();
      }
    }};

fax::Repair<NSText *(NSText *)> set_up_field_editor{
    "NSTextFieldCell", "setUpFieldEditorAttributes:", [](id self, SEL command, NSText *editor) -> NSText * {
      NSText *const ready = set_up_field_editor(self, command, editor);
      if ([ready isKindOfClass:[NSTextView class]]) [(NSTextView *)ready setAllowsUndo:YES];
      return ready;
    }};

}  // namespace
