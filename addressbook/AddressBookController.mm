#import "addressbook/AddressBookController.h"

#import "addressbook/address_entries.h"
#import "addressbook/AddressBookView.h"
#import "addressbook/AddressInformation.h"
#import "addressbook/AddressListController.h"
#import "addressbook/AddressRows.h"
#include "addressbook/destination_rules.h"
#include "addressbook/device_version.h"
#include "addressbook/library.h"
#import "addressbook/same_text.h"
#include "support/help.h"
#import "view/alert.h"

namespace {

void keep(NSString **slot, NSString *text) {
  [text retain];
  [*slot release];
  *slot = text;
}

void keep_array(NSArray **slot, NSArray *array) {
  [array retain];
  [*slot release];
  *slot = array;
}

// What the list now shows in place of what it held, in its order; nil, with an empty list, when there is no memory for it.
NSArray *show_book(NSArrayController *list, fax::AddressBook &&book) {
  if (![list isKindOfClass:[AddressListController class]]) {
    fax::show_entries(list, [AddressRows entriesOfBook:std::move(book)]);
    return [NSArray arrayWithArray:[list arrangedObjects]];
  }
  NSArray *rows = [AddressRows rowsOfBook:std::move(book)];
  fax::show_entries(list, rows);
  return rows;
}

id first_selected(NSArrayController *list) {
  NSArray *selected = [list selectedObjects];
  return [selected count] > 0 ? [selected objectAtIndex:0] : nil;
}

NSString *text_or_empty(NSString *text) { return text != nil ? text : @""; }

// What the log says about a reading that a record ended; nil when none did.
NSString *complaint(NSString *reader, fax::ReadEnd end) {
  switch (end) {
    case fax::ReadEnd::individual_without_name:
      return [reader stringByAppendingString:@": Individual - Invalid name"];
    case fax::ReadEnd::individual_without_number:
      return [reader stringByAppendingString:@": Individual - Invalid Phone Number"];
    case fax::ReadEnd::group_without_name:
      return [reader stringByAppendingString:@": Group - Invalid name"];
    case fax::ReadEnd::refused:
      return [reader stringByAppendingString:@": Too many entries"];
    case fax::ReadEnd::complete:
      break;
  }
  return nil;
}

}  // namespace

@implementation AddressBookController

- (void)awakeFromNib {
  [addressArrayController retain];
  [pcAddressList retain];
  [deviceAddressList retain];
  NSArray *order = [AddressRows sortDescriptors];
  [pcAddressList setSortDescriptors:order];
  [deviceAddressList setSortDescriptors:order];
  [groupMemberList setSortDescriptors:order];
  keep(&password, nil);
  for (NSArrayController *list : {pcAddressList, deviceAddressList, addressArrayController})
    [list addObserver:self forKeyPath:@"selectedObjects" options:NSKeyValueObservingOptionNew context:NULL];
}

- (void)dealloc {
  [bundle release];
  [printerAddress release];
  [password release];
  for (NSArrayController *list : {pcAddressList, deviceAddressList, addressArrayController}) {
    try {
      [list removeObserver:self forKeyPath:@"selectedObjects"];
    } catch (...) {
      // Not observed: the controller did not come from a nib.
    }
    [list release];
  }
  [oldAddresses release];
  [originalPCAddressList release];
  [originalDeviceAddressList release];
  [pcAddressSearchField release];
  [deviceAddressSearchField release];
  [super dealloc];
}

- (void)announce:(NSString *)key {
  [self setValue:[self valueForKey:key] forKey:key];
}

- (void)observeValueForKeyPath:(NSString *)path
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context {
  (void)path;
  (void)change;
  (void)context;
  if (object == pcAddressList) {
    [self announce:@"canAddPCAddressData"];
    [self announce:@"canShowPCAddressProperty"];
  } else if (object == deviceAddressList) {
    [self announce:@"canAddDeviceAddressData"];
    [self announce:@"canShowDeviceAddressProperty"];
  } else if (object == addressArrayController) {
    [self announce:@"canRemoveDestinationAddress"];
  }
}

- (void)setBundle:(NSBundle *)newBundle {
  [newBundle retain];
  [bundle release];
  bundle = newBundle;
}

- (void)setPPD:(ppd_file_t *)file {
  ppd = file;
}

- (void)setIPAddress:(NSString *)address {
  keep(&printerAddress, address);
}

- (void)setPassword:(NSString *)text {
  keep(&password, text);
}

- (BOOL)canAddPCAddressData {
  return [[pcAddressList selectedObjects] count] > 0;
}

- (BOOL)canShowPCAddressProperty {
  return [[pcAddressList selectedObjects] count] == 1;
}

- (BOOL)canAddDeviceAddressData {
  return [[deviceAddressList selectedObjects] count] > 0;
}

- (BOOL)canShowDeviceAddressProperty {
  return [[deviceAddressList selectedObjects] count] == 1;
}

- (BOOL)canRemoveDestinationAddress {
  return [[addressArrayController selectedObjects] count] > 0;
}

- (AddressBookView *)view {
  return (AddressBookView *)[addressBookSettingPanel contentView];
}

- (void)readTab:(NSInteger)index {
  if (index == 0)
    [self initPCAdressBookTab];
  else
    [self initDeviceAddressTab];
}

- (void)createDialogWithTabSelection:(int)index {
  if (addressBookSettingPanel == nil) return;
  keep_array(&oldAddresses, [NSArray arrayWithArray:[addressArrayController arrangedObjects]]);
  keep_array(&originalPCAddressList, [NSArray array]);
  keep_array(&originalDeviceAddressList, [NSArray array]);

  AddressBookView *view = [self view];
  [view setBundle:bundle];
  [view initializeControls];
  // The tab that is shown already is not told that it is selected, and so reads nothing then.
  if ([view selectedTabIndex] == index) [self readTab:index];
  [view selectTab:index];

  [pcAddressTableView setTarget:self];
  [pcAddressTableView setDoubleAction:@selector(addSelectedPCAddressData:)];
  [deviceAddressTableView setTarget:self];
  [deviceAddressTableView setDoubleAction:@selector(addSelectedDeviceAddressData:)];
  [NSApp runModalForWindow:addressBookSettingPanel];
}

- (BOOL)tabView:(NSTabView *)tabs shouldSelectTabViewItem:(NSTabViewItem *)item {
  (void)tabs;
  (void)item;
  return YES;
}

- (void)tabView:(NSTabView *)tabs willSelectTabViewItem:(NSTabViewItem *)item {
  [self readTab:[tabs indexOfTabViewItem:item]];
}

- (void)closeDialog {
  keep_array(&oldAddresses, nil);
  keep_array(&originalPCAddressList, nil);
  keep_array(&originalDeviceAddressList, nil);
  [addressBookSettingPanel orderOut:self];
  [NSApp stopModal];
}

- (IBAction)saveAddressSetting:(id)sender {
  (void)sender;
  [self closeDialog];
}

- (IBAction)cancelAddressSetting:(id)sender {
  (void)sender;
  NSArray *selected = [NSArray arrayWithArray:[addressArrayController selectedObjects]];
  [addressArrayController removeObjects:[NSArray arrayWithArray:[addressArrayController arrangedObjects]]];
  if (oldAddresses != nil) [addressArrayController addObjects:oldAddresses];
  if ([selected count] > 0) [addressArrayController setSelectedObjects:selected];
  [self closeDialog];
}

- (IBAction)showHelpBook:(id)sender {
  (void)sender;
  CFBundleRef book = CFBundleGetBundleWithIdentifier((CFStringRef)[bundle bundleIdentifier]);
  GotoHelpPage(book, CFSTR("Recipients.htm"), NULL);
}

- (void)initPCAdressBookTab {
  fax::show_entries(pcAddressList, [NSArray array]);
  [self setValue:@"" forKey:@"pcAddressSearchField"];
  if ([[addressFileList arrangedObjects] count] == 0) {
    fax::run_alert(bundle, @"Address Book file is none", nil, {@"OK"});
    return;
  }
  NSString *path = [first_selected(addressFileList) valueForKey:@"path"];
  if (path == nil) return;

  fax::Library &library = fax::Library::shared();
  fax::AddressData const data = library.create_data();
  if (data == nullptr) return;
  NSArray *read = [NSArray array];
  if (library.read_file((CFStringRef)path, data) == fax::kSuccess) {
    fax::AddressBook book;
    fax::ReadEnd const end = fax::read_file_entries(library, data, fax::file_entries_into(book));
    read = show_book(pcAddressList, std::move(book));
    if (NSString *message = complaint(@"initPCAdressBookTab", end)) {
      NSLog(@"%@", message);
      return;
    }
  }
  library.delete_data(data);
  keep_array(&originalPCAddressList, read);
}

- (void)takeDeviceData:(fax::AddressData)data {
  fax::Library &library = fax::Library::shared();
  fax::AddressBook book;
  fax::ReadEnd const end = fax::read_device_entries(library, data, fax::device_entries_into(book));
  NSArray *read = show_book(deviceAddressList, std::move(book));
  if (NSString *message = complaint(@"initDeviceAddressTab", end)) {
    NSLog(@"%@", message);
    return;
  }
  keep_array(&originalDeviceAddressList, read);
  library.delete_data(data);
}

- (fax::Status)readDevice {
  fax::Library &library = fax::Library::shared();
  std::uint32_t const version = fax::device_interface_version(ppd);
  if (fax::Status const status = library.initialize(); status != fax::kSuccess) return status;
  if (printerAddress == nil) {
    NSLog(@"initDeviceAddressTab - Device type cannot be resolved.");
    return fax::kUnavailable;
  }
  library.set_destination_device([printerAddress length] > 0 ? (CFStringRef)printerAddress : NULL, version);
  if (fax::Status const status = library.device_status(); status != fax::kDeviceReady) return status;

  fax::AddressData const data = library.create_data();
  if (data == nullptr) return fax::kUnavailable;
  fax::Status const status =
      password != nil ? library.read_device(data, (CFStringRef)password) : fax::kWrongPassword;
  if (status != fax::kSuccess) {
    library.delete_data(data);
    return status;
  }
  [self takeDeviceData:data];
  return fax::kSuccess;
}

- (void)initDeviceAddressTab {
  fax::show_entries(deviceAddressList, [NSArray array]);
  [self setValue:@"" forKey:@"deviceAddressSearchField"];
  fax::Status const status = [self readDevice];
  if (status == fax::kSuccess) return;
  fax::run_alert(bundle, @"Device Access Failure",
                 status == fax::kWrongPassword ? @"Invalid Password" : @"Failed to retrieve data", {@"OK"});
}

- (IBAction)sortPCAddressData:(id)sender {
  fax::show_entries(pcAddressList, fax::matching_entries(originalPCAddressList, [sender stringValue]));
}

- (IBAction)sortDeviceAddressData:(id)sender {
  fax::show_entries(deviceAddressList, fax::matching_entries(originalDeviceAddressList, [sender stringValue]));
}

- (NSArray *)getAddressListFrom:(id)group ofAddressBook:(NSArrayController *)list {
  BOOL complete = YES;
  NSArray *members = fax::members_of_group(group, list, &complete);
  if (!complete) NSLog(@"Error. Some addresses not found in the address book.");
  return members;
}

- (void)showPropertyOf:(id)entry ofAddressBook:(NSArrayController *)list {
  if (entry == nil) return;
  bool const group = fax::is_group(entry);
  NSWindow *panel = group ? groupPropertyPanel : userPropertyPanel;
  if (panel == nil) return;
  BasicPdeView *view = (BasicPdeView *)[panel contentView];
  [view setBundle:bundle];
  [view localizeAllControls];
  if (group)
    [self setGroupPropertyInfo:entry ofAddressBook:list];
  else
    [self setUserPropertyInfo:entry];
  [NSApp runModalForWindow:panel];
  // The toolkit may end the run at Escape without closing anything.
  [panel orderOut:self];
}

- (IBAction)showPCAddressProperty:(id)sender {
  (void)sender;
  [self showPropertyOf:first_selected(pcAddressList) ofAddressBook:pcAddressList];
}

- (IBAction)showDevicePCAddressProperty:(id)sender {
  (void)sender;
  [self showPropertyOf:first_selected(deviceAddressList) ofAddressBook:deviceAddressList];
}

- (void)setUserPropertyInfo:(id)entry {
  [userPropertyDictionary setValue:[entry valueForKey:@"name"] forKey:@"name"];
  [userPropertyDictionary setValue:[entry valueForKey:@"phoneNumber"] forKey:@"phoneNumber"];
  [userPropertyDictionary setValue:text_or_empty([entry valueForKey:@"company"]) forKey:@"company"];
  [userPropertyDictionary setValue:text_or_empty([entry valueForKey:@"note"]) forKey:@"note"];
}

- (void)setGroupPropertyInfo:(id)group ofAddressBook:(NSArrayController *)list {
  [groupPropertyDictionary setValue:[group valueForKey:@"name"] forKey:@"name"];
  NSMutableArray *members = [NSMutableArray array];
  NSEnumerator *each = [[self getAddressListFrom:group ofAddressBook:list] objectEnumerator];
  while (id entry = [each nextObject])
    [members addObject:[NSMutableDictionary dictionaryWithObjectsAndKeys:[entry valueForKey:@"name"], @"name",
                                                                         [entry valueForKey:@"phoneNumber"],
                                                                         @"phoneNumber", nil]];
  fax::show_entries(groupMemberList, members);
}

- (void)closePanel:(NSWindow *)panel {
  [panel orderOut:self];
  [NSApp stopModal];
}

- (IBAction)closeUserProperty:(id)sender {
  (void)sender;
  [self closePanel:userPropertyPanel];
}

- (IBAction)closeGroupProperty:(id)sender {
  (void)sender;
  [self closePanel:groupPropertyPanel];
}

// A double-click below the rows or on the header adds nothing.
- (void)addFrom:(NSArrayController *)list sender:(id)sender {
  if ([sender respondsToSelector:@selector(clickedRow)] && [sender clickedRow] < 0) return;
  [self addAddressesFromAddressBook:list];
}

- (IBAction)addSelectedPCAddressData:(id)sender {
  [self addFrom:pcAddressList sender:sender];
}

- (IBAction)addSelectedDeviceAddressData:(id)sender {
  [self addFrom:deviceAddressList sender:sender];
}

- (void)addAddressesFromAddressBook:(NSArrayController *)list {
  NSMutableArray *candidates = [NSMutableArray array];
  NSEnumerator *selected = [[list selectedObjects] objectEnumerator];
  while (id entry = [selected nextObject]) {
    if (fax::is_group(entry))
      [candidates addObjectsFromArray:[self getAddressListFrom:entry ofAddressBook:list]];
    else
      [candidates addObject:entry];
  }
  if (!fax::has_room([[addressArrayController arrangedObjects] count], [candidates count])) {
    fax::run_alert(bundle, @"No More Destination", nil, {@"OK"});
    return;
  }
  fax::DuplicateDecision duplicates;
  NSEnumerator *each = [candidates objectEnumerator];
  while (id entry = [each nextObject]) {
    if (![self existAddressInDestination:entry] ||
        duplicates.allows([&] { return [self checkIfAllowDuplication] == YES; }))
      [self addDestinationAddress:entry];
  }
}

- (BOOL)existAddressInDestination:(id)entry {
  NSString *name = [entry valueForKey:@"name"];
  NSString *number = [entry valueForKey:@"phoneNumber"];
  NSEnumerator *destinations = [[addressArrayController arrangedObjects] objectEnumerator];
  while (id destination = [destinations nextObject]) {
    if (fax::same_text([destination valueForKey:@"name"], name) &&
        fax::same_text([destination valueForKey:@"phoneNumber"], number))
      return YES;
  }
  return NO;
}

- (BOOL)checkIfAllowDuplication {
  return fax::run_alert(bundle, @"Duplicated Address Found", @"Add the same address to destinations?",
                        {@"OK", @"Cancel"});
}

- (void)addDestinationAddress:(id)entry {
  AddressInformation *destination = [[AddressInformation alloc] init];
  [destination setValue:[entry valueForKey:@"name"] forKey:@"name"];
  [destination setValue:[entry valueForKey:@"phoneNumber"] forKey:@"phoneNumber"];
  [addressArrayController addObject:destination];
  [destination release];
}

- (IBAction)deleteAddressInfo:(id)sender {
  (void)sender;
  NSArray *selected = [NSArray arrayWithArray:[addressArrayController selectedObjects]];
  if ([selected count] > 0) [addressArrayController removeObjects:selected];
}

@end
