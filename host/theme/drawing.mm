#import "host/theme/drawing.h"

#include <algorithm>
#include <cmath>

#import "host/theme/PictureRep.h"
#include "host/theme/icons.h"

namespace fax::theme {
namespace {

// As the toolkit will know it: there may be no screen yet.
CGFloat screen_scale() {
  CGFloat const factor = [[NSUserDefaults standardUserDefaults] floatForKey:@"GSScaleFactor"];
  return factor > 0 ? factor : 1;
}

NSBezierPath *rounded_path(NSRect area, CGFloat radius) {
  return [NSBezierPath bezierPathWithRoundedRect:area xRadius:radius yRadius:radius];
}

NSImage *image(NSBitmapImageRep *bitmap) {
  NSImage *made = [[NSImage alloc] initWithSize:[bitmap size]];
  [made addRepresentation:bitmap];
  // The toolkit would keep a copy that suits no scale but 1.
  [made setCacheMode:NSImageCacheNever];
  return [made autorelease];
}

PictureRep *rep(Picture const &picture) { return [[[PictureRep alloc] initWithPicture:picture] autorelease]; }

// What a field editor writes into; nil for anything else.
id edited_by(NSResponder *responder) {
  if (![responder isKindOfClass:[NSText class]]) return nil;
  NSText *editor = static_cast<id>(responder);
  return [editor isFieldEditor] ? static_cast<id>([editor delegate]) : nil;
}

void set_name(NSImage *image, NSString *name) {
  if (![image setName:name]) {
    [static_cast<NSImage *>([NSImage imageNamed:name]) setName:nil];
    [image setName:name];
  }
  [image retain];  // the toolkit keeps no hold of a named picture, which lives as long as the program
}

}  // namespace

NSColor *ns(Colour colour) {
  return [NSColor colorWithCalibratedRed:colour.red / 255.0
                                   green:colour.green / 255.0
                                    blue:colour.blue / 255.0
                                   alpha:1];
}

void fill(NSRect area, Colour colour) {
  [ns(colour) set];
  NSRectFill(area);
}

void rounded(NSRect area, CGFloat radius, Colour ground) {
  [ns(ground) set];
  [rounded_path(area, radius) fill];
}

void rounded(NSRect area, CGFloat radius, Colour ground, Colour line, CGFloat width) {
  rounded(NSInsetRect(area, width / 2, width / 2), radius - width / 2, ground);
  outline(area, radius, line, width);
}

void outline(NSRect area, CGFloat radius, Colour line, CGFloat width) {
  NSBezierPath *path = rounded_path(NSInsetRect(area, width / 2, width / 2), radius - width / 2);
  [path setLineWidth:width];
  [ns(line) set];
  [path stroke];
}

bool has_focus(NSView *view) {
  NSWindow *window = [view window];
  NSResponder *first = [window firstResponder];
  if (!window || ![window isKeyWindow]) return false;
  if (first == view) return true;
  return edited_by(first) == view;
}

void refresh_focus(NSView *view) {
  if (id const field = edited_by(view)) {
    if ([field isKindOfClass:[NSView class]]) [static_cast<NSView *>(field) setNeedsDisplay:YES];
    return;
  }
  [view setNeedsDisplay:YES];
  [[view enclosingScrollView] setNeedsDisplay:YES];
}

void draw_chevron(NSPoint middle, CGFloat size, NSRectEdge towards, Colour colour) {
  bool const lying = towards == NSMinXEdge || towards == NSMaxXEdge;
  CGFloat const tip = towards == NSMaxXEdge || towards == NSMaxYEdge ? size / 2 : -size / 2;
  NSBezierPath *path = [NSBezierPath bezierPath];
  NSPoint const offsets[] = {{-size, -tip}, {0, tip}, {size, -tip}};
  for (NSPoint const &offset : offsets) {
    NSPoint const at = lying ? NSMakePoint(middle.x + offset.y, middle.y + offset.x)
                             : NSMakePoint(middle.x + offset.x, middle.y + offset.y);
    if (&offset == offsets)
      [path moveToPoint:at];
    else
      [path lineToPoint:at];
  }
  [path setLineWidth:1.5];
  [path setLineCapStyle:NSRoundLineCapStyle];
  [ns(colour) set];
  [path stroke];
}

void draw_spinner(NSRect area, int count, Colour colour) {
  int const dots = 8;
  CGFloat const side = std::min(NSWidth(area), NSHeight(area));
  CGFloat const dot = side / 7;
  for (int at = 0; at < dots; ++at) {
    double const angle = 2 * M_PI * at / dots;
    CGFloat const radius = side / 2 - dot;
    NSPoint const middle = {NSMidX(area) + std::cos(angle) * radius, NSMidY(area) + std::sin(angle) * radius};
    double const strength = 1 - ((count - at) % dots + dots) % dots / static_cast<double>(dots);
    [[ns(colour) colorWithAlphaComponent:strength] set];
    [[NSBezierPath bezierPathWithOvalInRect:NSMakeRect(middle.x - dot / 2, middle.y - dot / 2, dot, dot)] fill];
  }
}

void register_pictures(Palette const &palette) {
  CGFloat const scale = screen_scale();
  ControlPicture const *last = nullptr;
  PictureRep *drawn = nil;
  for (ControlPicture const &control : control_pictures()) {
    // Many kinds of folders look alike.
    if (!last || !looks_like(*last, control)) {
      Picture picture(control.width, control.height, scale);
      control.draw(picture, palette);
      drawn = rep(picture);
    }
    set_name(image(drawn), [NSString stringWithUTF8String:control.name.data()]);
    last = &control;
  }
  set_name(image(rep(program_picture(64))), @"GNUstep");  // what a program without an icon of its own has
}

NSImage *alert_image(NSAlertStyle style) {
  AlertKind const kind = style == NSCriticalAlertStyle        ? AlertKind::stop
                         : style == NSInformationalAlertStyle ? AlertKind::note
                                                              : AlertKind::warning;
  return image(rep(alert_picture(kind, current_palette(), screen_scale())));
}

}  // namespace fax::theme
