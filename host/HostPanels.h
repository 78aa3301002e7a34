// What the pop-up "Options" lists: the extension's panels, then Printer Features and Summary. Shows one of them, asks
// each what has to be asked when, and carries changes of PPD options between them.
#pragma once
#import <AppKit/AppKit.h>

#include <memory>

#include "host/core/ppd_file.h"
#include "host/core/summary.h"

#import "host/HostCallback.h"
#import "host/HostDialogWindow.h"
#import "host/HostFeatures.h"
#import "host/HostNews.h"
#import "host/HostPanel.h"
#import "host/HostSummary.h"

@protocol HostPanelsOwner
// The summary's first section, which is the dialog's own.
- (fax::host::SummarySection)dialogSummary;
@end

@interface HostPanels : NSObject <HostCallbackOwner, HostPanelOwner, HostFeaturesOwner> {
  HostDialogWindow *_window;
  HostNews *_news;
  id<HostPanelsOwner> _owner;
  HostCallback *_callback;
  NSMutableArray *_panels;
  HostFeatures *_features;
  HostSummary *_summary;
  NSInteger _shown;  // -1: none
  BOOL _restoreDue;
}
// window and news are retained, owner is not.
- (id)initWithWindow:(HostDialogWindow *)window news:(HostNews *)news owner:(id<HostPanelsOwner>)owner;
// Ends the panels, their views and what the callback still lets through.
- (void)drop;
// Takes an extension's panels (HostPanel) and what they ask; callback is nil when there are none. Fills the pop-up and
// chooses its first item, or Printer Features.
- (void)usePanels:(NSArray *)panels
         callback:(HostCallback *)callback
              ppd:(std::shared_ptr<fax::host::PpdFile> const &)ppd
    featuresFirst:(BOOL)featuresFirst;
// Shows what the pop-up says, without asking the panel before it.
- (void)showChosen;
// Shows a sentence in the place of a panel, and no item.
- (void)showNotice:(NSString *)text;
// The user chose an item of the pop-up; it goes back when the panel shown has to stay.
- (void)userDidChoose;
// Asks the panel shown whether it may go, and keeps what was typed into it. NO leaves everything as it is.
- (BOOL)leave;
// NO when a panel refuses what is typed into it; that panel is shown, and the status line says why.
- (BOOL)saveAll;
// Asks each in turn; NO at the first that refuses.
- (BOOL)letPrint;
// The panel shown; nil for the dialog's own.
- (HostPanel *)shownPanel;
- (BOOL)hasPanels;
- (void)refreshSummary;
// After a refused change: has every panel read its settings anew.
- (void)restoreIfDue;
@end
