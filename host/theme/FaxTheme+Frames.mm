// Fields, boxes, tabs, progress: everything that is mostly a frame.
#import "host/theme/FaxTheme.h"

#include <algorithm>
#include <cmath>

#import "host/theme/drawing.h"
#include "platform/gnustep/repair.h"

using namespace fax::theme;

static CGFloat const kTabHeight = 25;  // what the toolkit keeps free for tabs, without its overlap

static NSRect Framed(NSRect area, Colour ground) {
  rounded(area, kRadius - 1, ground, current_palette().border);
  return NSInsetRect(area, 2, 2);
}

static void DrawTab(NSTabViewItem *item, NSRect tab, bool selected, NSView *view) {
  Palette const &colours = current_palette();
  if (selected) {
    fill(NSMakeRect(NSMinX(tab), [view isFlipped] ? NSMaxY(tab) - 3 : NSMinY(tab), NSWidth(tab), 3), colours.accent);
    if (has_focus(view)) outline(NSInsetRect(tab, 0, 3), kRadius - 1, colours.focus, 2);
  }
  // This call also keeps the rectangle that clicks are compared with.
  [item drawLabel:NO inRect:NSInsetRect(tab, 10, 3)];
}

namespace {

// The theme's border has painted the ground of a field; the toolkit would paint a disabled one as if it were a list.
fax::Repair<void(NSRect, NSView *)> draw_ground{"NSTextFieldCell", "_drawBackgroundWithFrame:inView:",
                                                [](id self, SEL command, NSRect frame, NSView *view) {
                                                  NSTextFieldCell *cell = self;
                                                  if ([cell isBezeled] && ![cell isEnabled]) return;
                                                  draw_ground(self, command, frame, view);
                                                }};

}  // namespace

@implementation FaxTheme (Frames)

- (void)drawBorderType:(NSBorderType)type frame:(NSRect)frame view:(NSView *)view {
  if (type == NSNoBorder) return;
  Palette const &colours = current_palette();
  bool const enabled = ![view isKindOfClass:[NSControl class]] || [static_cast<NSControl *>(view) isEnabled];
  rounded(frame, kRadius - 1, enabled ? colours.field : colours.disabled_field,
          enabled ? colours.border : colours.separator);
  if (enabled && has_focus(view)) outline(frame, kRadius - 1, colours.focus, 2);
}

- (NSRect)drawWhiteBezel:(NSRect)area withClip:(NSRect)clip {
  return Framed(area, current_palette().field);
}

- (NSRect)drawGrayBezel:(NSRect)area withClip:(NSRect)clip {
  return Framed(area, current_palette().field);
}

- (NSRect)drawDarkBezel:(NSRect)area withClip:(NSRect)clip {
  return Framed(area, current_palette().panel);
}

- (NSRect)drawLightBezel:(NSRect)area withClip:(NSRect)clip {
  return Framed(area, current_palette().panel);
}

- (NSRect)drawButton:(NSRect)area withClip:(NSRect)clip {
  return Framed(area, current_palette().button);
}

- (NSRect)drawDarkButton:(NSRect)area withClip:(NSRect)clip {
  return Framed(area, current_palette().panel);
}

- (NSRect)drawGroove:(NSRect)area withClip:(NSRect)clip {
  outline(area, kRadius - 1, current_palette().separator);
  return NSInsetRect(area, 2, 2);
}

- (void)drawBoxInClipRect:(NSRect)clip
                  boxType:(NSBoxType)type
               borderType:(NSBorderType)border
                   inView:(NSBox *)box {
  if (type == NSBoxCustom) {
    [super drawBoxInClipRect:clip boxType:type borderType:border inView:box];
    return;
  }
  Palette const &colours = current_palette();
  NSRect const frame = [box borderRect];
  if (type == NSBoxSeparator || NSHeight(frame) <= 5 || NSWidth(frame) <= 5) {
    bool const lying = NSWidth(frame) > NSHeight(frame);
    fill(lying ? NSMakeRect(NSMinX(frame), NSMidY(frame), NSWidth(frame), 1)
               : NSMakeRect(NSMidX(frame), NSMinY(frame), 1, NSHeight(frame)),
         colours.separator);
    return;
  }
  fill(clip, colours.window);
  if (border != NSNoBorder) outline(frame, kRadius + 1, colours.separator);
  if ([box titlePosition] == NSNoTitle) return;
  NSRect title = [box titleRect];
  title.origin.x = NSMinX(frame) + 10;
  fill(title, colours.window);
  [[box titleCell] drawWithFrame:title inView:box];
}

- (void)drawTabViewRect:(NSRect)clip
                 inView:(NSView *)view
              withItems:(NSArray *)items
           selectedItem:(NSTabViewItem *)selected {
  NSTabViewType const type = [static_cast<NSTabView *>(view) tabViewType];
  if (type == NSNoTabsNoBorder) return;
  Palette const &colours = current_palette();
  NSRect const bounds = [view bounds];
  if (type != NSTopTabsBezelBorder) {
    if (type == NSNoTabsBezelBorder || type == NSNoTabsLineBorder) {
      outline(bounds, kRadius, colours.separator);
    } else {
      [super drawTabViewRect:clip inView:view withItems:items selectedItem:selected];
    }
    return;
  }
  bool const flipped = [view isFlipped];
  CGFloat const line = flipped ? NSMinY(bounds) + kTabHeight - 1 : NSMaxY(bounds) - kTabHeight;
  fill(NSMakeRect(NSMinX(bounds), line, NSWidth(bounds), 1), colours.separator);
  CGFloat left = NSMinX(bounds) + 4;
  for (NSUInteger at = 0; at < [items count]; ++at) {
    NSTabViewItem *item = [items objectAtIndex:at];
    CGFloat const top = flipped ? NSMinY(bounds) : NSMaxY(bounds) - kTabHeight;
    NSRect const tab = NSMakeRect(left, top, [item sizeOfLabel:NO].width + 24, kTabHeight);
    DrawTab(item, tab, item == selected, view);
    left += NSWidth(tab) + 4;
  }
}

- (void)drawProgressIndicator:(NSProgressIndicator *)progress
                   withBounds:(NSRect)bounds
                     withClip:(NSRect)clip
                      atCount:(int)count
                     forValue:(double)value {
  Palette const &colours = current_palette();
  if ([progress style] == NSProgressIndicatorSpinningStyle) {
    draw_spinner(bounds, count, colours.accent);
    return;
  }
  CGFloat const height = std::min<CGFloat>(8, NSHeight(bounds));
  NSRect const bar = NSMakeRect(NSMinX(bounds), NSMidY(bounds) - height / 2, NSWidth(bounds), height);
  rounded(bar, height / 2, colours.pressed);
  NSRect part = bar;
  if ([progress isIndeterminate]) {
    part.size.width = NSWidth(bar) / 4;
    part.origin.x += (NSWidth(bar) - NSWidth(part)) * (count % 20) / 19;
  } else {
    part.size.width = std::max<CGFloat>(value > 0 ? height : 0, NSWidth(bar) * value);
  }
  if (NSWidth(part) > 0) rounded(part, height / 2, colours.accent);
}

@end
