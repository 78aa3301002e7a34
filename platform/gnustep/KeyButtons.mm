// Return presses the push button that has the focus. Otherwise Return and Escape press the button that has them as its
// key equivalent, also while a text field is edited; where there is only one push button, Escape presses that. The toolkit
// gives Return to the default button whatever has the focus; Escape ends a modal window without its Cancel button, and
// in a field asks for completions.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

unsigned const kModifiers = NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask;

NSButton *button_for(NSView *view, NSString *key) {
  if ([view isHidden]) return nil;
  if ([view isKindOfClass:[NSButton class]]) {
    NSButton *button = static_cast<NSButton *>(view);
    bool const plain = ([button keyEquivalentModifierMask] & kModifiers) == 0;
    if (plain && [[button keyEquivalent] isEqualToString:key]) return button;
  }
  NSArray *parts = [view subviews];
  for (NSUInteger at = 0; at < [parts count]; ++at) {
    if (NSButton *found = button_for([parts objectAtIndex:at], key)) return found;
  }
  return nil;
}

bool is_push_button(id view) {
  // A switch is no push button: Return is the default button's there.
  return [view isKindOfClass:[NSButton class]] && ![view isKindOfClass:[NSPopUpButton class]] && [view isBordered];
}

void collect_push_buttons(NSView *view, NSMutableArray *found) {
  if ([view isHidden]) return;
  if (is_push_button(view)) [found addObject:view];
  NSArray *parts = [view subviews];
  for (NSUInteger at = 0; at < [parts count]; ++at) collect_push_buttons([parts objectAtIndex:at], found);
}

// The way out of a modal window that has only one.
NSButton *only_button(NSWindow *window) {
  if ([NSApp modalWindow] != window) return nil;
  NSMutableArray *found = [NSMutableArray array];
  collect_push_buttons([window contentView], found);
  return [found count] == 1 ? [found objectAtIndex:0] : nil;
}

// "\r" for Return and Enter, Escape for itself; nil for other keys and with a modifier.
NSString *plain_key(NSEvent *event) {
  if (event == nil || [event type] != NSKeyDown || ([event modifierFlags] & kModifiers) != 0) return nil;
  NSString *characters = [event characters];
  if ([characters isEqualToString:@"\r"] || [characters isEqualToString:@"\003"]) return @"\r";
  return [characters isEqualToString:@"\033"] ? characters : nil;
}

// False when the window has no such button; a disabled one takes the key and does nothing.
bool press(NSWindow *window, NSString *key) {
  NSButton *button = key != nil ? button_for([window contentView], key) : nil;
  if (button == nil && [key isEqualToString:@"\033"]) button = only_button(window);
  if (button == nil) return false;
  if ([button isEnabled]) {
    [button performClick:button];
  } else {
    NSBeep();
  }
  return true;
}

// Return opens a pop-up and chooses in its menu, Escape closes the menu.
bool takes(id view, NSString *key) {
  if (key == nil || ![view isKindOfClass:[NSButton class]] || ![view isEnabled]) return false;
  if ([key isEqualToString:@"\r"]) return is_push_button(view) || [view isKindOfClass:[NSPopUpButton class]];
  return [view isKindOfClass:[NSPopUpButton class]] && [[[[[view cell] menu] menuRepresentation] window] isVisible];
}

// The view with the focus is asked before the buttons of the window.
fax::Repair<BOOL(NSEvent *)> window_key_equivalent{
    "NSWindow", "performKeyEquivalent:", [](id self, SEL command, NSEvent *event) -> BOOL {
      if (takes([self firstResponder], plain_key(event))) return NO;
      return window_key_equivalent(self, command, event);
    }};

fax::Repair<void(NSEvent *)> button_key_down{"NSButton", "keyDown:", [](id self, SEL command, NSEvent *event) {
                                               if (is_push_button(self) && takes(self, plain_key(event))) {
                                                 [self performClick:self];
                                               } else {
                                                 button_key_down(self, command, event);
                                               }
                                             }};

fax::Repair<void(NSEvent *)> key_down{"NSWindow", "keyDown:", [](id self, SEL command, NSEvent *event) {
                                        if (!press(self, plain_key(event))) key_down(self, command, event);
                                      }};

// A field without an action asks this of itself when Return ends editing.
fax::Repair<BOOL(NSEvent *)> key_equivalent{
    "NSTextField", "performKeyEquivalent:", [](id self, SEL command, NSEvent *event) -> BOOL {
      if (key_equivalent(self, command, event)) return YES;
      return press([self window], plain_key(event)) ? YES : NO;
    }};

fax::Repair<void(id)> complete{"NSTextView", "complete:", [](id self, SEL command, id sender) {
                                 NSTextView *view = self;
                                 if (![view isFieldEditor] || !press([view window], @"\033")) {
                                   complete(self, command, sender);
                                 }
                               }};

}  // namespace
