#import "host/HostPageView.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

#import "host/controls.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

static CGFloat const kBorder = 4;  // between the view's edge and the page
static CGFloat const kTextRow = 18;

@implementation HostPageView

- (id)initWithOwner:(id<HostPageViewOwner>)owner {
  if (!(self = [super initWithFrame:NSMakeRect(0, 0, 100, 100)])) return nil;
  _owner = owner;
  _text = @"";
  return self;
}

- (void)dealloc {
  [_picture release];
  [_text release];
  [super dealloc];
}

- (void)forgetOwner {
  _owner = nil;
}

- (void)showPicture:(PagePicture const &)picture {
  [_picture release];
  _picture = [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:NULL
                                                     pixelsWide:picture.width
                                                     pixelsHigh:picture.height
                                                  bitsPerSample:8
                                                samplesPerPixel:3
                                                       hasAlpha:NO
                                                       isPlanar:NO
                                                 colorSpaceName:NSDeviceRGBColorSpace
                                                    bytesPerRow:picture.width * 3
                                                   bitsPerPixel:24];
  std::memcpy([_picture bitmapData], picture.pixels.data(), picture.pixels.size());
  [self setNeedsDisplay:YES];
}

- (void)setLeft:(BOOL)left {
  if (left == _left) return;
  _left = left;
  [self setNeedsDisplay:YES];
}

- (void)showText:(NSString *)text {
  [_picture release];
  _picture = nil;
  [_text autorelease];
  _text = [text copy];
  [self setNeedsDisplay:YES];
}

- (BOOL)showsPicture {
  return _picture != nil;
}

// In points.
- (NSSize)space {
  NSSize const size = [self bounds].size;
  return NSMakeSize(std::max<CGFloat>(1, size.width - 2 * kBorder), std::max<CGFloat>(1, size.height - 2 * kBorder));
}

- (CGFloat)pixelsInPoint {
  NSWindow *const window = [self window];
  return window ? [window userSpaceScaleFactor] : 1;
}

- (NSSize)room {
  NSSize const space = [self space];
  CGFloat const scale = [self pixelsInPoint];
  return NSMakeSize(std::floor(space.width * scale), std::floor(space.height * scale));
}

// Drawing.

- (NSRect)page {
  NSSize const space = [self space];
  CGFloat const wide = _picture ? [_picture pixelsWide] : space.width;
  CGFloat const high = _picture ? [_picture pixelsHigh] : space.height;
  CGFloat const scale = std::min(1 / [self pixelsInPoint], std::min(space.width / wide, space.height / high));
  NSSize const size = NSMakeSize(wide * scale, high * scale);
  return NSMakeRect(kBorder + std::floor((space.width - size.width) / 2),
                    kBorder + std::floor((space.height - size.height) / 2), size.width, size.height);
}

- (void)drawText:(NSString *)text color:(NSColor *)color {
  NSMutableParagraphStyle *style = [[NSMutableParagraphStyle new] autorelease];
  [style setAlignment:NSCenterTextAlignment];
  NSDictionary *const look = [NSDictionary
      dictionaryWithObjectsAndKeys:[NSFont systemFontOfSize:0], NSFontAttributeName, color,
                                   NSForegroundColorAttributeName, style, NSParagraphStyleAttributeName, nil];
  NSRect const room = NSInsetRect([self bounds], kGap, kGap);
  NSSize const needed = [text boundingRectWithSize:room.size options:NSStringDrawingUsesLineFragmentOrigin
                                          attributes:look].size;
  CGFloat const height = std::min(room.size.height, std::max(needed.height, kTextRow));
  [text drawInRect:NSMakeRect(room.origin.x, std::floor(NSMidY(room) - height / 2), room.size.width, height)
      withAttributes:look];
}

- (void)drawRect:(NSRect)dirty {
  [[NSColor controlShadowColor] set];
  NSFrameRect([self bounds]);
  if (_picture) {
    NSRect const page = [self page];
    [_picture drawInRect:page];
    if (_left) {
      [[NSColor colorWithCalibratedWhite:1 alpha:0.75] set];
      NSRectFillUsingOperation(page, NSCompositeSourceOver);
      //: On the picture of a page that is left out.
      [self drawText:ns(tr("Not sent")) color:[NSColor blackColor]];
    }
    [[NSColor controlShadowColor] set];
    NSFrameRect(NSInsetRect(page, -1, -1));
  } else {
    [self drawText:_text color:[NSColor controlTextColor]];
  }
  if ([[self window] firstResponder] == self && [[self window] isKeyWindow]) {
    [[NSColor keyboardFocusIndicatorColor] set];
    NSFrameRectWithWidth([self bounds], 2);
  }
}

// Keys and the mouse.

- (BOOL)acceptsFirstResponder {
  return YES;
}

- (BOOL)becomeFirstResponder {
  [self setNeedsDisplay:YES];
  return YES;
}

- (BOOL)resignFirstResponder {
  [self setNeedsDisplay:YES];
  return YES;
}

- (void)mouseDown:(NSEvent *)event {
  [[self window] makeFirstResponder:self];
}

- (void)scrollWheel:(NSEvent *)event {
  if ([event deltaY] != 0) [_owner turnBy:[event deltaY] > 0 ? -1 : 1];
}

- (void)keyDown:(NSEvent *)event {
  NSString *const keys = [event charactersIgnoringModifiers];
  switch ([keys length] ? [keys characterAtIndex:0] : 0) {
    case NSPageDownFunctionKey:
    case NSDownArrowFunctionKey:
    case NSRightArrowFunctionKey: return [_owner turnBy:1];
    case NSPageUpFunctionKey:
    case NSUpArrowFunctionKey:
    case NSLeftArrowFunctionKey: return [_owner turnBy:-1];
    case NSHomeFunctionKey: return [_owner turnBy:-INT_MAX / 2];
    case NSEndFunctionKey: return [_owner turnBy:INT_MAX / 2];
    default: [super keyDown:event];
  }
}

@end
