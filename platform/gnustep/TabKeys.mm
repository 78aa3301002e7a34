// Control with Page Up and Page Down goes to the tab before and after, wherever the focus is in the window, and the
// focus to the first control of the tab. The toolkit's tabs cannot be reached with keys.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

unsigned const kModifiers = NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSShiftKeyMask;

// 1 and -1 for the two keys, 0 for all others.
NSInteger step_of(NSEvent *event) {
  NSString *const characters = [event charactersIgnoringModifiers];
  if ([event type] != NSKeyDown || ([event modifierFlags] & kModifiers) != NSControlKeyMask) return 0;
  if ([characters length] != 1) return 0;
  unichar const key = [characters characterAtIndex:0];
  return key == NSPageDownFunctionKey ? 1 : key == NSPageUpFunctionKey ? -1 : 0;
}

fax::Repair<BOOL(NSEvent *)> key_equivalent{
    "NSTabView", "performKeyEquivalent:", [](id self, SEL command, NSEvent *event) -> BOOL {
      NSTabView *const tabs = self;
      NSInteger const step = step_of(event);
      NSTabViewItem *const before = [tabs selectedTabViewItem];
      if (step == 0 || before == nil) return key_equivalent(self, command, event);
      NSInteger const count = [tabs numberOfTabViewItems];
      [tabs selectTabViewItemAtIndex:([tabs indexOfTabViewItem:before] + step + count) % count];
      NSTabViewItem *const now = [tabs selectedTabViewItem];
      if (now != before && [now initialFirstResponder] != nil) {
        [[tabs window] makeFirstResponder:[now initialFirstResponder]];
      }
      return YES;
    }};

}  // namespace
