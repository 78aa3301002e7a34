// The content view of the fax dialog.
#pragma once
#import "view/BasicPdeView.h"

@interface FaxSettingView : BasicPdeView {
  IBOutlet NSTextField *destNameLabel;
  IBOutlet NSTextField *destPhoneNumberLabel;
  IBOutlet NSTextField *recipientListLabel;
  IBOutlet NSButton *addAddressButton;
  IBOutlet NSButton *editAddressButton;
  IBOutlet NSButton *deleteAddressButton;
  IBOutlet NSButton *addToAddressBookButton;
  IBOutlet NSTextField *addressBookFileLabel;
  IBOutlet NSButton *lookUpAddressBookButton;
  IBOutlet NSButton *lookUpDeviceDataButton;
  IBOutlet NSBox *authorizationGroupBox;
  IBOutlet NSTextField *passwordLabel;
  IBOutlet NSBox *delayedSendGroupBox;
  IBOutlet NSButton *delayedSendCheckbox;
  IBOutlet NSTextField *delayedTimeLabel;
  IBOutlet NSButton *startButton;
  IBOutlet NSButton *stopButton;
  IBOutlet NSTableView *destinationTable;
}

// Translates the window's title from the default string table alone and every control below this view.
- (void)initializeControls;
@end
