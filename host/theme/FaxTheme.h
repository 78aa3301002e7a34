// The flat look of our programs, drawn in code: no theme bundle, no picture files.
#pragma once
#import <AppKit/AppKit.h>
#import <GNUstepGUI/GSTheme.h>

#include "host/theme/palette.h"
#include "host/theme/preference.h"

namespace fax::theme {

// In the place of [NSApplication sharedApplication], which it sends: the pictures that the toolkit looks for while it
// starts have to be there before, and each one that it does not find costs a search of the disk. Once, on the main
// thread, inside an autorelease pool; the scheme is decided here for the life of the process.
void start_application(Choice choice);

}  // namespace fax::theme

@interface FaxTheme : GSTheme {
  NSColorList *_systemColours;
}
@end
