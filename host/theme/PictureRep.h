// A picture of the theme as the toolkit draws it.
#pragma once
#import <AppKit/AppKit.h>

#include "host/theme/picture.h"

// Drawn from a copy in the display server, which is made at the first drawing and at each one of another scale. The toolkit
// itself would make that copy anew, in a window of its own, for every drawing of a bitmap: there would be a dozen windows
// for each drawing of a dialog with a few arrows.
@interface PictureRep : NSBitmapImageRep {
  NSCachedImageRep *_copy;  // as large as the picture is in pixels of the screen
  NSInteger _state;         // the graphics state that draws it
}
- (id)initWithPicture:(fax::theme::Picture const &)picture;
@end
