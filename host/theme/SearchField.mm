// Search fields as one field: the toolkit draws the frame around the text only, with the two buttons outside.
#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<void(NSRect, NSView *)> draw{
    "NSSearchFieldCell", "drawWithFrame:inView:", [](id self, SEL command, NSRect frame, NSView *view) {
      NSSearchFieldCell *cell = self;
      if (![cell isBezeled]) {
        draw(self, command, frame, view);
        return;
      }
      // The cell sends its action for the view that it drew itself in last.
      [cell setControlView:view];
      [[GSTheme theme] drawBorderType:NSBezelBorder frame:frame view:view];
      [[cell searchButtonCell] drawWithFrame:[cell searchButtonRectForBounds:frame] inView:view];
      [cell drawInteriorWithFrame:[cell searchTextRectForBounds:frame] inView:view];
      if ([[cell stringValue] length] > 0)
        [[cell cancelButtonCell] drawWithFrame:[cell cancelButtonRectForBounds:frame] inView:view];
    }};

}  // namespace
