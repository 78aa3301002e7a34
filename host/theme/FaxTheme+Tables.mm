// Tables, lists in columns, and the frames and scrollers around them.
#import "host/theme/FaxTheme.h"

#include <algorithm>
#include <cmath>

#import "host/theme/drawing.h"
#include "platform/gnustep/repair.h"

using namespace fax::theme;

static CGFloat const kRowAir = 4;
static CGFloat const kCellIndent = 4;

static void DrawHeader(NSRect frame, bool flipped) {
  Palette const &colours = current_palette();
  fill(frame, colours.panel);
  CGFloat const bottom = flipped ? NSMaxY(frame) - 1 : NSMinY(frame);
  fill(NSMakeRect(NSMinX(frame), bottom, NSWidth(frame), 1), colours.border);
}

// Rows as high as the letters in them: a document's fixed number cuts a larger font.
static CGFloat RowHeight(NSTableView *table) {
  CGFloat height = [table rowHeight];
  NSArray *columns = [table tableColumns];
  for (NSUInteger at = 0; at < [columns count]; ++at) {
    NSFont *font = [[[columns objectAtIndex:at] dataCell] font];
    if (font) height = std::max(height, std::ceil([font defaultLineHeightForFont]) + kRowAir);
  }
  return height;
}

namespace {
fax::Repair<id(NSCoder *)> init_with_coder{"NSTableView", "initWithCoder:",
                                           [](id self, SEL command, NSCoder *coder) -> id {
                                             NSTableView *table = init_with_coder(self, command, coder);
                                             [table setRowHeight:RowHeight(table)];
                                             return table;
                                           }};

// Cells begin where their column's title does, and clear of the mark of a selected row.
fax::Repair<NSRect(NSInteger, NSInteger)> frame_of_cell{
    "NSTableView", "frameOfCellAtColumn:row:", [](id self, SEL command, NSInteger column, NSInteger row) -> NSRect {
      NSRect cell = frame_of_cell(self, command, column, row);
      if (NSWidth(cell) <= 4 * kCellIndent) return cell;
      cell.origin.x += kCellIndent;
      cell.size.width -= kCellIndent;
      return cell;
    }};
}  // namespace

@implementation FaxTheme (Tables)

- (NSColor *)tableHeaderTextColorForState:(GSThemeControlState)state {
  return ns(current_palette().quiet_text);
}

- (void)drawTableCornerView:(NSView *)view withClip:(NSRect)clip {
  DrawHeader([view bounds], [view isFlipped]);
}

- (void)drawTableHeaderCell:(NSTableHeaderCell *)cell
                  withFrame:(NSRect)frame
                     inView:(NSView *)view
                      state:(GSThemeControlState)state {
  DrawHeader(frame, [view isFlipped]);
  fill(NSMakeRect(NSMaxX(frame) - 1, NSMinY(frame) + 4, 1, NSHeight(frame) - 9), current_palette().separator);
}

// A little air before the title, as before the cells.
- (NSRect)tableHeaderCellDrawingRectForBounds:(NSRect)bounds {
  return NSInsetRect(bounds, 4, 1);
}

// Striped whatever the table says: its own flag does not survive being set.
- (void)drawTableViewBackgroundInClipRect:(NSRect)clip inView:(NSView *)view withBackgroundColor:(NSColor *)colour {
  Palette const &colours = current_palette();
  fill(clip, colours.field);
  NSTableView *table = static_cast<id>(view);
  CGFloat const height = [table rowHeight];  // also the distance of two rows
  if (height < 1) return;
  auto const first = static_cast<NSInteger>(std::max<CGFloat>(0, NSMinY(clip)) / height);
  for (NSInteger row = first | 1; row * height < NSMaxY(clip); row += 2) {
    NSRect const stripe = NSMakeRect(NSMinX(clip), row * height, NSWidth(clip), height);
    fill(NSIntersectionRect(clip, stripe), colours.stripe);
  }
}

- (void)highlightTableViewSelectionInClipRect:(NSRect)clip inView:(NSView *)view selectingColumns:(BOOL)columns {
  NSTableView *table = static_cast<id>(view);
  bool const focused = has_focus(table);
  Palette const &colours = current_palette();
  NSIndexSet *selected = [table selectedRowIndexes];
  NSRange const rows = [table rowsInRect:clip];
  for (NSUInteger row = [selected indexGreaterThanOrEqualToIndex:rows.location];
       row != NSNotFound && row < NSMaxRange(rows); row = [selected indexGreaterThanIndex:row]) {
    NSRect const whole = [table rectOfRow:static_cast<NSInteger>(row)];
    fill(NSIntersectionRect(whole, clip), focused ? colours.selection : colours.idle_selection);
    if (focused)
      fill(NSIntersectionRect(NSMakeRect(NSMinX(whole), NSMinY(whole), 3, NSHeight(whole)), clip), colours.accent);
  }
}

// Frames.

- (void)drawScrollViewRect:(NSRect)clip inView:(NSView *)view {
  NSScrollView *scroll = static_cast<NSScrollView *>(view);
  if ([scroll borderType] == NSNoBorder) return;
  Palette const &colours = current_palette();
  NSRect const bounds = [scroll bounds];
  rounded(bounds, 3, colours.field, colours.border);
  NSView *content = [scroll documentView];
  if (content && has_focus(content)) outline(bounds, 3, colours.focus, 2);
}

- (void)drawScrollerRect:(NSRect)clip inView:(NSView *)view hitPart:(NSScrollerPart)part isHorizontal:(BOOL)horizontal {
  NSScroller *scroller = static_cast<NSScroller *>(view);
  Palette const &colours = current_palette();
  fill([scroller bounds], colours.panel);
  if (![scroller isEnabled]) return;
  NSRect const knob = [scroller rectForPart:NSScrollerKnob];
  NSRect const bar = horizontal ? NSInsetRect(knob, 1, 4) : NSInsetRect(knob, 4, 1);
  rounded(bar, std::min(NSWidth(bar), NSHeight(bar)) / 2, part == NSScrollerKnob ? colours.glyph : colours.knob);
  NSRect const less = [scroller rectForPart:NSScrollerDecrementLine];
  NSRect const more = [scroller rectForPart:NSScrollerIncrementLine];
  if (NSIsEmptyRect(less) || NSIsEmptyRect(more)) return;
  bool const up_is_min = [scroller isFlipped];
  NSRectEdge const first = horizontal ? NSMinXEdge : up_is_min ? NSMinYEdge : NSMaxYEdge;
  NSRectEdge const last = horizontal ? NSMaxXEdge : up_is_min ? NSMaxYEdge : NSMinYEdge;
  draw_chevron(NSMakePoint(NSMidX(less), NSMidY(less)), 2.5, first, colours.glyph);
  draw_chevron(NSMakePoint(NSMidX(more), NSMidY(more)), 2.5, last, colours.glyph);
}

- (float)defaultScrollerWidth {
  return 14;
}

- (BOOL)scrollerArrowsSameEndForScroller:(NSScroller *)scroller {
  return NO;
}

// The toolkit asks for these cells even though drawScrollerRect: draws it all; its own would look for pictures. It does
// not retain them: naming them as temporary keeps them.

- (NSButtonCell *)cellForScrollerArrow:(NSScrollerArrow)arrow horizontal:(BOOL)horizontal {
  NSButtonCell *cell = [[[NSButtonCell alloc] initTextCell:@""] autorelease];
  [cell setBordered:NO];
  [self setName:@"FaxScrollerPart" forElement:cell temporary:YES];
  return cell;
}

- (NSCell *)cellForScrollerKnob:(BOOL)horizontal {
  return [self cellForScrollerArrow:NSScrollerIncrementArrow horizontal:horizontal];
}

- (NSCell *)cellForScrollerKnobSlot:(BOOL)horizontal {
  return [self cellForScrollerArrow:NSScrollerIncrementArrow horizontal:horizontal];
}

// Lists in columns, as in the panels for files.

- (BOOL)browserUseBezels {
  return YES;
}

- (NSColor *)browserHeaderTextColor {
  return ns(current_palette().quiet_text);
}

- (void)drawBrowserHeaderCell:(NSTableHeaderCell *)cell withFrame:(NSRect)frame inView:(NSView *)view {
  fill(frame, current_palette().window);
}

@end
