// The address-book dialog: destinations chosen from an address-book file (tab 0) or from the printer's own address book
// (tab 1).
//
// Owned by the nib "FaxSetting". It edits the fax dialog's destination list in place; Cancel puts back what the list held
// at opening. Rows of both tabs are address entries (AddressRows.h).
#pragma once
#import <AppKit/AppKit.h>

#include <cups/ppd.h>

#import "support/ClassNames.h"

@interface AddressBookController : NSObject {
  IBOutlet NSWindow *addressBookSettingPanel;
  IBOutlet NSArrayController *addressArrayController;  // the fax dialog's destinations
  IBOutlet NSArrayController *addressFileList;         // the fax dialog's files; the first selected one is read
  IBOutlet NSArrayController *pcAddressList;
  IBOutlet NSTableView *pcAddressTableView;
  IBOutlet NSArrayController *deviceAddressList;
  IBOutlet NSTableView *deviceAddressTableView;
  IBOutlet NSWindow *userPropertyPanel;
  IBOutlet NSWindow *groupPropertyPanel;
  IBOutlet NSMutableDictionary *userPropertyDictionary;
  IBOutlet NSMutableDictionary *groupPropertyDictionary;
  IBOutlet NSArrayController *groupMemberList;

  NSBundle *bundle;
  ppd_file_t *ppd;  // the host's; may be NULL
  NSString *printerAddress;
  NSArray *oldAddresses;  // the destinations at opening
  NSArray *originalPCAddressList;  // every entry that was read, in the order of the list
  NSArray *originalDeviceAddressList;
  NSString *pcAddressSearchField;
  NSString *deviceAddressSearchField;

  // These tell observers of a change; what they are is computed whenever it is asked for.
  BOOL canAddPCAddressData;
  BOOL canShowPCAddressProperty;
  BOOL canAddDeviceAddressData;
  BOOL canShowDeviceAddressProperty;
  BOOL canRemoveDestinationAddress;

  NSString *password;
}

- (void)setBundle:(NSBundle *)newBundle;
- (void)setPPD:(ppd_file_t *)file;
// A numeric address, "" for a USB printer, nil while unknown.
- (void)setIPAddress:(NSString *)address;
// The printer's password in plain text; nil for none.
- (void)setPassword:(NSString *)text;
// Reads that tab's address book and runs the dialog modally. Does nothing without a window.
- (void)createDialogWithTabSelection:(int)index;

- (BOOL)canAddPCAddressData;
- (BOOL)canShowPCAddressProperty;
- (BOOL)canAddDeviceAddressData;
- (BOOL)canShowDeviceAddressProperty;
- (BOOL)canRemoveDestinationAddress;

// Read an address book anew. A record that lacks what it must have ends the reading with a line in the log, and the
// entries that were read before stay the ones that are searched.
- (void)initPCAdressBookTab;
- (void)initDeviceAddressTab;
// Show the entries whose name holds the sender's text.
- (IBAction)sortPCAddressData:(id)sender;
- (IBAction)sortDeviceAddressData:(id)sender;

// The group's members among the entries that the list shows, in its order; a line in the log when some are not there.
- (NSArray *)getAddressListFrom:(id)group ofAddressBook:(NSArrayController *)list;

// Run the property sheet of the first selected entry modally.
- (IBAction)showPCAddressProperty:(id)sender;
- (IBAction)showDevicePCAddressProperty:(id)sender;
- (void)setUserPropertyInfo:(id)entry;
- (void)setGroupPropertyInfo:(id)group ofAddressBook:(NSArrayController *)list;
- (IBAction)closeUserProperty:(id)sender;
- (IBAction)closeGroupProperty:(id)sender;

// Add the selected entries, groups by their members, to the destinations: all of them or, when there is no room, none.
- (IBAction)addSelectedPCAddressData:(id)sender;
- (IBAction)addSelectedDeviceAddressData:(id)sender;
- (void)addAddressesFromAddressBook:(NSArrayController *)list;
- (void)addDestinationAddress:(id)entry;
- (BOOL)existAddressInDestination:(id)entry;
// Asks the user.
- (BOOL)checkIfAllowDuplication;

- (IBAction)deleteAddressInfo:(id)sender;
- (IBAction)saveAddressSetting:(id)sender;
- (IBAction)cancelAddressSetting:(id)sender;
- (IBAction)showHelpBook:(id)sender;

- (BOOL)tabView:(NSTabView *)tabs shouldSelectTabViewItem:(NSTabViewItem *)item;
- (void)tabView:(NSTabView *)tabs willSelectTabViewItem:(NSTabViewItem *)item;
@end
