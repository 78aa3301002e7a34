#include <DirectFaxPrinter.h>
#include <PrintCore/PrintCore.h>

#include "platform/bridge.h"

#include <cups/cups.h>

#include <memory>

using fax::fenced;
using fax::pooled;

// Keys in the order in which they came, each with its value.
@interface FaxPlatformPrintSettings : NSObject {
@public
  NSMutableArray *keys;
  NSMutableDictionary *values;
  NSMutableSet *locked;
}
@end

@implementation FaxPlatformPrintSettings

- (id)init {
  if ((self = [super init])) {
    keys = [NSMutableArray new];
    values = [NSMutableDictionary new];
    locked = [NSMutableSet new];
  }
  return self;
}

- (void)dealloc {
  [keys release];
  [values release];
  [locked release];
  [super dealloc];
}

@end

@interface FaxPlatformPrintSession : NSObject {
@public
  PMDestinationType destination;
  NSURL *location;
}
@end

@implementation FaxPlatformPrintSession

- (void)dealloc {
  [location release];
  [super dealloc];
}

@end

@interface FaxPlatformPrinter : NSObject {
@public
  NSString *queue;
  NSString *title;
  NSString *deviceURI;  // nil: none
}
@end

@implementation FaxPlatformPrinter

- (void)dealloc {
  [queue release];
  [title release];
  [deviceURI release];
  [super dealloc];
}

@end

// A URI whose host is an IPv6 address on an interface, "ipp://[fe80::1%02]/". GNUstep's URLs refuse these, those of
// macOS do not: it is read without the interface, and its text is the whole.
@interface FaxPlatformScopedURL : NSURL {
  NSString *text;
}
@end

@implementation FaxPlatformScopedURL

- (id)initWithString:(NSString *)whole relativeToURL:(NSURL *)base {
  NSRange const sign = [whole rangeOfString:@"%"];
  NSRange const end = [whole rangeOfString:@"]"];
  if (sign.location == NSNotFound || end.location == NSNotFound || end.location < sign.location) {
    [self release];
    return nil;
  }
  NSRange const interface = NSMakeRange(sign.location, end.location - sign.location);
  self = [super initWithString:[whole stringByReplacingCharactersInRange:interface withString:@""] relativeToURL:base];
  if (self) text = [whole copy];
  return self;
}

- (void)dealloc {
  [text release];
  [super dealloc];
}

- (NSString *)relativeString {
  return text;
}

- (NSString *)absoluteString {
  return text;
}

- (id)copyWithZone:(NSZone *)zone {
  return [self retain];
}

@end

namespace {

FaxPlatformPrintSettings *settings_of(PMPrintSettings settings) {
  return fax::object_of<FaxPlatformPrintSettings>(settings, [FaxPlatformPrintSettings class]);
}

FaxPlatformPrintSession *session_of(PMPrintSession session) {
  return fax::object_of<FaxPlatformPrintSession>(session, [FaxPlatformPrintSession class]);
}

FaxPlatformPrinter *printer_of(PMPrinter printer) {
  return fax::object_of<FaxPlatformPrinter>(printer, [FaxPlatformPrinter class]);
}

NSString *string_of(CFTypeRef value) { return fax::object_of<NSString>(value, [NSString class]); }

OSStatus set_value(FaxPlatformPrintSettings *settings, NSString *key, NSString *value, bool lock) {
  if ([settings->locked containsObject:key]) return kPMLocked;
  if (value == nil) {
    [settings->keys removeObject:key];
    [settings->values removeObjectForKey:key];
    return kPMNoError;
  }
  NSString *own_key = [[key copy] autorelease];
  NSString *own_value = [[value copy] autorelease];
  if ([settings->values objectForKey:own_key] == nil) [settings->keys addObject:own_key];
  [settings->values setObject:own_value forKey:own_key];
  if (lock) [settings->locked addObject:own_key];
  return kPMNoError;
}

// A new printer over the queue's attributes as the server gives them, nil when there is no such queue.
FaxPlatformPrinter *new_printer(NSString *name) {
  auto const queue = fax::to_utf8(name);
  // A slash would name an instance of a queue, and an empty name the default.
  if (!queue || queue->empty() || queue->find('/') != std::string::npos) return nil;
  auto const free_queue = [](cups_dest_t *found) { cupsFreeDests(1, found); };
  std::unique_ptr<cups_dest_t, decltype(free_queue)> const found(
      cupsGetNamedDest(CUPS_HTTP_DEFAULT, queue->c_str(), nullptr), free_queue);
  if (!found) return nil;
  auto const option = [&](char const *key) -> NSString * {
    char const *value = cupsGetOption(key, found->num_options, found->options);
    return value == nullptr || *value == '\0' ? nil : fax::to_string(value);
  };
  FaxPlatformPrinter *printer = [FaxPlatformPrinter new];
  NSString *title = option("printer-info");
  printer->queue = [name copy];
  printer->title = [title != nil ? title : name copy];
  printer->deviceURI = [option("device-uri") copy];
  return printer;
}

}  // namespace

OSStatus PMRetain(PMObject object) {
  if (object == nullptr) return kPMInvalidParameter;
  CFRetain(object);
  return kPMNoError;
}

OSStatus PMRelease(PMObject object) {
  if (object == nullptr) return kPMInvalidParameter;
  CFRelease(object);
  return kPMNoError;
}

OSStatus PMCreatePrintSettings(PMPrintSettings *settings) {
  if (settings == nullptr) return kPMInvalidParameter;
  *settings = pooled(__func__, nullptr,
                     [] { return reinterpret_cast<PMPrintSettings>([FaxPlatformPrintSettings new]); });
  return *settings != nullptr ? OSStatus(kPMNoError) : OSStatus(kPMInvalidParameter);
}

OSStatus PMPrintSettingsGetValue(PMPrintSettings settings, CFStringRef key, CFTypeRef *value) {
  if (value == nullptr) return kPMInvalidParameter;
  *value = nullptr;
  return fenced(__func__, kPMInvalidParameter, [&]() -> OSStatus {
    FaxPlatformPrintSettings *own = settings_of(settings);
    if (own == nil || string_of(key) == nil) return kPMInvalidParameter;
    *value = [own->values objectForKey:string_of(key)];
    return *value != nullptr ? kPMNoError : kPMKeyNotFound;
  });
}

OSStatus PMPrintSettingsSetValue(PMPrintSettings settings, CFStringRef key, CFTypeRef value, Boolean locked) {
  return pooled(__func__, kPMInvalidParameter, [&]() -> OSStatus {
    FaxPlatformPrintSettings *own = settings_of(settings);
    NSString *text = string_of(value);
    if (own == nil || string_of(key) == nil || (value != nullptr && text == nil)) return kPMInvalidParameter;
    return set_value(own, string_of(key), text, locked);
  });
}

OSStatus PMPrintSettingsCopyKeys(PMPrintSettings settings, CFArrayRef *keys) {
  if (keys == nullptr) return kPMInvalidParameter;
  *keys = pooled(__func__, nullptr, [&]() -> CFArrayRef {
    FaxPlatformPrintSettings *own = settings_of(settings);
    return own == nil ? nullptr : reinterpret_cast<CFArrayRef>([[NSArray alloc] initWithArray:own->keys]);
  });
  return *keys != nullptr ? OSStatus(kPMNoError) : OSStatus(kPMInvalidParameter);
}

OSStatus PMCreateSession(PMPrintSession *session) {
  if (session == nullptr) return kPMInvalidParameter;
  *session = pooled(__func__, nullptr, [] {
    FaxPlatformPrintSession *own = [FaxPlatformPrintSession new];
    own->destination = kPMDestinationPrinter;
    return reinterpret_cast<PMPrintSession>(own);
  });
  return *session != nullptr ? OSStatus(kPMNoError) : OSStatus(kPMInvalidParameter);
}

OSStatus PMSessionGetDestinationType(PMPrintSession session, PMPrintSettings settings, PMDestinationType *type) {
  if (type == nullptr) return kPMInvalidParameter;
  return fenced(__func__, kPMInvalidParameter, [&]() -> OSStatus {
    FaxPlatformPrintSession *own = session_of(session);
    if (own == nil || settings_of(settings) == nil) return kPMInvalidParameter;
    *type = own->destination;
    return kPMNoError;
  });
}

OSStatus PMSessionSetDestination(PMPrintSession session, PMPrintSettings settings, PMDestinationType type, CFStringRef,
                                 CFURLRef location) {
  return pooled(__func__, kPMInvalidParameter, [&]() -> OSStatus {
    FaxPlatformPrintSession *own = session_of(session);
    NSURL *place = fax::object_of<NSURL>(location, [NSURL class]);
    if (own == nil || settings_of(settings) == nil || (location != nullptr && place == nil)) return kPMInvalidParameter;
    if (type < kPMDestinationPrinter || type > kPMDestinationProcessPDF) return kPMInvalidParameter;
    own->destination = type;
    NSURL *old = own->location;
    own->location = [place copy];
    [old release];
    return kPMNoError;
  });
}

OSStatus PMSessionCopyDestinationLocation(PMPrintSession session, PMPrintSettings settings, CFURLRef *location) {
  if (location == nullptr) return kPMInvalidParameter;
  *location = nullptr;
  return pooled(__func__, kPMInvalidParameter, [&]() -> OSStatus {
    FaxPlatformPrintSession *own = session_of(session);
    if (own == nil || settings_of(settings) == nil) return kPMInvalidParameter;
    *location = reinterpret_cast<CFURLRef>([own->location copy]);
    return kPMNoError;
  });
}

PMPrinter PMPrinterCreateFromPrinterID(CFStringRef name) {
  return pooled(__func__, nullptr, [&] { return reinterpret_cast<PMPrinter>(new_printer(string_of(name))); });
}

CFStringRef PMPrinterGetID(PMPrinter printer) {
  return fenced(__func__, nullptr, [&]() -> CFStringRef {
    FaxPlatformPrinter *own = printer_of(printer);
    return own == nil ? nullptr : reinterpret_cast<CFStringRef>(own->queue);
  });
}

CFStringRef PMPrinterGetName(PMPrinter printer) {
  return fenced(__func__, nullptr, [&]() -> CFStringRef {
    FaxPlatformPrinter *own = printer_of(printer);
    return own == nil ? nullptr : reinterpret_cast<CFStringRef>(own->title);
  });
}

OSStatus PMPrinterCopyDeviceURI(PMPrinter printer, CFURLRef *uri) {
  if (uri == nullptr) return kPMInvalidParameter;
  *uri = nullptr;
  return pooled(__func__, kPMInvalidParameter, [&]() -> OSStatus {
    FaxPlatformPrinter *own = printer_of(printer);
    if (own == nil) return kPMInvalidParameter;
    *uri = CFURLCreateWithString(kCFAllocatorDefault, reinterpret_cast<CFStringRef>(own->deviceURI), nullptr);
    if (*uri == nullptr && own->deviceURI != nil)
      *uri = reinterpret_cast<CFURLRef>([[FaxPlatformScopedURL alloc] initWithString:own->deviceURI relativeToURL:nil]);
    return *uri != nullptr ? kPMNoError : kPMKeyNotFound;
  });
}

PMPrinter DirectFaxPrinterWithDeviceURI(PMPrinter printer, CFStringRef uri) {
  return pooled(__func__, nullptr, [&]() -> PMPrinter {
    FaxPlatformPrinter *own = printer_of(printer);
    if (own == nil || (uri != nullptr && string_of(uri) == nil)) return nullptr;
    FaxPlatformPrinter *other = [FaxPlatformPrinter new];
    other->queue = [own->queue copy];
    other->title = [own->title copy];
    other->deviceURI = [string_of(uri) copy];
    return reinterpret_cast<PMPrinter>(other);
  });
}
