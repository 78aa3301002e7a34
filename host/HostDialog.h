// The print dialog: one window, the extension's panels in it, and what Print does.
#pragma once
#import <AppKit/AppKit.h>

#include <filesystem>
#include <memory>
#include <vector>

#include "host/core/command_line.h"
#include "host/core/document.h"
#include "host/core/ppd_file.h"
#include "host/core/queues.h"
#include "host/core/server.h"

#import "host/HostAlerts.h"
#import "host/HostCallback.h"
#import "host/HostFeatures.h"
#import "host/HostHelpWindow.h"
#import "host/HostPanel.h"
#import "host/HostSummary.h"

namespace fax::host {

// What the dialog starts from.
struct DialogRequest {
  Server server;
  std::vector<Queue> queues;
  Queue queue;                   // the one to show first
  std::shared_ptr<PpdFile> ppd;  // of that queue, marked; empty when it has none
  Document document;
  CommandLine command_line;
  std::filesystem::path application;  // the application wrapper
};

}  // namespace fax::host

@class HostDialog;

@protocol HostDialogOwner
// The dialog is over; see -exitCode.
- (void)dialogDidFinish:(HostDialog *)dialog;
@end

@interface HostDialog : NSObject <HostCallbackOwner, HostPanelOwner, HostFeaturesOwner> {
  struct HostDialogState *_state;
  id<HostDialogOwner> _owner;
  id<HostAlerting> _alerts;
  NSWindow *window;
  NSTextField *printerLabel;
  NSPopUpButton *printerPopUp;
  NSTextField *destinationLabel;
  NSPopUpButton *destinationPopUp;
  NSTextField *copiesLabel;
  NSTextField *copiesField;
  NSStepper *copiesStepper;
  NSTextField *panelLabel;
  NSPopUpButton *panelPopUp;
  NSBox *panelArea;
  NSTextField *statusLine;
  NSButton *helpButton;
  NSButton *cancelButton;
  NSButton *printButton;
  NSMutableDictionary *_extensions;
  NSMutableArray *_panels;
  HostCallback *_callback;
  HostFeatures *_features;
  HostSummary *_summary;
  HostHelpWindow *_help;
}
// owner is not retained, alerts is. Makes the window, does not show it.
- (id)initWithRequest:(fax::host::DialogRequest const &)request
                owner:(id<HostDialogOwner>)owner
               alerts:(id<HostAlerting>)alerts;
- (NSWindow *)window;
// Shows and draws the window, and the first panel in it.
- (void)show;
// What the user does, by name.
- (void)choosePrinter:(id)sender;
- (void)chooseDestination:(id)sender;
- (void)choosePanel:(id)sender;
- (void)help:(id)sender;
- (void)cancel:(id)sender;
- (void)print:(id)sender;
// Meaningful once the dialog is over.
- (fax::host::ExitCode)exitCode;
- (NSString *)status;
@end
