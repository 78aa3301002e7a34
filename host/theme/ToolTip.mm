// Tooltips that break their lines: the toolkit measures a long text as one line and cuts what does not fit. Its window
// is given the size that the text needs, and a quiet ground in the place of the black frame.
#import <AppKit/AppKit.h>

#include <algorithm>
#include <cmath>

#import "host/theme/drawing.h"
#include "platform/gnustep/repair.h"

using namespace fax::theme;

static CGFloat const kWidest = 360;
static CGFloat const kPadding = 6;

static NSAttributedString *shown = nil;

static NSRect RoomyFrame(NSWindow *window, NSRect proposed) {
  NSSize const text = [shown boundingRectWithSize:NSMakeSize(kWidest, 1e6)
                                          options:NSStringDrawingUsesLineFragmentOrigin].size;
  CGFloat const scale = [window userSpaceScaleFactor];
  NSSize const size = {std::ceil((text.width + 2 * kPadding + 2) * scale),
                       std::ceil((text.height + 2 * kPadding) * scale)};
  NSRect const screen = [([window screen] ? [window screen] : [NSScreen mainScreen]) visibleFrame];
  CGFloat const left = std::min(NSMinX(proposed), NSMaxX(screen) - size.width);
  CGFloat const bottom = std::max(NSMaxY(proposed) - size.height, NSMinY(screen));
  return NSMakeRect(std::max(left, NSMinX(screen)), bottom, size.width, size.height);
}

namespace {

fax::Repair<void(NSAttributedString *)> set_text{"GSTTView", "setText:",
                                                 [](id self, SEL command, NSAttributedString *text) {
                                                   [text retain];
                                                   [shown release];
                                                   shown = text;
                                                   set_text(self, command, text);
                                                 }};

fax::Repair<void(NSRect, BOOL)> set_frame{
    "GSTTPanel", "setFrame:display:", [](id self, SEL command, NSRect frame, BOOL display) {
      set_frame(self, command, shown && !NSIsEmptyRect(frame) ? RoomyFrame(self, frame) : frame, display);
    }};

fax::Repair<void(NSRect)> draw{"GSTTView", "drawRect:", [](id self, SEL, NSRect) {
                                 NSView *view = self;
                                 fill([view bounds], current_palette().tip);
                                 [shown drawInRect:NSInsetRect([view bounds], kPadding, kPadding)];
                               }};

}  // namespace
