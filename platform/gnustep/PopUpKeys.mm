// A pop-up that has the focus is worked with keys: Space, Return and the arrows open its menu, arrows, Home and End go
// through it, Return and Space choose, Escape and Tab close it, and letters go to the item that begins with them, in the
// open menu and without it. The toolkit knows Space and some arrows, and gives Return to the window's default button
// even while a menu is open.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

unsigned const kModifiers = NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask;
NSTimeInterval const kPause = 1;  // between two letters of one word, in seconds

NSMenuView *menu_of(NSPopUpButton *popUp) { return [[[popUp cell] menu] menuRepresentation]; }

bool is_open(NSPopUpButton *popUp) { return [[menu_of(popUp) window] isVisible]; }

bool can_choose(NSPopUpButton *popUp, NSInteger at) {
  if (at < 0 || at >= [popUp numberOfItems]) return false;
  NSMenuItem *const item = (NSMenuItem *)[popUp itemAtIndex:at];
  return [item isEnabled] && ![item isSeparatorItem];
}

// What was typed in one go into one pop-up.
struct Typed {
  NSMutableString *word = [[NSMutableString alloc] init];
  NSTimeInterval time = 0;  // of the last letter
  void *owner = nullptr;    // not retained, only compared
};

Typed &typed() {
  static Typed the;
  return the;
}

void open(NSPopUpButton *popUp) {
  typed().owner = nullptr;
  if ([popUp numberOfItems] == 0) return NSBeep();
  [[popUp cell] attachPopUpWithFrame:[popUp bounds] inView:popUp];
  if (can_choose(popUp, [popUp indexOfSelectedItem])) {
    [menu_of(popUp) setHighlightedItemIndex:[popUp indexOfSelectedItem]];
  }
}

void choose(NSPopUpButton *popUp, NSInteger at) {
  bool const changes = can_choose(popUp, at) && at != [popUp indexOfSelectedItem];
  [[popUp cell] dismissPopUp];
  if (changes) [[[popUp cell] menu] performActionForItemAtIndex:at];
}

// The next item from start that can be chosen, in steps; start itself counts. Nothing moves at the end of the menu.
void go(NSPopUpButton *popUp, NSInteger start, NSInteger step) {
  NSInteger at = start;
  while (at >= 0 && at < [popUp numberOfItems] && !can_choose(popUp, at)) at += step;
  if (can_choose(popUp, at)) [menu_of(popUp) setHighlightedItemIndex:at];
}

NSString *typed_word(NSPopUpButton *popUp, NSString *character, NSTimeInterval time) {
  Typed &now = typed();
  if (now.owner != popUp || time - now.time > kPause || time < now.time) [now.word setString:@""];
  now.owner = popUp;
  now.time = time;
  [now.word appendString:character];
  return now.word;
}

bool one_letter_again(NSString *word) {
  for (NSUInteger at = 1; at < [word length]; ++at) {
    if ([word characterAtIndex:at] != [word characterAtIndex:0]) return false;
  }
  return true;
}

// The item that begins with the word, from present on and round again; the same letter again goes to the next one.
NSInteger item_for(NSPopUpButton *popUp, NSString *word, NSInteger present) {
  NSInteger const count = [popUp numberOfItems];
  bool const next = one_letter_again(word);
  NSString *const wanted = next ? [word substringToIndex:1] : word;
  NSInteger const first = present + (next ? 1 : 0);
  NSUInteger const options = NSCaseInsensitiveSearch | NSAnchoredSearch;
  for (NSInteger step = 0; step < count; ++step) {
    NSInteger const at = (first + step + count) % count;
    NSString *const title = [popUp itemTitleAtIndex:at];
    if (can_choose(popUp, at) && [title rangeOfString:wanted options:options].length > 0) return at;
  }
  return -1;
}

bool type(NSPopUpButton *popUp, NSEvent *event) {
  unichar const character = [[event characters] characterAtIndex:0];
  bool const printable = character > ' ' && character != 0x7F && (character < 0xF700 || character > 0xF8FF);
  if (!printable || [popUp numberOfItems] == 0) return false;
  NSInteger const present = is_open(popUp) ? [menu_of(popUp) highlightedItemIndex] : [popUp indexOfSelectedItem];
  NSInteger const at = item_for(popUp, typed_word(popUp, [event characters], [event timestamp]), present);
  if (at < 0) {
    NSBeep();
  } else if (is_open(popUp)) {
    [menu_of(popUp) setHighlightedItemIndex:at];
  } else {
    choose(popUp, at);
  }
  return true;
}

bool work_open_menu(NSPopUpButton *popUp, unichar key) {
  NSInteger const present = [menu_of(popUp) highlightedItemIndex];
  switch (key) {
    case NSUpArrowFunctionKey: go(popUp, present < 0 ? [popUp numberOfItems] - 1 : present - 1, -1); return true;
    case NSDownArrowFunctionKey: go(popUp, present + 1, 1); return true;
    case NSHomeFunctionKey:
    case NSPageUpFunctionKey: go(popUp, 0, 1); return true;
    case NSEndFunctionKey:
    case NSPageDownFunctionKey: go(popUp, [popUp numberOfItems] - 1, -1); return true;
    case NSCarriageReturnCharacter:
    case NSNewlineCharacter:
    case NSEnterCharacter:
    case ' ':
      typed().owner = nullptr;
      choose(popUp, present);
      return true;
    case 0x1B: [[popUp cell] dismissPopUp]; return true;
    case NSTabCharacter:
    case NSBackTabCharacter: [[popUp cell] dismissPopUp]; return false;
    default: return false;
  }
}

bool opens(unichar key) {
  return key == ' ' || key == NSCarriageReturnCharacter || key == NSNewlineCharacter || key == NSEnterCharacter ||
         key == NSUpArrowFunctionKey || key == NSDownArrowFunctionKey;
}

fax::Repair<void(NSEvent *)> key_down{
    "NSPopUpButton", "keyDown:", [](id self, SEL, NSEvent *event) {
      NSPopUpButton *const popUp = self;
      bool const plain = [[event characters] length] == 1 && ([event modifierFlags] & kModifiers) == 0;
      if (plain && [popUp isEnabled]) {
        unichar const key = [[event characters] characterAtIndex:0];
        if (is_open(popUp)) {
          if (work_open_menu(popUp, key)) return;
        } else if (opens(key)) {
          return open(popUp);
        }
        if (type(popUp, event)) return;
      }
      // Not the toolkit's own body: what it does with the arrows is done above.
      auto const of_button = reinterpret_cast<void (*)(id, SEL, NSEvent *)>(
          reinterpret_cast<void (*)()>(class_getMethodImplementation([NSButton class], @selector(keyDown:))));
      of_button(self, @selector(keyDown:), event);
    }};

}  // namespace
