// The flat look of our programs, drawn in code: no theme bundle, no picture files.
#pragma once
#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

#include "host/theme/palette.h"
#include "host/theme/preference.h"
#include "host/theme/scale.h"

namespace fax::theme {

// In the place of [NSApplication sharedApplication], which it sends: the pictures that the toolkit looks for while it
// starts have to be there before, and each one that it does not find costs a search of the disk. Once, on the main
// thread, inside an autorelease pool; scheme and size are decided here for the life of the process. scale: how many pixels a
// point is, 1 to kLargestScale; 0 for as many as the desktop has it.
void start_application(Choice choice, double scale = 0);

}  // namespace fax::theme

@interface FaxTheme : GSTheme {
  NSColorList *_systemColours;
}
@end
