#import "faxsetting/FaxSettingController.h"

#import "addressbook/AddressBookController.h"
#import "addressbook/AddressInformation.h"
#include "addressbook/destination_rules.h"
#include "addressbook/library.h"
#import "addressbook/same_text.h"
#import "faxsetting/address_files.h"
#import "faxsetting/FaxSettingView.h"
#include "faxsetting/job_settings.h"
#include "support/help.h"
#import "support/InputStringChecker.h"
#include "support/string_encoding.h"
#import "support/UtilityService.h"
#import "view/alert.h"

namespace {

AddressInformation *new_destination(NSString *name, NSString *phone_number) {
  AddressInformation *destination = [[AddressInformation alloc] init];
  [destination setValue:name forKey:@"name"];
  [destination setValue:phone_number forKey:@"phoneNumber"];
  return destination;
}

}  // namespace

@implementation FaxSettingController

+ (NSSet *)keyPathsForValuesAffectingValueForKey:(NSString *)key {
  NSSet *keys = [super keyPathsForValuesAffectingValueForKey:key];
  NSString *added = nil;
  if ([key isEqualToString:@"delayedTime"]) added = @"delayedPrint";
  if ([key isEqualToString:@"canAddAddress"]) added = @"addressPhoneNumber";
  if ([key isEqualToString:@"canAddToAddressFile"]) added = @"isAddressFileAvailable";
  return added != nil ? [keys setByAddingObject:added] : keys;
}

- (void)awakeFromNib {
  bundle = nil;
  sendingStatus = NO;
  canEditAddress = NO;
  canDeleteAddress = NO;
  isAddressFileAvailable = NO;
  canAddToAddressFile = NO;

  [addressArrayController retain];
  [addressFileList retain];
  [addressBookController retain];

  addressNameFieldFormatter = [[InputStringChecker alloc] init];
  [addressNameFieldFormatter setMaxLength:fax::kMaximumAddressName];
  [addressNameFieldFormatter setUnAcceptableCodeRange:fax::kAddressNameUnAcceptableRange];
  addressPhoneNumberFieldFormatter = [[InputStringChecker alloc] init];
  [addressPhoneNumberFieldFormatter setMaxLength:fax::kMaximumPhoneNumber];
  [addressPhoneNumberFieldFormatter setAcceptableCodeRange:fax::kPhoneNumberAcceptableRange];
  passwordFieldFormatter = [[InputStringChecker alloc] init];
  [passwordFieldFormatter setMaxLength:fax::kMaximumPassword];
  [passwordFieldFormatter setAcceptableCodeRange:fax::kPasswordAcceptableRange];

  NSSortDescriptor *by_name = [[NSSortDescriptor alloc] initWithKey:@"name"
                                                          ascending:NO
                                                           selector:@selector(caseInsensitiveCompare:)];
  NSSortDescriptor *by_number = [[NSSortDescriptor alloc] initWithKey:@"phoneNumber"
                                                            ascending:NO
                                                             selector:@selector(caseInsensitiveCompare:)];
  [addressArrayController setSortDescriptors:[NSArray arrayWithObjects:by_name, by_number, nil]];
  [by_name release];
  [by_number release];

  [addressArrayController addObserver:self
                           forKeyPath:@"selectedObjects"
                              options:NSKeyValueObservingOptionNew
                              context:NULL];
  observesSelection = addressArrayController != nil;
}

- (void)dealloc {
  [bundle release];
  [addressNameFieldFormatter release];
  [addressPhoneNumberFieldFormatter release];
  [passwordFieldFormatter release];
  [printerAddress release];
  if (observesSelection) [addressArrayController removeObserver:self forKeyPath:@"selectedObjects"];
  [addressArrayController release];
  [addressFileList release];
  [addressBookController release];
  [addressName release];
  [addressPhoneNumber release];
  [password release];
  [delayedPrint release];
  [delayedTime release];
  [super dealloc];
}

- (void)observeValueForKeyPath:(NSString *)path
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context {
  (void)object;
  (void)change;
  (void)context;
  if (![path isEqualToString:@"selectedObjects"]) return;
  [self setValue:[NSNumber numberWithBool:[self canEditAddress]] forKey:@"canEditAddress"];
  [self setValue:[NSNumber numberWithBool:[self canDeleteAddress]] forKey:@"canDeleteAddress"];
  [self setValue:[NSNumber numberWithBool:[self canAddToAddressFile]] forKey:@"canAddToAddressFile"];
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
  [address retain];
  [printerAddress release];
  printerAddress = address;
}

- (BOOL)isSending {
  return sendingStatus;
}

- (NSDate *)delayedTime {
  return delayedTime;
}

- (void)setDelayedTime:(NSDate *)time {
  [time retain];
  [delayedTime release];
  delayedTime = time;
}

- (NSUInteger)selectionCount {
  return [[addressArrayController valueForKey:@"selectedObjects"] count];
}

- (BOOL)canAddAddress {
  return [addressPhoneNumber length] != 0;
}

- (BOOL)canEditAddress {
  return [self selectionCount] == 1;
}

- (BOOL)canDeleteAddress {
  return [self selectionCount] != 0;
}

- (BOOL)isDelayedTime {
  return [delayedPrint boolValue];
}

- (BOOL)canAddToAddressFile {
  return isAddressFileAvailable && [self selectionCount] != 0;
}

- (void)addFiles:(NSArray *)files {
  if ([files count] == 0) return;
  [addressFileList addObjects:files];
  [addressFileList setSelectionIndex:0];
}

// The files of the library's folder; a sandboxed process cannot read them there and lets the user choose later. Where the
// library knows no folder or no files, what was known of them stays.
- (void)listAddressFiles {
  [addressFileList removeObjects:[NSArray arrayWithArray:[addressFileList arrangedObjects]]];
  fax::Library &library = fax::Library::shared();
  NSString *directory = (NSString *)library.file_directory();
  if (directory == nil) return;
  NSString *names = (NSString *)library.file_list();
  if ([UtilityService isSandboxed]) {
    [self setValue:[NSNumber numberWithBool:YES] forKey:@"isAddressFileAvailable"];
    return;
  }
  if (names == nil) return;
  NSArray *files = fax::address_files(directory, names);
  [self addFiles:files];
  [self setValue:[NSNumber numberWithBool:[files count] > 0] forKey:@"isAddressFileAvailable"];
}

- (void)createDialog {
  if (faxSettingPanel == nil) return;
  FaxSettingView *view = (FaxSettingView *)[faxSettingPanel contentView];
  [view setBundle:bundle];
  [view setPPD:ppd];
  [view initializeControls];

  [addressNameTextField setFormatter:addressNameFieldFormatter];
  [addressPhoneNumberTextField setFormatter:addressPhoneNumberFieldFormatter];
  [passwordTextField setFormatter:passwordFieldFormatter];

  [self setValue:@"" forKey:@"addressName"];
  [self setValue:@"" forKey:@"addressPhoneNumber"];
  [self setValue:@"" forKey:@"password"];
  [self setValue:[NSNumber numberWithInt:0] forKey:@"delayedPrint"];
  [self setValue:[NSDate date] forKey:@"delayedTime"];
  [self listAddressFiles];

  [NSApp runModalForWindow:faxSettingPanel];
}

- (IBAction)selectAddressBook:(id)sender {
  NSInteger const index = [sender indexOfSelectedItem];
  if (index >= 0) [addressFileList setSelectionIndex:index];
}

- (NSString *)getIndexKey:(NSString *)name {
  std::size_t const length = fax::index_key_length(name);
  return length > 0 ? [name substringToIndex:length] : nil;
}

- (void)reportAdding:(fax::Status)status {
  switch (status) {
    case fax::kSuccess:
      fax::run_alert(bundle, @"Added to Address Book.", nil, {@"OK"});
      break;
    case fax::kAlreadyPresent:
      fax::run_alert(bundle, @"Address already exists.", nil, {@"OK"});
      break;
    case fax::kNoName:
      fax::run_alert(bundle, @"No name specified.", nil, {@"OK"});
      break;
    default:
      fax::run_alert(bundle, @"Cannot add to the file.", nil, {@"OK"});
      break;
  }
}

- (IBAction)addToAddressBook:(id)sender {
  (void)sender;
  NSArray *files = [addressFileList selectedObjects];
  NSString *path = [files count] > 0 ? [[files objectAtIndex:0] valueForKey:@"path"] : nil;
  [self reportAdding:path != nil
                         ? fax::add_to_address_file(path, [addressArrayController selectedObjects])
                         : fax::kUnavailable];
}

- (void)openAddressBookOnTab:(int)index {
  [addressBookController setBundle:bundle];
  [addressBookController setPPD:ppd];
  [addressBookController setIPAddress:printerAddress];
  [addressBookController setPassword:password];
  [addressBookController createDialogWithTabSelection:index];
}

// NO when the user was asked and chose no file.
- (BOOL)chooseAddressFiles {
  NSString *folder = fax::folder_outside_container((NSString *)fax::Library::shared().file_directory());
  if (folder == nil) return YES;
  NSArray *files = fax::choose_address_files(folder);
  if ([files count] == 0) return NO;
  [self addFiles:files];
  return YES;
}

- (IBAction)lookupAddressBook:(id)sender {
  (void)sender;
  if (addressBookController == nil) return;
  bool const must_choose = [UtilityService isSandboxed] && [[addressFileList arrangedObjects] count] == 0;
  if (must_choose && ![self chooseAddressFiles]) return;
  [self openAddressBookOnTab:0];
}

- (IBAction)lookupDeviceData:(id)sender {
  (void)sender;
  [self openAddressBookOnTab:1];
}

- (BOOL)holdsDestinationNamed:(NSString *)name phoneNumber:(NSString *)number {
  NSEnumerator *destinations = [[addressArrayController arrangedObjects] objectEnumerator];
  while (id destination = [destinations nextObject]) {
    if (fax::same_text([destination valueForKey:@"name"], name) &&
        fax::same_text([destination valueForKey:@"phoneNumber"], number))
      return YES;
  }
  return NO;
}

- (void)addDestinationNamed:(NSString *)name phoneNumber:(NSString *)number {
  AddressInformation *destination = new_destination(name, number);
  [addressArrayController addObject:destination];
  [destination release];
}

- (IBAction)addAddressInfo:(id)sender {
  (void)sender;
  if (!fax::has_room([[addressArrayController arrangedObjects] count])) {
    fax::run_alert(bundle, @"No More Destination", nil, {@"OK"});
    return;
  }
  if ([self holdsDestinationNamed:addressName phoneNumber:addressPhoneNumber] &&
      !fax::run_alert(bundle, @"Duplicated Address Found", @"Add the same address to destinations?",
                      {@"OK", @"Cancel"}))
    return;
  [self addDestinationNamed:addressName phoneNumber:addressPhoneNumber];
  [self setValue:@"" forKey:@"addressName"];
  [self setValue:@"" forKey:@"addressPhoneNumber"];
  // Ready for the next one.
  [[addressNameTextField window] makeFirstResponder:addressNameTextField];
}

- (IBAction)editAddressInfo:(id)sender {
  (void)sender;
  NSArray *selected = [addressArrayController selectedObjects];
  if ([selected count] == 0) return;
  id destination = [[[selected objectAtIndex:0] retain] autorelease];
  [self setValue:[destination valueForKey:@"name"] forKey:@"addressName"];
  [self setValue:[destination valueForKey:@"phoneNumber"] forKey:@"addressPhoneNumber"];
  [addressArrayController removeObject:destination];
}

- (IBAction)deleteAddressInfo:(id)sender {
  (void)sender;
  NSArray *selected = [NSArray arrayWithArray:[addressArrayController selectedObjects]];
  if ([selected count] > 0) [addressArrayController removeObjects:selected];
}

- (void)closeWithSending:(BOOL)sending {
  [faxSettingPanel orderOut:self];
  [NSApp stopModal];
  sendingStatus = sending;
}

- (IBAction)startSending:(id)sender {
  (void)sender;
  if ([[addressArrayController arrangedObjects] count] == 0) {
    if ([addressPhoneNumber length] != 0 &&
        fax::run_alert(bundle, @"Characters added to Fax Number", @"Current number is automatically added",
                       {@"OK", @"Cancel"}))
      [self addDestinationNamed:@"" phoneNumber:addressPhoneNumber];
    if ([[addressArrayController arrangedObjects] count] == 0) {
      fax::run_alert(bundle, @"No Sender Specified", nil, {@"OK"});
      return;
    }
  }
  [self closeWithSending:YES];
}

- (IBAction)stopSending:(id)sender {
  (void)sender;
  [addressArrayController removeObjects:[NSArray arrayWithArray:[addressArrayController arrangedObjects]]];
  [self closeWithSending:NO];
}

- (IBAction)showHelpBook:(id)sender {
  (void)sender;
  CFBundleRef book = CFBundleGetBundleWithIdentifier((CFStringRef)[bundle bundleIdentifier]);
  GotoHelpPage(book, CFSTR("FaxTransmission.htm"), NULL);
}

- (void)setPrintSettings:(PMPrintSettings)settings {
  NSDateFormatter *clock = [[NSDateFormatter alloc] init];
  [clock setLocale:[NSLocale systemLocale]];
  [clock setDateFormat:@"HH:mm"];

  fax::FaxJob job;
  job.password = (CFStringRef)password;
  job.encoding = GetEncodingInfoFromPPD(ppd);
  job.delayed_print = (CFStringRef)[NSString stringWithFormat:@"%@", delayedPrint];
  job.delayed_time = (CFStringRef)(delayedTime != nil ? [clock stringFromDate:delayedTime] : nil);
  NSEnumerator *destinations = [[addressArrayController arrangedObjects] objectEnumerator];
  while (id destination = [destinations nextObject])
    job.destinations.push_back({(CFStringRef)[destination valueForKey:@"name"],
                                (CFStringRef)[destination valueForKey:@"phoneNumber"]});
  fax::write_job_settings(settings, job);
  [clock release];
}

@end
