// Buttons, pop-ups, steppers, and the frame of what has the focus.
#import "host/theme/FaxTheme.h"

#include <algorithm>
#include <cmath>

#import "host/theme/drawing.h"
#include "platform/gnustep/repair.h"

using namespace fax::theme;

static CGFloat const kFocusWidth = 2;
// Layouts leave room around a push button for the shadow that it has elsewhere.
static CGFloat const kTallestPush = 28;

static bool IsPressed(GSThemeControlState state) {
  return state == GSThemeHighlightedState || state == GSThemeHighlightedFirstResponderState ||
         state == GSThemeSelectedState || state == GSThemeSelectedFirstResponderState;
}

static bool IsDefault(NSCell *cell, NSView *view) {
  NSCell *chosen = [[view window] defaultButtonCell];
  if (chosen) return chosen == cell;
  return [cell isKindOfClass:[NSButtonCell class]] &&
         [[static_cast<NSButtonCell *>(cell) keyEquivalent] isEqualToString:@"\r"];
}

static bool IsPush(NSView *view) {
  return [view isKindOfClass:[NSButton class]] && ![view isKindOfClass:[NSPopUpButton class]] &&
         [static_cast<NSButton *>(view) isBordered] && ![view isHidden];
}

static NSButton *EscapeButton(NSView *view) {
  if (IsPush(view) && [[static_cast<NSButton *>(view) keyEquivalent] isEqualToString:@"\e"])
    return static_cast<NSButton *>(view);
  NSArray *const parts = [view subviews];
  for (NSUInteger at = 0; at < [parts count]; ++at) {
    if (NSButton *found = EscapeButton([parts objectAtIndex:at])) return found;
  }
  return nil;
}

// What the window is there for: the last button of the row in which the one stands that leaves. nil without such a row.
static NSButton *MainButton(NSWindow *window) {
  NSButton *const leaves = EscapeButton([window contentView]);
  NSButton *last = leaves;
  NSArray *const row = [[leaves superview] subviews];
  for (NSUInteger at = 0; at < [row count]; ++at) {
    NSView *const other = [row objectAtIndex:at];
    if (!IsPush(other) || std::abs(NSMidY([other frame]) - NSMidY([leaves frame])) > 4) continue;
    if (NSMinX([other frame]) > NSMinX([last frame])) last = static_cast<NSButton *>(other);
  }
  return last != leaves ? last : nil;
}

enum class Accent { none, line, filled };

// The main action is told by its colour; a button that Return presses without being it, by a line.
static Accent AccentOf(NSCell *cell, NSView *view) {
  if (!IsPush(view)) return Accent::none;
  NSButton *const main = MainButton([view window]);
  if (main == view) return Accent::filled;
  if (!IsDefault(cell, view)) return Accent::none;
  return main ? Accent::line : Accent::filled;
}

static void DrawPush(NSRect frame, bool enabled, bool pressed, Accent accent, bool focused) {
  Palette const &colours = current_palette();
  if (!enabled) {
    rounded(frame, kRadius, colours.disabled_button, colours.separator);
    return;
  }
  if (accent == Accent::filled) {
    rounded(frame, kRadius, pressed ? colours.pressed_accent : colours.accent);
    if (focused) outline(NSInsetRect(frame, 2, 2), kRadius - 2, colours.on_accent, 1.5);
    return;
  }
  rounded(frame, kRadius, pressed ? colours.pressed : colours.button,
          accent == Accent::line ? colours.focus : colours.border);
  if (focused) outline(frame, kRadius, colours.focus, kFocusWidth);
}

// A title drawn in a colour of its own.
static NSAttributedString *Recoloured(NSAttributedString *title, Colour colour) {
  NSMutableAttributedString *copy = [[title mutableCopy] autorelease];
  [copy addAttribute:NSForegroundColorAttributeName value:ns(colour) range:NSMakeRange(0, [copy length])];
  return copy;
}

// Text on the accent colour.
namespace {
fax::Repair<NSRect(NSAttributedString *, NSRect, NSView *)> draw_title{
    "NSButtonCell", "drawTitle:withFrame:inView:",
    [](id self, SEL command, NSAttributedString *title, NSRect frame, NSView *view) -> NSRect {
      NSButtonCell *cell = self;
      bool const accented = [cell isEnabled] && AccentOf(cell, view) == Accent::filled;
      return draw_title(self, command, accented ? Recoloured(title, current_palette().on_accent) : title, frame, view);
    }};
}  // namespace

@implementation FaxTheme (Buttons)

// No arrow of the return key in a button: the default button is told by its colour.
- (void)setKeyEquivalent:(NSString *)key forButtonCell:(NSButtonCell *)cell {
}
- (void)didSetDefaultButtonCell:(NSButtonCell *)cell {
}

- (void)drawButton:(NSRect)frame
                in:(NSCell *)cell
              view:(NSView *)view
             style:(int)style
             state:(GSThemeControlState)state {
  if (style == NSRoundedBezelStyle && NSHeight(frame) > kTallestPush)
    frame = NSInsetRect(frame, 4, (NSHeight(frame) - kTallestPush) / 2);
  DrawPush(frame, [cell isEnabled], IsPressed(state), AccentOf(cell, view), has_focus(view));
}

// Check boxes and radio buttons have no bezel that could show the focus; push buttons have shown it.
- (void)drawFocusFrame:(NSRect)frame view:(NSView *)view {
  if ([view isKindOfClass:[NSButton class]] && [static_cast<NSButton *>(view) isBordered]) return;
  if ([view isKindOfClass:[NSTextField class]]) return;
  outline(frame, kRadius - 1, current_palette().focus, kFocusWidth);
}

// Steppers: two halves with a chevron each.

- (NSRect)stepperUpButtonRectWithFrame:(NSRect)frame {
  CGFloat const half = std::floor(NSHeight(frame) / 2);
  return NSMakeRect(NSMinX(frame), NSMinY(frame) + half, NSWidth(frame), NSHeight(frame) - half);
}

- (NSRect)stepperDownButtonRectWithFrame:(NSRect)frame {
  return NSMakeRect(NSMinX(frame), NSMinY(frame), NSWidth(frame), std::floor(NSHeight(frame) / 2));
}

- (void)drawStepperCell:(NSCell *)cell
              withFrame:(NSRect)frame
                 inView:(NSView *)view
            highlightUp:(BOOL)up
          highlightDown:(BOOL)down {
  Palette const &colours = current_palette();
  NSRect const upper = [self stepperUpButtonRectWithFrame:frame];
  NSRect const lower = [self stepperDownButtonRectWithFrame:frame];
  rounded(frame, kRadius - 1, [cell isEnabled] ? colours.button : colours.disabled_button, colours.border);
  if (up) rounded(NSInsetRect(upper, 1, 1), kRadius - 2, colours.pressed);
  if (down) rounded(NSInsetRect(lower, 1, 1), kRadius - 2, colours.pressed);
  Colour const glyph = [cell isEnabled] ? colours.glyph : colours.disabled_text;
  draw_chevron(NSMakePoint(NSMidX(upper), NSMidY(upper)), 2.5, NSMaxYEdge, glyph);
  draw_chevron(NSMakePoint(NSMidX(lower), NSMidY(lower)), 2.5, NSMinYEdge, glyph);
  if (has_focus(view)) outline(frame, kRadius - 1, colours.focus, kFocusWidth);
}

@end
