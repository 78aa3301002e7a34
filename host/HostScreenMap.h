// What is on the screen, read from the toolkit: for the map file, and for naming a field by its label.
#pragma once
#import <AppKit/AppKit.h>

#include <vector>

#include "host/ui_map.h"

namespace fax::host {

// Every visible window of the application, from the front to the back.
std::vector<MapWindow> windows_on_screen();

}  // namespace fax::host

// Text fields that can be typed into, inside a view, in reading order.
NSArray *HostEditableFields(NSView *view);
// Text of the label that names a control of a view, without a colon; "" when there is none.
NSString *HostLabelOf(NSView *control, NSView *view);

// Writes the map about ten times a second when something changed, whatever mode the run loop is in.
@interface HostScreenMap : NSObject {
  fax::host::MapFile *_file;
  NSTimer *_timer;
  BOOL _complained;
}
- (id)initWithPath:(NSString *)path;
- (void)start;
- (void)stop;
@end
