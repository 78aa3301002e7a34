// Keeps the modal windows that come up above the dialog above it, and times the first drawing of those that an
// extension opens at Print.
#pragma once
#import <AppKit/AppKit.h>

#include <chrono>
#include <optional>

#import "host/HostHelpWindow.h"

@interface HostOverlay : NSObject {
  NSWindow *_base;
  HostHelpWindow *_help;
  NSWindow *_top;    // the modal window that came up last; only compared, never sent anything unless visible
  NSWindow *_under;  // the window that it was put above
  BOOL _timing;
  struct HostOverlayTimes *_times;
}
// base is the dialog's window; the help window may lie where the user puts it. Neither is retained. timing: print how
// long it takes from -printPressed to a drawn window.
- (id)initAbove:(NSWindow *)base help:(HostHelpWindow *)help timing:(BOOL)timing;
- (void)printPressed;
// Between these two the windows that come up are answers to the question shouldPrint.
- (void)beginGate;
- (void)endGate;
@end
