// Menus, and pop-up buttons, which the toolkit draws as menu items.
#import "host/theme/FaxTheme.h"

#include <algorithm>
#include <cmath>

#import "host/theme/drawing.h"

using namespace fax::theme;

static CGFloat const kPopUpInset = 9;
static CGFloat const kPopUpArrow = 22;  // room for the arrow, with its margins

static bool IsPopUp(NSView *view) { return [view isKindOfClass:[NSPopUpButton class]]; }

static bool IsChosen(GSThemeControlState state) {
  return state == GSThemeHighlightedState || state == GSThemeHighlightedFirstResponderState ||
         state == GSThemeSelectedState || state == GSThemeSelectedFirstResponderState;
}

@implementation FaxTheme (Menus)

- (NSColor *)menuBackgroundColor {
  return ns(current_palette().menu);
}

- (NSColor *)menuItemBackgroundColor {
  return ns(current_palette().menu);
}

- (NSColor *)menuBorderColor {
  return ns(current_palette().border);
}

- (NSColor *)menuBorderColorForEdge:(NSRectEdge)edge isHorizontal:(BOOL)horizontal {
  return [self menuBorderColor];
}

- (NSColor *)menuSeparatorColor {
  return ns(current_palette().separator);
}

- (CGFloat)menuSeparatorInset {
  return 8;
}

- (CGFloat)menuSeparatorHeight {
  return 9;
}

- (CGFloat)menuItemHeight {
  return std::max<CGFloat>(24, std::ceil([[NSFont menuFontOfSize:0] defaultLineHeightForFont]) + 8);
}

- (void)drawBorderAndBackgroundForMenuItemCell:(NSMenuItemCell *)cell
                                     withFrame:(NSRect)frame
                                        inView:(NSView *)view
                                         state:(GSThemeControlState)state
                                  isHorizontal:(BOOL)horizontal {
  if (IsPopUp(view)) {
    [self drawButton:frame in:cell view:view style:NSRegularSquareBezelStyle state:state];
    return;
  }
  // The ground is the menu's, drawn before its items.
  if (IsChosen(state)) rounded(NSInsetRect(frame, 4, 1), kRadius - 1, current_palette().accent);
}

- (void)drawTitleForMenuItemCell:(NSMenuItemCell *)cell
                       withFrame:(NSRect)frame
                          inView:(NSView *)view
                           state:(GSThemeControlState)state
                    isHorizontal:(BOOL)horizontal {
  if (!IsPopUp(view)) {
    // Where the title of a pop-up button stands; other menus have room for a mark before it.
    CGFloat const missing = std::max<CGFloat>(0, kPopUpInset - NSMinX([cell titleRectForBounds:frame]));
    [super drawTitleForMenuItemCell:cell
                          withFrame:NSOffsetRect(frame, missing, 0)
                             inView:view
                              state:state
                       isHorizontal:horizontal];
    return;
  }
  Palette const &colours = current_palette();
  NSFont *font = [cell font] ? [cell font] : [NSFont systemFontOfSize:0];
  NSMutableParagraphStyle *style = [[[NSParagraphStyle defaultParagraphStyle] mutableCopy] autorelease];
  [style setLineBreakMode:NSLineBreakByTruncatingTail];
  NSDictionary *look = [NSDictionary
      dictionaryWithObjectsAndKeys:font, NSFontAttributeName,
                                   ns([cell isEnabled] ? colours.text : colours.disabled_text),
                                   NSForegroundColorAttributeName, style, NSParagraphStyleAttributeName, nil];
  NSRect const whole = [view bounds];
  CGFloat const height = [font defaultLineHeightForFont];
  [[[cell menuItem] title] drawInRect:NSMakeRect(NSMinX(whole) + kPopUpInset, std::floor(NSMidY(whole) - height / 2),
                                                 NSWidth(whole) - kPopUpInset - kPopUpArrow, height)
                       withAttributes:look];
}

- (NSRect)drawMenuTitleBackground:(GSTitleView *)title withBounds:(NSRect)bounds withClip:(NSRect)clip {
  fill(bounds, current_palette().panel);
  return bounds;
}

@end
