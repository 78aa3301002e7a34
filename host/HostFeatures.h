// The "Printer Features" panel: every PPD option that no extension's panel has taken, a pop-up each.
#pragma once
#import <AppKit/AppKit.h>

#include <memory>
#include <set>
#include <string>

#include "host/core/ppd_file.h"

@protocol HostFeaturesOwner
// The user marked a choice.
- (void)featureDidChange:(NSString *)keyword choice:(NSString *)choice;
// The user's choice was refused; the pop-up shows the old one again.
- (void)featureRefused:(NSString *)keyword reason:(NSString *)reason;
@end

@interface HostFeatures : NSObject {
  NSScrollView *_view;
  std::shared_ptr<fax::host::PpdFile> *_ppd;
  NSMutableArray *_popUps;
  NSMutableArray *_keywords;
  id<HostFeaturesOwner> _owner;
}
// owner is not retained.
- (id)initWithOwner:(id<HostFeaturesOwner>)owner;
- (NSView *)view;
// Builds the rows anew. ppd may be empty.
- (void)showPPD:(std::shared_ptr<fax::host::PpdFile> const &)ppd except:(std::set<std::string> const &)taken;
// Shows what is marked now.
- (void)refresh;
@end
