#import "stage.h"

#include <dlfcn.h>
#include <map>

namespace {

using monkey::utf8;

// Actions whose running the rules want to know of; the body that notes it, in front of the bundle's own.
std::vector<std::string> the_ran;
using Action = void (*)(id, SEL, id);
std::map<SEL, Action> the_bodies;

void note(id self, SEL action, id sender) {
  the_ran.push_back(utf8(NSStringFromSelector(action)));
  the_bodies.at(action)(self, action, sender);
}

void watch(char const *owner, SEL action) {
  the_bodies[action] = test::replace<Action>(test::class_named(owner), action, &note);
}

BOOL stored_flag(id object, char const *name) {
  Ivar const variable = class_getInstanceVariable([object class], name);
  return *(reinterpret_cast<BOOL *>(object) + ivar_getOffset(variable));
}

monkey::List read_list(NSArrayController *controller, std::initializer_list<NSTableView *> tables) {
  monkey::List list;
  NSEnumerator *rows = [[controller arrangedObjects] objectEnumerator];
  while (id row = [rows nextObject])
    list.rows.push_back({utf8([row valueForKey:@"name"]), utf8([row valueForKey:@"phoneNumber"])});
  NSArray *selected = [controller selectedObjects];
  list.selected = [selected count];
  for (NSUInteger at = 0; at < [selected count]; ++at) {
    id const row = [selected objectAtIndex:at];
    bool const group = [[row valueForKey:@"phoneNumber"] isEqual:@"Group"];
    list.candidates += group ? [[row valueForKey:@"userIDList"] count] : 1;
  }
  for (NSTableView *table : tables) {
    list.shown.push_back(static_cast<std::size_t>([table numberOfRows]));
    list.marked.push_back(static_cast<std::size_t>([table numberOfSelectedRows]));
  }
  return list;
}

NSTableView *table_of(NSWindow *window, NSArrayController *list) {
  return (NSTableView *)(monkey::find([window contentView], [list](NSView *view) {
    NSDictionary *content = [view infoForBinding:NSContentBinding];
    return [view isKindOfClass:[NSTableView class]] && [content objectForKey:NSObservedObjectKey] == list;
  }));
}

bool enabled(NSWindow *window, std::string const &action) {
  NSView *view = monkey::find([window contentView], [&action](NSView *each) {
    return [each isKindOfClass:[NSButton class]] && [(NSButton *)each action] != NULL &&
           utf8(NSStringFromSelector([(NSButton *)each action])) == action;
  });
  return [(NSButton *)view isEnabled];
}

bool time_enabled(NSWindow *window) {
  NSView *view = monkey::find([window contentView], [](NSView *each) {
    return [[[each infoForBinding:NSValueBinding] objectForKey:NSObservedKeyPathKey] isEqual:@"delayedTime"];
  });
  return [(NSTextField *)view isEnabled];
}

NSPopUpButton *pop_up(id panel, char const *name) {
  return [[panel panelView] valueForKey:test::ns(name)];
}

std::string choice_of(id panel, char const *keyword) {
  NSEnumerator *features = [[panel valueForKey:@"ppdFeatures"] objectEnumerator];
  while (id feature = [features nextObject])
    if (utf8([feature valueForKey:@"keyword"]) == keyword) return utf8([feature curChoice]);
  return "";
}

void look_at_dialog(id fax, monkey::Seen &seen) {
  id const book = [fax valueForKey:@"addressBookController"];
  NSWindow *fax_window = [fax valueForKey:@"faxSettingPanel"];
  NSWindow *book_window = [book valueForKey:@"addressBookSettingPanel"];
  NSArrayController *destinations = [fax valueForKey:@"addressArrayController"];
  seen.destinations = read_list(destinations, {table_of(fax_window, destinations), table_of(book_window, destinations)});
  seen.file_entries = read_list([book valueForKey:@"pcAddressList"], {[book valueForKey:@"pcAddressTableView"]});
  seen.printer_entries =
      read_list([book valueForKey:@"deviceAddressList"], {[book valueForKey:@"deviceAddressTableView"]});
  NSEnumerator *each = [[destinations arrangedObjects] objectEnumerator];
  while (id one = [each nextObject]) seen.identities.push_back(reinterpret_cast<std::uintptr_t>(one));
  seen.files = [[[fax valueForKey:@"addressFileList"] arrangedObjects] count];
  seen.number = utf8([[fax valueForKey:@"addressPhoneNumberTextField"] stringValue]);
  seen.file_available = [[fax valueForKey:@"isAddressFileAvailable"] boolValue];
  seen.delayed = [[fax valueForKey:@"delayedPrint"] boolValue];
  seen.sending = [fax isSending];
  for (char const *name : {"canEditAddress", "canDeleteAddress", "canAddToAddressFile"})
    seen.mirrors[name] = stored_flag(fax, name);
  for (char const *action : {"addAddressInfo:", "editAddressInfo:", "addToAddressBook:"})
    seen.enabled[action] = enabled(fax_window, action);
  for (char const *action : {"addSelectedPCAddressData:", "showPCAddressProperty:", "addSelectedDeviceAddressData:",
                             "showDevicePCAddressProperty:"})
    seen.enabled[action] = enabled(book_window, action);
  seen.enabled["fax deleteAddressInfo:"] = enabled(fax_window, "deleteAddressInfo:");
  seen.enabled["book deleteAddressInfo:"] = enabled(book_window, "deleteAddressInfo:");
  seen.enabled["delayedTime"] = time_enabled(fax_window);
}

std::string role(Stage *stage, id fax, NSWindow *window) {
  id const book = [fax valueForKey:@"addressBookController"];
  if (window == stage->window) return "host";
  if (window == [fax valueForKey:@"faxSettingPanel"]) return "fax";
  if (window == [book valueForKey:@"addressBookSettingPanel"]) return "book";
  if (window == [book valueForKey:@"userPropertyPanel"]) return "user";
  if (window == [book valueForKey:@"groupPropertyPanel"]) return "group";
  std::string const name = utf8(NSStringFromClass([window class]));
  return name == "GSAlertPanel" ? "alert" : name;
}

}  // namespace

namespace monkey {

std::string utf8(NSString *text) { return text != nil ? [text UTF8String] : ""; }

NSView *find(NSView *view, std::function<bool(NSView *)> const &question) {
  if (question(view)) return view;
  NSMutableArray *parts = [NSMutableArray arrayWithArray:[view subviews]];
  if ([view isKindOfClass:[NSTabView class]]) parts = [[[(id)view tabViewItems] valueForKey:@"view"] mutableCopy];
  NSView *found = nil;
  for (NSUInteger at = 0; at < [parts count] && found == nil; ++at) found = find([parts objectAtIndex:at], question);
  if ([view isKindOfClass:[NSTabView class]]) [parts release];
  return found;
}

Seen look(Stage *stage) {
  Seen seen;
  seen.ran.swap(the_ran);
  id const fax = [stage->panel valueForKey:@"detailedFaxSettingContoller"];
  NSArray *windows = [NSApp windows];
  for (NSUInteger at = 0; at < [windows count]; ++at) {
    NSWindow *window = [windows objectAtIndex:at];
    if ([window isVisible] && ![window isKindOfClass:NSClassFromString(@"NSMenuPanel")])
      seen.windows.push_back(role(stage, fax, window));
  }
  if (NSWindow *modal = [NSApp modalWindow]) {
    seen.modal = role(stage, fax, modal);
    if (seen.modal == "alert") {
      NSView *text = find([modal contentView], [](NSView *view) {
        return [view isKindOfClass:[NSTextField class]] && [[(NSTextField *)view stringValue] length] > 0;
      });
      seen.alert = utf8([(NSTextField *)text stringValue]);
    }
  }
  seen.cover_page = choice_of(stage->panel, "QXFaxCoverPageMode");
  seen.sender_mode = choice_of(stage->panel, "QXFaxSenderMode");
  seen.panel_enabled["mode"] = [pop_up(stage->panel, "senderModePopup") isEnabled];
  seen.panel_enabled["name"] = [[stage->panel valueForKey:@"senderNameTextField"] isEnabled];
  seen.fax = fax != nil;
  if (fax != nil) look_at_dialog(fax, seen);
  return seen;
}

}  // namespace monkey

@implementation Stage

- (void)addButton:(NSString *)title action:(SEL)action at:(float)x {
  NSButton *button = [[[NSButton alloc] initWithFrame:NSMakeRect(x, 10, 90, 26)] autorelease];
  [button setTitle:title];
  [button setTarget:self];
  [button setAction:action];
  [[window contentView] addSubview:button];
}

- (id)initWithRandom:(monkey::Random *)source {
  if ((self = [super init]) == nil) return nil;
  random = source;
  for (SEL action : {@selector(startSending:), @selector(stopSending:)}) watch("FaxSettingController", action);
  for (SEL action : {@selector(saveAddressSetting:), @selector(cancelAddressSetting:)})
    watch("AddressBookController", action);
  window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 300, 700, 460)
                                       styleMask:NSTitledWindowMask
                                         backing:NSBackingStoreBuffered
                                           defer:NO];
  [window setTitle:@"Host"];
  [self addButton:@"Print" action:@selector(print:) at:10];
  [self addButton:@"Summary" action:@selector(ask:) at:110];
  [self addButton:@"Restore" action:@selector(restore:) at:210];
  [self addButton:@"Other Panel" action:@selector(renew:) at:310];
  [self renew:nil];
  [window makeKeyAndOrderFront:nil];
  return self;
}

- (void)renew:(id)sender {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [[panel panelView] removeFromSuperview];
  [panel release];
  [host release];
  static std::unique_ptr<test::Ppd> ppd;
  ppd = std::make_unique<test::Ppd>();
  host = [[TestHost alloc] init];
  host->ppd = random->one_in(10) ? NULL : ppd->get();
  static char const *const printers[] = {"socket://127.0.0.1", "socket://127.0.0.1", "ipp://127.0.0.1/print", "usb://x/y",
                                         "dnssd://Fax._ipp._tcp.local/", ""};
  fakes().device_uri = random->pick(printers);
  id const factory = [[[[test::bundle() principalClass] alloc] init] autorelease];
  [factory initWithBundle:test::bundle()];
  panel = [[[factory PDEPanelsForType:@"BDB091F4-E57F-11D3-B5CC-0050E4603277" withHostInfo:host] objectAtIndex:0] retain];
  [[panel panelView] setFrameOrigin:NSMakePoint(10, 50)];
  [[window contentView] addSubview:[panel panelView]];
  [panel restoreValuesAndReturnError:NULL];
  [panel willShow];
  [self change];
  [pool release];
}

- (std::string)change {
  host->accepts = !random->one_in(4);
  host->hasSettings = !random->one_in(6);
  host->hasSession = !random->one_in(6);
  bool const elsewhere = random->one_in(10);
  PMSessionSetDestination(host->session, host->settings, elsewhere ? kPMDestinationFile : kPMDestinationPrinter, NULL,
                          NULL);
  fakes().destination_status = random->one_in(10) ? kPMInvalidParameter : noErr;
  fakes().first_failing_store = random->one_in(5) ? static_cast<int>(random->below(8)) : -1;
  fakes().last_failing_store = fakes().first_failing_store + static_cast<int>(random->below(4));
  return std::string("the host: ") + (host->accepts ? "accepts" : "refuses") + (host->hasSettings ? "" : ", no settings") +
         (host->hasSession ? "" : ", no session") + (elsewhere ? ", elsewhere" : "") +
         (fakes().first_failing_store < 0 ? "" : ", stores fail");
}

- (std::string)valueForSetting:(std::string const &)name {
  CFTypeRef value = NULL;
  NSString *key = [@"com.norvalt.tk.o.print.printsettings." stringByAppendingString:test::ns(name)];
  PMPrintSettingsGetValue(host->settings, (CFStringRef)key, &value);
  return utf8((NSString *)value);
}

- (void)checkJob {
  monkey::Seen const seen = monkey::look(self);
  id const fax = [panel valueForKey:@"detailedFaxSettingContoller"];
  monkey::Job job;
  for (std::string const &key : fakes().stored_keys) {
    job.stored.push_back(key.substr(key.rfind('.') + 1));
    job.values[job.stored.back()] = [self valueForSetting:job.stored.back()];
  }
  job.first_failing = fakes().first_failing_store;
  job.last_failing = fakes().last_failing_store;
  static void *const module = dlopen(BUNDLE_PATH "/DirectFax", RTLD_NOW | RTLD_NOLOAD);
  static auto *const scrambled =
      reinterpret_cast<CFStringRef (*)(CFStringRef, CFStringEncoding)>(dlsym(module, "CreateEncryptedString"));
  static auto *const encoding =
      reinterpret_cast<CFStringEncoding (*)(ppd_file_t *)>(dlsym(module, "GetEncodingInfoFromPPD"));
  NSString *password = (NSString *)scrambled((CFStringRef)[fax valueForKey:@"password"], encoding(host->ppd));
  job.password = utf8([password autorelease]);
  NSDateFormatter *clock = [[[NSDateFormatter alloc] init] autorelease];
  [clock setDateFormat:@"HH:mm"];
  job.time = utf8([clock stringFromDate:[fax valueForKey:@"delayedTime"]]);
  if (std::string const fault = monkey::Rules::broken(job, seen); !fault.empty()) monkey::fail(fault);
}

- (void)print:(id)sender {
  if (![panel saveValuesAndReturnError:NULL]) return;
  fakes().stored_keys.clear();
  PMDestinationType type = kPMDestinationInvalid;
  bool const elsewhere = host->hasSession && host->hasSettings &&
                         PMSessionGetDestinationType(host->session, host->settings, &type) == noErr &&
                         type != kPMDestinationPrinter;
  BOOL const prints = [panel shouldPrint];
  if (elsewhere && !prints) monkey::fail("a job that goes elsewhere is stopped");
  if (!elsewhere && prints && host->hasSettings) return [self checkJob];
  if (!fakes().stored_keys.empty()) monkey::fail("a job that is not sent has keys");
}

- (void)ask:(id)sender {
  if ([[panel summaryInfo] objectForKey:@"Summary Display Order"] == nil) monkey::fail("a summary without its order");
  if ([panel shouldShowHelp]) monkey::fail("the panel's help is left to the host");
  if ([panel shouldHide]) [panel willShow];
}

- (void)restore:(id)sender {
  [panel restoreValuesAndReturnError:NULL];
}

@end
