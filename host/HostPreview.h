// The side of the print dialog that shows what will be sent: the pages, which of them, and the documents they come
// from. Documents are read and drawn on another thread, by another program; the window never waits for it.
#pragma once
#import <AppKit/AppKit.h>

#include <optional>

#include "host/core/print_plan.h"
#include "host/dialog_request.h"

#import "host/HostAlerts.h"
#import "host/HostDialogWindow.h"
#import "host/HostDrops.h"
#import "host/HostPageView.h"

@protocol HostPreviewOwner
// Documents, their pages or the range are others now, as far as the user sees.
- (void)previewDidChange;
@end

@interface HostPreview : NSObject <HostPageViewOwner, HostDropsOwner> {
  struct HostPreviewState *_state;
  HostDialogWindow *_window;
  id<HostAlerting> _alerts;
  id<HostPreviewOwner> _owner;
  NSFileHandle *_ended;  // readable when the work under way is over
  HostDrops *_drops;     // on the whole window
  HostPageView *pageView;
  NSButton *previousPageButton;
  NSButton *nextPageButton;
  NSTextField *pageLabel;
  NSPopUpButton *rangePopUp;
  NSTextField *rangeField;
  NSPopUpButton *documentPopUp;
  NSButton *removeDocumentButton;
  NSButton *addDocumentButton;
}
// Puts itself into the window, which is retained as alerts is; owner is not.
- (id)initWithRequest:(fax::host::DialogRequest const &)request
               window:(HostDialogWindow *)window
               alerts:(id<HostAlerting>)alerts
                owner:(id<HostPreviewOwner>)owner;
// Begins to read the documents, and to take those that are dropped on the window. To be called when the dialog is on the
// screen.
- (void)start;
// Ends all work and forgets its owner.
- (void)stop;

// What documents that are no PDF are laid out for: they are read again when it is another layout.
- (void)useLayout:(fax::host::PageLayout const &)layout;

// Adds documents behind the others. A file that cannot be read is told, and leaves nothing behind.
- (void)addPaths:(NSArray *)paths;

// Titles of the documents, as a job's title.
- (NSString *)title;
// "3", "2 of 3 (1,3)", "" while it is not known.
- (NSString *)pagesSummary;

// What goes out: what was previewed. Waits for it behind a window that says so. Empty when there is nothing to send: the
// user cancelled, the range is wrong, or the documents cannot be put together; the user was told.
- (std::optional<fax::host::Document>)documentToPrint;
@end
