// One panel of an extension, seen from the dialog: every call is fenced, and what the panel leaves out or throws is
// replaced by the answer that keeps the dialog working.
#pragma once
#include <PrintCore/PDEPluginInterface.h>

#include <vector>

#include "host/core/summary.h"

@class HostPanel;

@protocol HostPanelOwner
// The panel threw; what is a sentence for the user.
- (void)panel:(HostPanel *)panel didRaise:(NSString *)what;
@end

@interface HostPanel : NSObject {
  id _panel;
  id<HostPanelOwner> _owner;
  NSView *_view;
  NSString *_name;
  BOOL _viewAsked;
}
// owner is not retained.
- (id)initWithPanel:(id)panel owner:(id<HostPanelOwner>)owner;
- (void)detach;
// Never empty: a panel without a name is called "Extension".
- (NSString *)name;
// Asked for once; nil when the panel has none.
- (NSView *)view;
- (NSArray *)supportedKeys;
- (void)willShow;
- (BOOL)shouldHide;
// NO after an exception: a job must not go on without the panel's say.
- (BOOL)shouldPrint;
// Has the dialog to show help of its own?
- (BOOL)shouldShowHelp;
- (void)optionDidChange:(NSString *)keyword choice:(NSString *)choice;
// message, which may be NULL, becomes nil or the panel's own words on a NO.
- (BOOL)restore:(NSString **)message;
- (BOOL)save:(NSString **)message;
- (std::vector<fax::host::SummaryRow>)summary;
@end
