// NSTabView from Xcode's documents has a selected tab: the one marked, else the first. Selecting the tab that is
// selected tells the delegate nothing, as on macOS.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<id(NSCoder *)> init_with_coder{
    "NSTabView", "initWithCoder:", [](id self, SEL command, NSCoder *coder) -> id {
      NSTabView *view = init_with_coder(self, command, coder);
      if (fax::reads_xcode_document(coder) && [view selectedTabViewItem] == nil && [view numberOfTabViewItems] > 0) {
        [view selectTabViewItemAtIndex:0];
      }
      return view;
    }};

fax::Repair<void(NSTabViewItem *)> select_item{
    "NSTabView", "selectTabViewItem:", [](id self, SEL command, NSTabViewItem *item) {
      NSTabView *view = self;
      if (item == nil || item != [view selectedTabViewItem]) select_item(self, command, item);
    }};

}  // namespace
