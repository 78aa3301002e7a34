#import "hand.h"

#import "stage.h"

#import <GNUstepGUI/GSDisplayServer.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <vector>

namespace monkey {

namespace {

void mouse(NSWindow *window, NSEventType kind, NSPoint place, int clicks, unsigned modifiers) {
  [NSApp postEvent:[NSEvent mouseEventWithType:kind
                                      location:place
                                 modifierFlags:modifiers
                                     timestamp:0
                                  windowNumber:[window windowNumber]
                                       context:[window graphicsContext]
                                   eventNumber:0
                                    clickCount:clicks
                                      pressure:0]
           atStart:NO];
}

void key(NSWindow *window, NSString *characters, unsigned modifiers) {
  for (NSEventType const kind : {NSKeyDown, NSKeyUp})
    [NSApp postEvent:[NSEvent keyEventWithType:kind
                                      location:NSZeroPoint
                                 modifierFlags:modifiers
                                     timestamp:0
                                  windowNumber:[window windowNumber]
                                       context:[window graphicsContext]
                                    characters:characters
                   charactersIgnoringModifiers:characters
                                     isARepeat:NO
                                       keyCode:0]
             atStart:NO];
}

// What can be worked in a window, from the bottom of the view tree up; the same order every time.
std::vector<NSView *> controls(NSView *view) {
  std::vector<NSView *> found;
  find(view, [&found](NSView *each) {
    bool const field = [each isKindOfClass:[NSTextField class]] && [(NSTextField *)each isEditable];
    bool const control = field || [each isKindOfClass:[NSButton class]] || [each isKindOfClass:[NSTableView class]];
    bool const there = [each window] != nil && !NSIsEmptyRect([each visibleRect]) && ![each isHiddenOrHasHiddenAncestor];
    if (control && there) found.push_back(each);
    return false;
  });
  return found;
}

NSPoint middle(NSView *view) {
  NSRect const seen = [view visibleRect];
  return [view convertPoint:NSMakePoint(NSMidX(seen), NSMidY(seen)) toView:nil];
}

std::string name_of(NSView *view) {
  std::string const name = utf8(NSStringFromClass([view class]));
  if ([view isKindOfClass:[NSButton class]]) return name + " " + utf8([(NSButton *)view title]);
  return name;
}

std::string click_row(Random &random, NSTableView *table) {
  NSRect const seen = [table visibleRect];
  CGFloat const height = [table rowHeight] + [table intercellSpacing].height;
  auto const rows = static_cast<std::size_t>(NSHeight(seen) / height) + 1;
  std::size_t const row = random.below(rows);
  CGFloat const down = std::min(height * (static_cast<CGFloat>(row) + 0.5), NSHeight(seen) - 1);
  static unsigned const modifiers[] = {0, 0, NSShiftKeyMask, NSCommandKeyMask, NSControlKeyMask};
  unsigned const held = random.pick(modifiers);
  int const clicks = random.one_in(5) ? 2 : 1;
  NSPoint const place = [table convertPoint:NSMakePoint(NSMinX(seen) + 20, NSMinY(seen) + down) toView:nil];
  for (int count = 1; count <= clicks; ++count) click([table window], place, count, held);
  if (random.one_in(4)) press([table window], '\r');
  return "click " + std::to_string(clicks) + " in line " + std::to_string(row) + " with " + std::to_string(held);
}

// Typed into a field that is clicked first: mostly what the field is for.
std::string fill(Random &random, NSView *field, bool is_number) {
  bool const digits = [field isKindOfClass:[NSSecureTextField class]] || NSWidth([field frame]) < 100;
  std::string const text = digits ? std::to_string(random.below(12000)) : is_number ? a_number(random) : a_name(random);
  click([field window], middle(field));
  if (random.one_in(2)) press([field window], 'a', NSControlKeyMask);
  type([field window], text);
  return " type " + text;
}

std::string fill_some(Random &random, NSView *field) {
  std::string const did = fill(random, field, random.one_in(2));
  if (random.one_in(2)) press([field window], random.one_in(3) ? '\t' : '\r');
  return did;
}

std::string press_some_key(Random &random, NSWindow *window) {
  static struct {
    unichar key;
    unsigned modifiers;
  } const keys[] = {{'\t', 0}, {'\t', NSShiftKeyMask}, {'\r', 0}, {0x1B, 0}, {' ', 0}, {0x7F, 0}, {0x08, 0},
                    {NSDeleteFunctionKey, 0}, {NSUpArrowFunctionKey, 0}, {NSDownArrowFunctionKey, 0},
                    {NSDownArrowFunctionKey, NSShiftKeyMask}, {NSHomeFunctionKey, 0}, {NSEndFunctionKey, NSShiftKeyMask},
                    {NSPageDownFunctionKey, 0}, {NSPageUpFunctionKey, NSControlKeyMask},
                    {NSPageDownFunctionKey, NSControlKeyMask}, {'a', NSControlKeyMask}, {'c', NSControlKeyMask},
                    {'x', NSControlKeyMask}, {'v', NSControlKeyMask}, {'z', NSControlKeyMask}, {'5', 0}, {'A', 0}};
  auto const &one = random.pick(keys);
  press(window, one.key, one.modifiers);
  return "press " + std::to_string(one.key) + " with " + std::to_string(one.modifiers);
}

// What ends a dialog is pressed less often, for something to happen in it.
bool leaves_alone(Random &random, NSView *view) {
  if (![view isKindOfClass:[NSButton class]]) return false;
  std::string const title = utf8([(NSButton *)view title]);
  for (char const *end : {"Start", "Cancel", "OK", "Other Panel"})
    if (title.starts_with(end)) return !random.one_in(title.starts_with("Start") ? 2 : 8);
  return false;
}

}  // namespace

void click(NSWindow *window, NSPoint place, int clicks, unsigned modifiers) {
  mouse(window, NSLeftMouseDown, place, clicks, modifiers);
  mouse(window, NSLeftMouseUp, place, clicks, modifiers);
}

void press(NSWindow *window, unichar one, unsigned modifiers) {
  key(window, [NSString stringWithCharacters:&one length:1], modifiers);
}

void type(NSWindow *window, std::string const &text) {
  NSString *all = test::ns(text);
  for (NSUInteger at = 0; at < [all length];) {
    bool const pair = ([all characterAtIndex:at] & 0xFC00) == 0xD800;
    key(window, [all substringWithRange:NSMakeRange(at, pair ? 2 : 1)], 0);
    at += pair ? 2 : 1;
  }
}

std::string act(Random &random, NSWindow *window) {
  std::vector<NSView *> const all = controls([window contentView]);
  NSView *tabs = find([window contentView], [](NSView *view) { return [view isKindOfClass:[NSTabView class]]; });
  if (tabs != nil && random.one_in(25)) {
    NSRect const frame = [tabs bounds];
    CGFloat const along = random.one_in(2) ? 60 : 160;
    CGFloat const top = [tabs isFlipped] ? 10 : NSHeight(frame) - 10;
    click(window, [tabs convertPoint:NSMakePoint(along, top) toView:nil]);
    return "click a tab";
  }
  if (all.empty() || random.one_in(6)) return press_some_key(random, window);
  std::vector<NSView *> fields;
  std::ranges::copy_if(all, std::back_inserter(fields), [](NSView *one) { return [one isKindOfClass:[NSTextField class]]; });
  if (fields.size() > 2 && random.one_in(3)) {
    std::string const did = fill(random, fields[0], false) + fill(random, fields[1], true);
    press(window, '\r');
    return "add" + did;
  }
  NSView *view = random.pick(all);
  while (all.size() > 3 && leaves_alone(random, view)) view = random.pick(all);
  if ([view isKindOfClass:[NSTableView class]]) {
    std::string const clicked = click_row(random, (NSTableView *)view);
    if (!random.one_in(6)) return clicked;
    press(window, 'a', NSControlKeyMask);
    if (random.one_in(2)) press(window, '\r');
    return clicked + ", all";
  }
  if ([view isKindOfClass:[NSTextField class]] && !random.one_in(4)) return fill_some(random, view);
  click(window, middle(view));
  return "click " + name_of(view);
}

bool choose_in_menu(Random &random) {
  NSArray *windows = [NSApp windows];
  for (NSUInteger at = 0; at < [windows count]; ++at) {
    NSWindow *window = [windows objectAtIndex:at];
    if (![window isVisible] || ![window isKindOfClass:NSClassFromString(@"NSMenuPanel")]) continue;
    NSRect const frame = [window frame];
    CGFloat const up = NSHeight(frame) * static_cast<CGFloat>(random.below(110)) / 100;
    [GSCurrentServer() setMouseLocation:NSMakePoint(NSMidX(frame), NSMinY(frame) + up) onScreen:0];
    // The mouse has moved; then its button comes up.
    [NSApp postEvent:[NSEvent otherEventWithType:NSPeriodic
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:[window windowNumber]
                                         context:[window graphicsContext]
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
    mouse(window, NSLeftMouseUp, NSMakePoint(10, up), 1, 0);
    return true;
  }
  return false;
}

}  // namespace monkey
