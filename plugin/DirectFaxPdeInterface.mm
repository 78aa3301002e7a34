#import "plugin/DirectFaxPdeInterface.h"

#import <Cocoa/Cocoa.h>

#include <algorithm>
#include <map>

#import "faxsetting/FaxSettingController.h"
#include "faxsetting/job_settings.h"
#include "plugin/address_text.h"
#include "plugin/device_uri.h"
#import "plugin/DirectFaxPdeView.h"
#include "plugin/fax_options.h"
#import "plugin/PpdFeature.h"
#include "plugin/ppd_choices.h"
#include "plugin/resolved_address.h"
#import "support/guarded.h"
#include "support/help.h"
#import "support/InputStringChecker.h"
#include "support/system_utilities.h"
#import "support/UtilityService.h"
#import "view/alert.h"
#import "view/NSBundle+KORLUM.h"

namespace {

// The default, asynchronous launch.
constexpr NSUInteger kLaunchDefault = 0x10000;
constexpr NSTimeInterval kServiceTimeout = 5.0;
constexpr std::size_t kHostRoom = 4096;

// Services under way. A service does not keep its delegate, so a panel that goes away must end its own first.
std::multimap<id, NSNetService *> &services_under_way() {
  static std::multimap<id, NSNetService *> services;
  return services;
}

void end_service(NSNetService *service) {
  [service stop];
  [service release];
}

void keep(NSString **slot, NSString *text) {
  [text retain];
  [*slot release];
  *slot = text;
}

std::string_view bytes_of(NSData *data) {
  return {static_cast<char const *>([data bytes]), static_cast<std::size_t>([data length])};
}

NSString *settings_key_text(char const *base) {
  return [NSString stringWithUTF8String:fax::settings_key(base).c_str()];
}

// Loads a nib of the bundle. The objects at its top are kept in *kept where the bundle gives them.
BOOL load_nib(NSBundle *bundle, NSString *name, id owner, NSMutableArray **kept) {
  if (![bundle respondsToSelector:@selector(loadNibNamed:owner:topLevelObjects:)])
    return [NSBundle loadNibNamed:name owner:owner];
  NSArray *objects = nil;
  if (![bundle loadNibNamed:name owner:owner topLevelObjects:&objects]) return NO;
  [*kept release];
  *kept = [[NSMutableArray alloc] initWithArray:objects];
  return YES;
}

// Controls do not keep their target. A host's window may keep a control longer than the panel lives: the one that had the
// focus first, say.
void forget_target(NSView *view, id target) {
  if ([view isKindOfClass:[NSControl class]] && [(NSControl *)view target] == target) [(NSControl *)view setTarget:nil];
  NSEnumerator *parts = [[view subviews] objectEnumerator];
  while (NSView *part = [parts nextObject]) forget_target(part, target);
}

// The same with the name of this class in front.
template <typename Work>
auto guard(char const *operation, std::type_identity_t<std::invoke_result_t<Work &>> failed, Work work) {
  return fax::guarded(("DirectFaxPdeInterface - " + std::string(operation)).c_str(), failed, work);
}

void guard(char const *operation, auto work) {
  guard(operation, NO, [&] {
    work();
    return YES;
  });
}

std::optional<std::string_view> choice_text(NSDictionary *choices, char const *keyword) {
  char const *text = [[choices objectForKey:[NSString stringWithUTF8String:keyword]] UTF8String];
  if (text == nullptr) return std::nullopt;
  return text;
}

}  // namespace

@implementation DirectFaxPdeInterface

@synthesize senderName;

- (id)initWithCallback:(id<PDEPluginCallback>)callback andBundle:(NSBundle *)bundle {
  self = [super initWithCallback:callback andBundle:bundle];
  if (self == nil) return nil;
  directFaxView = nil;
  addressBookEditorPath = nil;
  if (ppdFeatures == nil) {
    ppdFeatures = [[NSMutableArray alloc] init];
    NSEnumerator *keywords =
        [[[pluginBundle infoDictionary] objectForKey:@"QXPPDKeysSupported"] objectEnumerator];
    while (NSString *keyword = [keywords nextObject]) {
      PpdFeature *feature = [[PpdFeature alloc] initWithPPD:ppd andKeyowrd:keyword];
      [ppdFeatures addObject:feature];
      [feature release];
    }
  }
  printerAddress = nil;
  senderName = nil;
  if (![UtilityService isSandboxed]) [self resolveTargetDevice];
  NSString *identifier = [pluginBundle bundleIdentifier];
  if (getOSMinorVersion() == 6) [UtilityService removeHelpCacheForBundleID:identifier];
  RegisterHelpBook(identifier != nil ? CFBundleGetBundleWithIdentifier((CFStringRef)identifier) : NULL);
  return self;
}

- (void)dealloc {
  auto const [first, last] = services_under_way().equal_range(self);
  for (auto service = first; service != last; ++service) {
    [service->second setDelegate:nil];
    end_service(service->second);
  }
  services_under_way().erase(self);
  forget_target(directFaxView, self);
  [ppdFeatures release];
  [senderNameFieldFormatter release];
  [addressBookEditorPath release];
  [printerAddress release];
  [senderName release];
  [mainPanelTopLevelObjs release];
  [faxSettingTopLevelObjs release];
  [super dealloc];
}

- (NSString *)name {
  if (thePDEName != nil) return thePDEName;
  thePDEName = [@"Fax Settings" retain];
  if (ppd_group_t *group = fax::find_group(ppd, fax::kSettingsGroup)) {
    NSString *text = [NSString stringWithUTF8String:group->text];
    if (text != nil) keep(&thePDEName, text);
  }
  return thePDEName;
}

- (NSView *)loadedView {
  if (directFaxView != nil) return directFaxView;
  if (!load_nib(pluginBundle, @"MainPanel", self, &mainPanelTopLevelObjs)) return nil;
  [directFaxView setBundle:pluginBundle];
  [directFaxView setPPD:ppd];
  [directFaxView initializeControls];
  [senderNameFieldFormatter release];
  senderNameFieldFormatter = [[InputStringChecker alloc] init];
  [senderNameFieldFormatter setMaxLength:fax::kMaximumSenderName];
  [senderNameFieldFormatter setAcceptableCodeRange:fax::kSenderNameAcceptableRange];
  [senderNameTextField setFormatter:senderNameFieldFormatter];
  if ([UtilityService isSandboxed]) [self resolveTargetDevice];
  return directFaxView;
}

- (NSArray *)keywords {
  NSMutableArray *keys = [NSMutableArray array];
  NSArray *inherited = [super supportedPPDOptionKeys];
  if (inherited != nil) [keys addObjectsFromArray:inherited];
  NSEnumerator *features = [ppdFeatures objectEnumerator];
  while (PpdFeature *feature = [features nextObject]) [keys addObject:[feature keyword]];
  return keys;
}

- (void)showSenderName {
  [senderNameTextField setStringValue:senderName != nil ? senderName : @""];
}

- (BOOL)acceptsSenderNameField {
  return [senderNameFieldFormatter isPartialStringValid:[senderNameTextField stringValue]
                                       newEditingString:NULL
                                       errorDescription:NULL];
}

- (void)updateUI {
  if (ppdFeatures != nil) {
    NSMutableDictionary *choices = [NSMutableDictionary dictionary];
    NSEnumerator *features = [ppdFeatures objectEnumerator];
    while (PpdFeature *feature = [features nextObject]) {
      NSString *choice = [feature curChoice];
      if (choice == nil) continue;
      [directFaxView setValue:[feature curValue] forPPDKeyword:[feature keyword]];
      [choices setObject:choice forKey:[feature keyword]];
    }
    fax::SenderControls const allowed = fax::sender_controls(choice_text(choices, fax::kCoverPageKeyword),
                                                             choice_text(choices, fax::kSenderModeKeyword));
    [directFaxView setEnabled:allowed.mode_enabled
                forPPDKeyword:[NSString stringWithUTF8String:fax::kSenderModeKeyword]];
    [senderNameTextField setEnabled:allowed.name_enabled];
  }
  [self showSenderName];
  if (getOSMinorVersion() >= 7) [addressBookButton setHidden:YES];
}

- (void)restoreValues {
  NSEnumerator *features = [ppdFeatures objectEnumerator];
  while (PpdFeature *feature = [features nextObject]) {
    char const *keyword = [[feature keyword] cStringUsingEncoding:NSASCIIStringEncoding];
    if (ppd == NULL || keyword == NULL) continue;
    if (ppd_choice_t *marked = ppdFindMarkedChoice(ppd, keyword)) [feature setCurChoice:marked];
  }
  PMPrintSettings settings = [pdePluginCallbackObject printSettings];
  if (settings != NULL) {
    CFTypeRef stored = NULL;
    NSString *key = settings_key_text(fax::kSenderNameKey);
    OSStatus const status = PMPrintSettingsGetValue(settings, (CFStringRef)key, &stored);
    NSString *name = status == noErr ? (NSString *)stored : nil;
    [self setSenderName:[name isKindOfClass:[NSString class]] && [name length] > 0 ? name : @""];
  }
  [self updateUI];
}

- (void)popupDidChange:(NSPopUpButton *)popup {
  NSString *keyword = [directFaxView ppdKeywordForObject:popup];
  NSString *choice = [[popup selectedItem] representedObject];
  if (![pdePluginCallbackObject willChangePPDOptionKeyValue:keyword ppdChoice:choice]) return;

  char const *ascii = [keyword cStringUsingEncoding:NSASCIIStringEncoding];
  ppd_choice_t *marked = ppd != NULL && ascii != NULL ? ppdFindMarkedChoice(ppd, ascii) : NULL;
  NSEnumerator *features = [ppdFeatures objectEnumerator];
  while (PpdFeature *feature = [features nextObject]) {
    if (![[feature keyword] isEqualToString:keyword]) continue;
    [feature setCurChoice:marked];
    break;
  }
  if (![self acceptsSenderNameField]) [self showSenderName];
  [self setSenderName:[senderNameTextField stringValue]];
  [self updateUI];
}

- (void)controlDidChange:(id)sender {
  if ([sender isKindOfClass:[NSPopUpButton class]]) {
    [self popupDidChange:sender];
  } else if ([sender isKindOfClass:[NSTextField class]]) {
    if (![self acceptsSenderNameField]) [self showSenderName];
  }
}

- (BOOL)saveValues {
  if (senderNameTextField == nil) return YES;
  if (![self acceptsSenderNameField]) {
    [self showSenderName];
    return NO;
  }
  [self setSenderName:[senderNameTextField stringValue]];
  PMPrintSettings settings = [pdePluginCallbackObject printSettings];
  if (settings != NULL)
    PMPrintSettingsSetValue(settings, (CFStringRef)settings_key_text(fax::kSenderNameKey), (CFTypeRef)senderName,
                            false);
  return YES;
}

- (NSDictionary *)summary {
  NSMutableDictionary *summary = [NSMutableDictionary dictionary];
  NSMutableArray *order = [NSMutableArray array];
  NSEnumerator *features = [ppdFeatures objectEnumerator];
  while (PpdFeature *feature = [features nextObject]) [feature setSummaryInfo:summary andOrder:order];
  NSString *label = [pluginBundle korlumLocalizedStringForKey:@"Sender Name" value:nil table:localizedFileName];
  if (label == nil) label = @"Sender Name";
  [summary setObject:senderName != nil ? senderName : @"" forKey:label];
  [order addObject:label];
  [summary setObject:order forKey:@"Summary Display Order"];
  return summary;
}

- (void)setDefaultValue {
  NSEnumerator *features = [ppdFeatures objectEnumerator];
  while (PpdFeature *feature = [features nextObject]) {
    [feature setDefault];
    [pdePluginCallbackObject willChangePPDOptionKeyValue:[feature keyword] ppdChoice:[feature curChoice]];
  }
  [self setSenderName:@""];
}

// YES when the job is known to go elsewhere than to the printer: to a file, to a preview.
- (BOOL)goesElsewhere {
  PMPrintSession session = [pdePluginCallbackObject printSession];
  PMPrintSettings settings = [pdePluginCallbackObject printSettings];
  if (session == NULL || settings == NULL) return NO;
  PMDestinationType type = kPMDestinationInvalid;
  return PMSessionGetDestinationType(session, settings, &type) == noErr && type != kPMDestinationPrinter;
}

- (BOOL)passesGate {
  if (senderNameTextField != nil && ![self acceptsSenderNameField]) {
    [self showSenderName];
    return NO;
  }
  if ([self goesElsewhere]) return YES;

  if (detailedFaxSettingContoller == nil) load_nib(pluginBundle, @"FaxSetting", self, &faxSettingTopLevelObjs);
  [detailedFaxSettingContoller setBundle:pluginBundle];
  [detailedFaxSettingContoller setPPD:ppd];
  [detailedFaxSettingContoller setIPAddress:printerAddress];
  [detailedFaxSettingContoller createDialog];
  if (![detailedFaxSettingContoller isSending]) return NO;

  PMPrintSettings settings = [pdePluginCallbackObject printSettings];
  if (settings != NULL) [detailedFaxSettingContoller setPrintSettings:settings];
  return YES;
}

- (void)showHelp {
  NSString *identifier = [pluginBundle bundleIdentifier];
  GotoHelpPage(identifier != nil ? CFBundleGetBundleWithIdentifier((CFStringRef)identifier) : NULL,
               CFSTR("FaxSettings.htm"), NULL);
}

- (BOOL)isRunning:(NSString *)identifier {
  NSEnumerator *running = [[[NSWorkspace sharedWorkspace] launchedApplications] objectEnumerator];
  while (NSDictionary *application = [running nextObject])
    if ([[application objectForKey:@"NSApplicationBundleIdentifier"] isEqual:identifier]) return YES;
  return NO;
}

- (BOOL)launchByIdentifier:(NSString *)identifier {
  return [[NSWorkspace sharedWorkspace] launchAppWithBundleIdentifier:identifier
                                                              options:kLaunchDefault
                                       additionalEventParamDescriptor:nil
                                                     launchIdentifier:NULL];
}

// YES when the editor runs or is starting; NO when the user has to be told.
- (BOOL)launchEditor {
  NSString *identifier = [[pluginBundle infoDictionary] objectForKey:@"AddressBookBundleIdentifier"];
  if (identifier == nil) return NO;
  if ([self isRunning:identifier]) {
    [self launchByIdentifier:identifier];
    return YES;
  }
  if (addressBookEditorPath == nil) {
    NSString *path = [[NSWorkspace sharedWorkspace] absolutePathForAppBundleWithIdentifier:identifier];
    if ([path length] == 0) return NO;
    keep(&addressBookEditorPath, [[NSBundle bundleWithPath:path] executablePath]);
  }
  if (printerAddress == nil) {
    NSLog(@"Failed to resolve the current printer URI!");
    return [self launchByIdentifier:identifier];
  }
  if (addressBookEditorPath == nil) return NO;
  NSMutableArray *arguments = [NSMutableArray array];
  for (std::string const &argument : fax::editor_arguments([printerAddress UTF8String]))
    [arguments addObject:[NSString stringWithUTF8String:argument.c_str()]];
  return [NSTask launchedTaskWithLaunchPath:addressBookEditorPath arguments:arguments] != nil;
}

- (IBAction)launchAddressBook:(id)sender {
  (void)sender;
  // A task that cannot be started raises.
  BOOL const launched = guard("launchAddressBook", NO, [&] { return [self launchEditor]; });
  if (!launched) fax::run_alert(pluginBundle, @"Address Book Editor not found.", nil, {@"OK"});
}

- (void)resolveByBonjour:(std::string const &)host {
  auto const decoded = fax::without_percent_escapes(host);
  if (!decoded) return;
  auto const parts = fax::split_service_name(*decoded);
  if (!parts) return;
  NSNetService *service = [[NSNetService alloc] initWithDomain:@"local."
                                                          type:[NSString stringWithUTF8String:parts->type.c_str()]
                                                          name:[NSString stringWithUTF8String:parts->name.c_str()]];
  if (service == nil) return;
  services_under_way().emplace(self, service);
  [service setDelegate:(id)self];
  [service resolveWithTimeout:kServiceTimeout];
}

- (void)resolveByHostName:(std::string const &)host {
  if (host.empty()) return;
  // A name that does not fit is not cut into that of another host: the look-up gets an empty one, and fails.
  char name[kHostRoom] = {};
  if (host.size() < sizeof name) host.copy(name, host.size());
  char address[kHostRoom] = {};
  if (CopyResolvedIPAddress(name, address, sizeof address) != 0) return;
  keep(&printerAddress, [NSString stringWithCString:address encoding:NSASCIIStringEncoding]);
}

- (void)resolveTargetDevice {
  CFURLRef url = NULL;
  if (PMPrinterCopyDeviceURI([pdePluginCallbackObject PMPrinter], &url) != noErr || url == NULL) return;
  char const *text = [(NSString *)CFURLGetString(url) UTF8String];
  if (auto const uri = text != NULL ? fax::split_device_uri(text) : std::nullopt) {
    switch (fax::connection_of(uri->scheme)) {
      case fax::Connection::bonjour: [self resolveByBonjour:uri->host]; break;
      case fax::Connection::host_name: [self resolveByHostName:uri->host]; break;
      case fax::Connection::usb: keep(&printerAddress, @""); break;
      case fax::Connection::unknown: break;
    }
  }
  CFRelease(url);
}

- (void)endService:(NSNetService *)service {
  auto const [first, last] = services_under_way().equal_range(self);
  auto const ended = std::find_if(first, last, [service](auto const &one) { return one.second == service; });
  if (ended != last) services_under_way().erase(ended);
  end_service(service);
}

- (void)takeAddressOf:(NSNetService *)service {
  NSEnumerator *addresses = [[service addresses] objectEnumerator];
  while (NSData *address = [addresses nextObject]) {
    fax::AddressText const found = fax::text_of_address(bytes_of(address));
    if (!found.is_internet) continue;
    if (found.text) keep(&printerAddress, [NSString stringWithUTF8String:found.text->c_str()]);
    break;
  }
  [self endService:service];
}

- (void)netServiceDidResolveAddress:(NSNetService *)service {
  guard("netServiceDidResolveAddress", [&] { [self takeAddressOf:service]; });
}

- (void)netService:(NSNetService *)service didNotResolve:(NSDictionary *)error {
  (void)error;
  NSLog(@"Failed to resolve the Bonjour service %@", [service name]);
  [self endService:service];
}

// What the host and its controls call.

- (NSString *)panelName {
  return guard("panelName", @"Fax Settings", [&] { return [self name]; });
}

- (NSView *)panelView {
  return guard("panelView", nil, [&] { return [self loadedView]; });
}

- (NSArray *)supportedPPDOptionKeys {
  return guard("supportedPPDOptionKeys", nil, [&] { return [self keywords]; });
}

- (void)willShow {
  guard("willShow", [&] { [self updateUI]; });
}

- (BOOL)restoreValuesAndReturnError:(NSError **)error {
  (void)error;
  guard("restoreValuesAndReturnError", [&] { [self restoreValues]; });
  return YES;
}

- (BOOL)saveValuesAndReturnError:(NSError **)error {
  (void)error;
  return guard("saveValuesAndReturnError", NO, [&] { return [self saveValues]; });
}

- (NSDictionary *)summaryInfo {
  return guard("summaryInfo", nil, [&] { return [self summary]; });
}

- (BOOL)shouldPrint {
  return guard("shouldPrint", NO, [&] { return [self passesGate]; });
}

- (BOOL)shouldShowHelp {
  guard("shouldShowHelp", [&] { [self showHelp]; });
  return NO;
}

- (IBAction)uiValueDidChange:(id)sender {
  guard("uiValueDidChange", [&] { [self controlDidChange:sender]; });
}

- (IBAction)setDefaults:(id)sender {
  (void)sender;
  guard("setDefaults", [&] { [self setDefaultValue]; });
  guard("setDefaults", [&] { [self updateUI]; });
}

@end
