// The fax dialog: the destination list, the password, the time, and the decision to send.
//
// Saves destinations into address-book files and opens the address-book dialog, which edits the same list.
//
// Owned by the nib "FaxSetting" and reused for every job of a panel. Its keys (addressName, addressPhoneNumber,
// password, delayedPrint, delayedTime and the enabling states) are read and written by the nib's bindings.
#pragma once
#import <AppKit/AppKit.h>

#include <ApplicationServices/ApplicationServices.h>
#include <cups/ppd.h>

#import "support/ClassNames.h"

@class AddressBookController;
@class InputStringChecker;

@interface FaxSettingController : NSObject {
  IBOutlet NSWindow *faxSettingPanel;
  IBOutlet NSArrayController *addressArrayController;
  IBOutlet NSArrayController *addressFileList;  // dictionaries with "name" and "path"
  IBOutlet AddressBookController *addressBookController;
  IBOutlet NSTextField *addressNameTextField;
  IBOutlet NSTextField *addressPhoneNumberTextField;
  IBOutlet NSTextField *passwordTextField;

  NSBundle *bundle;
  ppd_file_t *ppd;  // the host's; may be NULL
  NSString *printerAddress;
  BOOL sendingStatus;

  NSString *addressName;
  NSString *addressPhoneNumber;
  NSString *password;
  NSNumber *delayedPrint;
  NSDate *delayedTime;

  BOOL canEditAddress;
  BOOL canDeleteAddress;
  BOOL isAddressFileAvailable;
  BOOL canAddToAddressFile;

  InputStringChecker *addressNameFieldFormatter;
  InputStringChecker *addressPhoneNumberFieldFormatter;
  InputStringChecker *passwordFieldFormatter;

  BOOL observesSelection;
}

- (void)setBundle:(NSBundle *)newBundle;
- (void)setPPD:(ppd_file_t *)file;
// A numeric address, "" for a USB printer, nil while unknown.
- (void)setIPAddress:(NSString *)address;
// Resets the fields, but not the destination list, and runs the dialog modally. Does nothing without a window.
- (void)createDialog;
// How the last dialog ended: YES by Start.
- (BOOL)isSending;
// Writes password, time and destinations into the job; see job_settings.h.
- (void)setPrintSettings:(PMPrintSettings)settings;

- (NSDate *)delayedTime;
- (void)setDelayedTime:(NSDate *)time;
- (BOOL)canAddAddress;
- (BOOL)canEditAddress;
- (BOOL)canDeleteAddress;
- (BOOL)isDelayedTime;
- (BOOL)canAddToAddressFile;

- (IBAction)addAddressInfo:(id)sender;
- (IBAction)editAddressInfo:(id)sender;
- (IBAction)deleteAddressInfo:(id)sender;
// Makes the file of the pop-up's selected item the one that is read and written.
- (IBAction)selectAddressBook:(id)sender;
// Saves every selected destination into the selected file, or none of them, and says which.
- (IBAction)addToAddressBook:(id)sender;
// What the file sorts a name by (address_record.h); nil when there is none.
- (NSString *)getIndexKey:(NSString *)name;
// Open the address-book dialog on an address-book file, on the printer's own book.
- (IBAction)lookupAddressBook:(id)sender;
- (IBAction)lookupDeviceData:(id)sender;
- (IBAction)startSending:(id)sender;
- (IBAction)stopSending:(id)sender;
- (IBAction)showHelpBook:(id)sender;
@end
