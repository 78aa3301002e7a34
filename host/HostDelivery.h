// Where the document goes when every panel has said yes: to a queue, into a file, to the desktop's viewer. The user
// sees how far it is, may cancel, and is told of every failure.
#pragma once
#import <AppKit/AppKit.h>

#include "host/core/job.h"
#include "host/dialog_request.h"

#import "host/HostAlerts.h"
#import "host/HostDialogWindow.h"

@interface HostDelivery : NSObject {
  fax::host::DialogRequest const *_request;
  HostDialogWindow *_window;
  id<HostAlerting> _alerts;
}
// request must outlive this object; window and alerts are retained.
- (id)initWithRequest:(fax::host::DialogRequest const *)request
               window:(HostDialogWindow *)window
               alerts:(id<HostAlerting>)alerts;
// The job's number; 0 when the document went nowhere, of which the user was told.
- (int)submitJob:(fax::host::JobRequest const &)job;
// The file that the user is asked for, unless the command line named one; nil when there is none.
- (NSString *)pathOfFile;
- (BOOL)writeFile:(NSString *)path;
- (BOOL)openPreview;
@end
