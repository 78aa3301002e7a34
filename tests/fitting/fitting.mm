#import "fitting.h"

#include <cmath>
#include <sstream>

namespace test {
namespace {

// What no measure tells, but a person sees: frames may touch and bezels cast shadows.
constexpr CGFloat kTolerance = 1;
constexpr CGFloat kOverlap = 3;
// Left and right of the title of a window are its icon and its buttons.
constexpr CGFloat kTitleBarButtons = 100;
// Around the title of a pop-up: its arrow and margins.
constexpr CGFloat kPopUpMargins = 31;
// Around the label of a tab.
constexpr CGFloat kTabMargins = 24;

std::string utf8(NSString *text) { return text != nil ? [text UTF8String] : ""; }

CGFloat width_of(NSString *text, NSFont *font) {
  if ([text length] == 0) return 0;
  if (font == nil) font = [NSFont systemFontOfSize:0];
  return std::ceil([text sizeWithAttributes:[NSDictionary dictionaryWithObject:font forKey:NSFontAttributeName]].width);
}

CGFloat height_of(NSAttributedString *text, CGFloat width) {
  return std::ceil([text boundingRectWithSize:NSMakeSize(width, 1e6) options:NSStringDrawingUsesLineFragmentOrigin]
                       .size.height);
}

// A letter for which no font was found.
bool lacks_letters(NSString *text) {
  NSDictionary *font = [NSDictionary dictionaryWithObject:[NSFont systemFontOfSize:0] forKey:NSFontAttributeName];
  NSMutableAttributedString *drawn = [[[NSMutableAttributedString alloc] initWithString:text attributes:font] autorelease];
  [drawn fixFontAttributeInRange:NSMakeRange(0, [drawn length])];
  for (NSUInteger at = 0; at < [text length]; ++at) {
    NSFont *chosen = [drawn attribute:NSFontAttributeName atIndex:at effectiveRange:NULL];
    unichar const letter = [text characterAtIndex:at];
    if (letter >= ' ' && ![[chosen coveredCharacterSet] characterIsMember:letter]) return true;
  }
  return false;
}

std::string fault(std::string const &kind, NSString *text, CGFloat needed, CGFloat given) {
  if (lacks_letters(text)) return kind + " \"" + utf8(text) + "\" has letters that no font has";
  if (needed <= given + kTolerance) return {};
  std::ostringstream said;
  said << kind << " \"" << utf8(text) << "\" needs " << needed << " of " << given;
  return said.str();
}

class Report {
 public:
  explicit Report(NSWindow *window) : root_([window contentView]) {
    add(fault("title", [window title], width_of([window title], [NSFont titleBarFontOfSize:0]),
              [window frame].size.width - kTitleBarButtons));
    walk(root_);
  }
  std::vector<std::string> lines;

 private:
  void add(std::string line) {
    if (!line.empty()) lines.push_back(std::move(line));
  }

  void walk(NSView *view) {
    if ([view isHidden]) return;
    measure(view);
    place(view);
    if ([view isKindOfClass:[NSTabView class]]) return walk_tabs((NSTabView *)view);
    // A control is one thing, whatever views it is made of.
    if ([view isKindOfClass:[NSControl class]]) return;
    NSArray *inner = [view subviews];
    for (NSUInteger at = 0; at < [inner count]; ++at) {
      walk([inner objectAtIndex:at]);
      for (NSUInteger other = at + 1; other < [inner count]; ++other)
        overlap([inner objectAtIndex:at], [inner objectAtIndex:other]);
    }
  }

  void walk_tabs(NSTabView *tabs) {
    NSTabViewItem *const shown = [tabs selectedTabViewItem];
    NSArray *items = [tabs tabViewItems];
    CGFloat needed = 0;
    NSMutableArray *labels = [NSMutableArray array];
    for (NSUInteger at = 0; at < [items count]; ++at) {
      NSTabViewItem *item = [items objectAtIndex:at];
      [labels addObject:[item label]];
      needed += width_of([item label], [tabs font]) + kTabMargins;
    }
    add(fault("tabs", [labels componentsJoinedByString:@" | "], needed, [tabs bounds].size.width));
    for (NSUInteger at = 0; at < [items count]; ++at) {
      [tabs selectTabViewItem:[items objectAtIndex:at]];
      walk([[items objectAtIndex:at] view]);
    }
    if (shown != nil) [tabs selectTabViewItem:shown];
  }

  void measure(NSView *view) {
    CGFloat const width = [view bounds].size.width;
    if ([view isKindOfClass:[NSPopUpButton class]]) {
      auto *popUp = (NSPopUpButton *)view;
      for (NSInteger at = 0; at < [popUp numberOfItems]; ++at)
        add(fault("pop-up item", [popUp itemTitleAtIndex:at], width_of([popUp itemTitleAtIndex:at], [popUp font]),
                  width - kPopUpMargins));
    } else if ([view isKindOfClass:[NSButton class]]) {
      auto *button = (NSButton *)view;
      if ([[button title] length] > 0) add(fault("button", [button title], std::ceil([[button cell] cellSize].width), width));
    } else if ([view isKindOfClass:[NSTextField class]]) {
      auto *field = (NSTextField *)view;
      if (![field isEditable] && ![field isBezeled]) add(label_fault(field, [field attributedStringValue]));
    } else if ([view isKindOfClass:[NSTableView class]]) {
      NSArray *columns = [(NSTableView *)view tableColumns];
      for (NSUInteger at = 0; at < [columns count]; ++at) heading([columns objectAtIndex:at]);
    } else if ([view isKindOfClass:[NSBox class]] && [(NSBox *)view titlePosition] != NSNoTitle) {
      auto *box = (NSBox *)view;
      add(fault("box", [box title], width_of([box title], [box titleFont]), width - 20));
    } else if ([view isKindOfClass:[NSMatrix class]]) {
      auto *matrix = (NSMatrix *)view;
      NSArray *cells = [matrix cells];
      for (NSUInteger at = 0; at < [cells count]; ++at)
        add(fault("cell", [[cells objectAtIndex:at] title], std::ceil([[cells objectAtIndex:at] cellSize].width),
                  [matrix cellSize].width));
    }
  }

  void heading(NSTableColumn *column) {
    NSCell *const cell = [column headerCell];
    add(fault("heading", [cell stringValue], std::ceil([cell cellSize].width), [column width]));
  }

 public:
  static std::string label_fault(NSTextField *field, NSAttributedString *text) {
    if ([text length] == 0) return {};
    NSRect const room = [[field cell] titleRectForBounds:[field bounds]];
    if (![[field cell] wraps]) return fault("label", [text string], std::ceil([text size].width), room.size.width);
    return fault("height of label", [text string], height_of(text, room.size.width), room.size.height);
  }

 private:
  // Lists are moved about by what scrolls them.
  static bool scrolled(NSView *view) { return [[view superview] isKindOfClass:[NSClipView class]]; }

  static bool counts(NSView *view) {
    return ![view isHidden] && ([view isKindOfClass:[NSControl class]] || [view isKindOfClass:[NSBox class]] ||
                                [view isKindOfClass:[NSScrollView class]] || [view isKindOfClass:[NSTabView class]]);
  }

  static NSString *name_of(NSView *view) {
    if ([view isKindOfClass:[NSBox class]]) return [(NSBox *)view title];
    if ([view isKindOfClass:[NSPopUpButton class]]) return [(NSPopUpButton *)view titleOfSelectedItem];
    if ([view isKindOfClass:[NSButton class]]) return [(NSButton *)view title];
    return [view isKindOfClass:[NSTextField class]] ? [(NSTextField *)view stringValue] : @"";
  }

  static std::string described(NSView *view) {
    std::ostringstream said;
    NSRect const frame = [view frame];
    said << object_getClassName(view) << " \"" << utf8(name_of(view)) << "\" [" << frame.origin.x << " " << frame.origin.y
         << " " << frame.size.width << " " << frame.size.height << "]";
    return said.str();
  }

  void place(NSView *view) {
    NSView *const around = [view superview];
    if (view == root_ || !counts(view) || scrolled(view) || [around isKindOfClass:[NSScrollView class]]) return;
    NSRect const inside = NSInsetRect([around bounds], -kOverlap, -kOverlap);
    if (!NSContainsRect(inside, [view frame])) add(described(view) + " lies outside " + described(around));
  }

  void overlap(NSView *one, NSView *other) {
    if (!counts(one) || !counts(other) || [one isKindOfClass:[NSScroller class]] || [other isKindOfClass:[NSScroller class]])
      return;
    NSRect const common = NSIntersectionRect([one frame], [other frame]);
    if (common.size.width > kOverlap && common.size.height > kOverlap)
      add(described(one) + " overlaps " + described(other));
  }

  NSView *root_;
};

}  // namespace

std::vector<std::string> fitting_report(NSWindow *window) { return Report(window).lines; }

std::string fitting_fault(NSTextField *label, NSString *text, bool bold) {
  NSFont *font = [label font];
  if (bold) font = [NSFont boldSystemFontOfSize:[font pointSize]];
  NSAttributedString *shown = [[[NSAttributedString alloc]
      initWithString:text
          attributes:[NSDictionary dictionaryWithObject:font forKey:NSFontAttributeName]] autorelease];
  return Report::label_fault(label, shown);
}

}  // namespace test
