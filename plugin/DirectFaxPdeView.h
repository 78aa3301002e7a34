// The view of the fax panel: four PPD options, the sender's name, and two buttons.
#pragma once
#import "view/BasicPdeView.h"

@interface DirectFaxPdeView : BasicPdeView {
  IBOutlet NSTextField *imageQualityTitle;
  IBOutlet NSPopUpButton *imageQualityPopup;
  IBOutlet NSTextField *reportOptionTitle;
  IBOutlet NSPopUpButton *reportOptionPopup;
  IBOutlet NSBox *coverSettingGroup;
  IBOutlet NSTextField *coverPageTitle;
  IBOutlet NSPopUpButton *coverPagePopup;
  IBOutlet NSTextField *senderModeTitle;
  IBOutlet NSPopUpButton *senderModePopup;
  IBOutlet NSTextField *senderNameTitle;
  IBOutlet NSTextField *senderNameTextEdit;
  IBOutlet NSButton *addressBookButton;
  IBOutlet NSButton *defaultsButton;
}

// Binds the tagged controls to their PPD options and translates the others.
- (void)initializeControls;
@end
