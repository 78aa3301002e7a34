#import "host/theme/PictureRep.h"

#include <cmath>
#include <cstring>

@interface PictureRep ()
- (void)keepCopy:(NSSize)pixels;
- (void)dropCopy;
@end

@implementation PictureRep

- (id)initWithPicture:(fax::theme::Picture const &)picture {
  if (!(self = [super initWithBitmapDataPlanes:nullptr
                                    pixelsWide:picture.columns()
                                    pixelsHigh:picture.rows()
                                 bitsPerSample:8
                               samplesPerPixel:4
                                      hasAlpha:YES
                                      isPlanar:NO
                                colorSpaceName:NSCalibratedRGBColorSpace
                                   bytesPerRow:picture.columns() * 4
                                  bitsPerPixel:32]))
    return nil;
  std::memcpy([self bitmapData], picture.pixels().data(), picture.pixels().size());
  [self setSize:NSMakeSize(picture.width(), picture.height())];
  return self;
}

- (id)copyWithZone:(NSZone *)zone {
  PictureRep *const other = [super copyWithZone:zone];
  other->_copy = nil;
  return other;
}

- (void)dealloc {
  [self dropCopy];
  [super dealloc];
}

- (void)dropCopy {
  [_copy release];
  _copy = nil;
}

- (void)keepCopy:(NSSize)pixels {
  [self dropCopy];
  _copy = [[NSCachedImageRep alloc] initWithSize:pixels
                                           depth:[[NSScreen mainScreen] depth]
                                        separate:YES
                                           alpha:YES];
  NSView *const view = [[_copy window] contentView];
  [view lockFocus];
  NSGraphicsContext *const context = [NSGraphicsContext currentContext];
  [context DPScompositerect:0:0:pixels.width:pixels.height:NSCompositeClear];
  _state = [context GSDefineGState];
  [self drawInRect:NSMakeRect(0, 0, pixels.width, pixels.height)];
  [view unlockFocus];
}

// What the toolkit's NSImageRep draws every picture by, where the display server can copy.
- (void)nativeDrawInRect:(NSRect)to
                fromRect:(NSRect)from
               operation:(NSCompositingOperation)operation
                fraction:(CGFloat)fraction {
  NSGraphicsContext *const context = [NSGraphicsContext currentContext];
  NSAffineTransform *const before = [context GSCurrentCTM];
  NSSize const scaled = [before transformSize:_size];
  NSSize const pixels = NSMakeSize(std::ceil(std::abs(scaled.width)), std::ceil(std::abs(scaled.height)));
  if (!_copy || !NSEqualSizes([_copy size], pixels)) [self keepCopy:pixels];
  CGFloat const across = pixels.width / _size.width, down = pixels.height / _size.height;
  NSRect const part = NSMakeRect(NSMinX(from) * across, NSMinY(from) * down, NSWidth(from) * across, NSHeight(from) * down);
  NSAffineTransform *const change = [NSAffineTransform transform];
  [change translateXBy:NSMinX(to) yBy:NSMinY(to)];
  [change scaleXBy:NSWidth(to) / NSWidth(part) yBy:NSHeight(to) / NSHeight(part)];
  [change concat];
  [context GSdraw:_state toPoint:NSZeroPoint fromRect:part operation:operation fraction:fraction];
  [context GSSetCTM:before];
}

@end
