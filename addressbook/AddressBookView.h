// The content view of the address-book dialog.
#pragma once
#import "view/BasicPdeView.h"

@interface AddressBookView : BasicPdeView {
  IBOutlet NSTabView *addressSourceTabView;  // item 0: an address-book file, item 1: the printer
  IBOutlet NSTableView *pcTable;
  IBOutlet NSTableView *deviceTable;
  IBOutlet NSTableView *destinationTable;
  IBOutlet NSButton *addPCButton;
  IBOutlet NSButton *addDeviceButton;
  IBOutlet NSButton *removeButton;
}

// Translates the window's title from the default string table alone and every control below this view.
- (void)initializeControls;
// An index that no tab has changes nothing.
- (void)selectTab:(int)index;
- (int)selectedTabIndex;
@end
