// What becomes of a job after Print: follows it in the print service until it has ended, and lets the user cancel it or
// send it again. Closing the window leaves the job alone.
#pragma once
#import <AppKit/AppKit.h>

#include "host/core/job_watch.h"

@class HostStatusWindow;

@protocol HostStatusWindowOwner
// The user closed the window.
- (void)statusWindowDidClose:(HostStatusWindow *)window;
@end

@interface HostStatusWindow : NSObject {
  struct HostStatusWindowState *_state;
  id<HostStatusWindowOwner> _owner;
  NSWindow *_window;
  CGFloat _inner;  // width between the margins
  NSTextField *_title;
  NSTextField *_headline;
  NSTextField *_details;
  NSButton *_cancelButton;
  NSButton *_retryButton;
  NSButton *_closeButton;
  NSFileHandle *_news;
}
// owner is not retained. The job is followed from now on. Throws as JobWatch does.
- (id)initWithServer:(fax::host::Server const &)server
                 job:(fax::host::SubmittedJob const &)job
               owner:(id<HostStatusWindowOwner>)owner;
- (NSWindow *)window;
- (void)show;
@end
