// The print dialog: one window, the extension's panels in it, and what Print does.
#pragma once
#import <AppKit/AppKit.h>

#include "host/core/failure.h"
#include "host/core/job_watch.h"
#include "host/dialog_request.h"

#import "host/HostAlerts.h"
#import "host/HostDelivery.h"
#import "host/HostDialogWindow.h"
#import "host/HostHelpWindow.h"
#import "host/HostNews.h"
#import "host/HostOverlay.h"
#import "host/HostPanels.h"
#import "host/HostPreview.h"
#import "host/HostPrinterFinder.h"

@class HostDialog;

@protocol HostDialogOwner
// The dialog is over; see -exitCode.
- (void)dialogDidFinish:(HostDialog *)dialog;
@end

@interface HostDialog : NSObject <HostDialogActions, HostNewsOwner, HostPanelsOwner, HostPreviewOwner, HostPrinterFinderOwner> {
  struct HostDialogState *_state;
  id<HostDialogOwner> _owner;
  id<HostAlerting> _alerts;
  HostDialogWindow *_window;
  HostNews *_news;
  HostPanels *_panels;
  HostPreview *_preview;
  HostPrinterFinder *_finder;
  HostDelivery *_delivery;
  HostOverlay *_overlay;
  HostHelpWindow *_help;
  NSMutableDictionary *_extensions;  // by path
}
// owner is not retained, alerts is. Makes the window, does not show it.
- (id)initWithRequest:(fax::host::DialogRequest const &)request
                owner:(id<HostDialogOwner>)owner
               alerts:(id<HostAlerting>)alerts;
- (NSWindow *)window;
// Shows and draws the window, and the first panel in it, or that the printer is looked for.
- (void)show;
// Whether the panels of the printer chosen are there: Print does nothing before.
- (BOOL)isReady;
// Meaningful once the dialog is over.
- (fax::host::ExitCode)exitCode;
// The job that a print queue was given; NULL when there is none. Lives as long as the dialog.
- (fax::host::SubmittedJob const *)submittedJob;
- (NSString *)status;
// What is to be remembered for the next time: of the printer and its options after a job went out, else only the window's
// size. Never a print setting, and so neither recipients nor a password.
- (fax::host::Memory)memory;
@end
