// The fax panel: its settings, their persistence, the gate that opens the fax dialog at Print, the launch of the address
// book editor, and the printer's network address.
#pragma once
#import "plugin/BasicPdeInterface.h"

@class DirectFaxPdeView;
@class FaxSettingController;
@class InputStringChecker;

@interface DirectFaxPdeInterface : BasicPdeInterface {
  IBOutlet DirectFaxPdeView *directFaxView;
  IBOutlet FaxSettingController *detailedFaxSettingContoller;
  IBOutlet NSTextField *senderNameTextField;
  IBOutlet NSButton *addressBookButton;
  NSMutableArray *ppdFeatures;
  InputStringChecker *senderNameFieldFormatter;
  NSString *addressBookEditorPath;
  NSString *printerAddress;  // numeric; "" for USB; nil while unknown
  NSString *senderName;
  NSMutableArray *mainPanelTopLevelObjs;
  NSMutableArray *faxSettingTopLevelObjs;
}

@property(retain) NSString *senderName;

// Sets the printer's address now, or starts to look it up by Bonjour (5 seconds at most).
- (void)resolveTargetDevice;
- (void)setDefaultValue;
// Shows the current choices and the sender's name, and enables what they allow.
- (void)updateUI;
- (IBAction)uiValueDidChange:(id)sender;
- (IBAction)setDefaults:(id)sender;
- (IBAction)launchAddressBook:(id)sender;
- (void)netServiceDidResolveAddress:(NSNetService *)service;
- (void)netService:(NSNetService *)service didNotResolve:(NSDictionary *)error;
@end
