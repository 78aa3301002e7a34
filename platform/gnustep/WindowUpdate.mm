// Windows are told to update themselves after each event, in modal windows too, so that whoever shows the state of
// others (NSWindowDidUpdateNotification) follows what the event changed. The toolkit never tells them by itself.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<void(NSEvent *)> send_event{"NSApplication", "sendEvent:", [](id self, SEL command, NSEvent *event) {
                                          NSEventType const kind = [event type];
                                          send_event(self, command, event);
                                          if (kind != NSMouseMoved && kind != NSPeriodic) [self updateWindows];
                                        }};

}  // namespace
