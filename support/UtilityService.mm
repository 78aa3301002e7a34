#import "support/UtilityService.h"

#include "support/cf_owned.h"
#include "support/string_encoding.h"

#include <CoreServices/CoreServices.h>
#include <SystemConfiguration/SystemConfiguration.h>

namespace {

using fax::CFOwned;

constexpr uint32_t kNotComputed = 0xFFFFFFFF;
uint32_t sandbox_flag = kNotComputed;

// object when it is of that class, else nil.
id checked(id object, Class wanted) { return [object isKindOfClass:wanted] ? object : nil; }

id first_of(NSArray *array) { return [array count] > 0 ? [array objectAtIndex:0] : nil; }

// Takes the registration of a page inside a localisation folder out of the help viewer's preferences. NO, with nothing
// changed, when there is none or the preferences are not of the shape that the help viewer writes.
BOOL remove_registration(NSMutableDictionary *preferences, NSString *identifier) {
  NSMutableDictionary *books = checked([preferences objectForKey:@"RegisteredBooks"], [NSMutableDictionary class]);
  NSString *key = nil;
  NSEnumerator *keys = [[books allKeys] objectEnumerator];
  while ((key = [keys nextObject]) != nil && ![key isEqual:identifier]) {
  }
  if (key == nil) return NO;
  NSArray *registrations = checked([books objectForKey:key], [NSArray class]);
  NSDictionary *registration = checked(first_of(registrations), [NSDictionary class]);
  NSString *url = checked([registration objectForKey:@"url"], [NSString class]);
  if (url == nil || [url rangeOfString:@".lproj"].location == NSNotFound) return NO;
  [books removeObjectForKey:key];
  NSMutableArray *order = checked([preferences objectForKey:@"RegistrationOrder"], [NSMutableArray class]);
  NSUInteger const place = [order indexOfObject:identifier];
  if (order != nil && place != NSNotFound) [order removeObjectAtIndex:place];
  return YES;
}

// The preferences as a dictionary with mutable containers; nil when the file cannot be read or holds anything else.
NSMutableDictionary *read_preferences(NSURL *file) {
  NSData *data = [NSData dataWithContentsOfURL:file];
  if (data == nil) return nil;
  NSPropertyListFormat format;
  NSString *error = nil;
  id preferences = [NSPropertyListSerialization propertyListFromData:data
                                                    mutabilityOption:NSPropertyListMutableContainers
                                                              format:&format
                                                    errorDescription:&error];
  return checked(preferences, [NSMutableDictionary class]);
}

void write_preferences(NSDictionary *preferences, NSURL *file) {
  NSPropertyListFormat const format = NSPropertyListXMLFormat_v1_0;
  if (![NSPropertyListSerialization propertyList:preferences isValidForFormat:format]) NSLog(@"Illegal Property List.");
  NSString *error = nil;
  NSData *data = [NSPropertyListSerialization dataFromPropertyList:preferences format:format errorDescription:&error];
  if (data != nil) [data writeToURL:file atomically:YES];
}

// The dictionary under a key of the dynamic store, autoreleased; nil when there is none.
NSDictionary *stored(SCDynamicStoreRef store, NSString *key) {
  return checked([(id)SCDynamicStoreCopyValue(store, (CFStringRef)key) autorelease], [NSDictionary class]);
}

// A new array of the groups named "admin"; null, with a line in the log, when the Identity Services fail.
CFOwned<CFArrayRef> copy_admin_groups(CSIdentityAuthorityRef authority) {
  CFOwned<CSIdentityQueryRef> const query(CSIdentityQueryCreateForName(
      kCFAllocatorDefault, CFSTR("admin"), kCSIdentityQueryStringEquals, kCSIdentityClassGroup, authority));
  if (!query) {
    NSLog(@"UtilityService - CSIdentityQueryCreateForName failed.");
    return nullptr;
  }
  if (!CSIdentityQueryExecute(query.get(), 0, nullptr)) {
    NSLog(@"UtilityService - CSIdentityQueryExecute failed.");
    return nullptr;
  }
  CFOwned<CFArrayRef> groups(CSIdentityQueryCopyResults(query.get()));
  CSIdentityQueryStop(query.get());
  if (!groups) NSLog(@"UtilityService - CSIdentityQueryCopyResults failed.");
  return groups;
}

BOOL is_member(NSString *user, CSIdentityRef group) {
  CFOwned<CSIdentityQueryRef> const query(CSIdentityCreateGroupMembershipQuery(kCFAllocatorDefault, group));
  if (!query) {
    NSLog(@"UtilityService - CSIdentityCreateGroupMembershipQuery failed.");
    return NO;
  }
  CSIdentityQueryExecute(query.get(), 0, nullptr);
  CFOwned<CFArrayRef> const members(CSIdentityQueryCopyResults(query.get()));
  BOOL found = NO;
  CFIndex const count = members ? CFArrayGetCount(members.get()) : 0;
  for (CFIndex i = 0; i < count && !found; ++i) {
    CSIdentityRef const member = (CSIdentityRef)CFArrayGetValueAtIndex(members.get(), i);
    NSString *name = (NSString *)CSIdentityGetPosixName(member);
    found = [name length] > 0 && [name isEqualToString:user];
  }
  CSIdentityQueryStop(query.get());
  return found;
}

}  // namespace

@implementation UtilityService

+ (NSString *)stringFromUnicodeBuf:(unichar const *)buffer ofLength:(int)size {
  if (buffer == NULL || size < 1) return nil;
  SInt32 const length = unicharLength(buffer, size);
  if (length < 1) return nil;
  return [[[NSString alloc] initWithBytes:buffer
                                   length:2 * NSUInteger(length)
                                 encoding:NSUTF16LittleEndianStringEncoding] autorelease];
}

+ (BOOL)isSandboxed {
  if (sandbox_flag == kNotComputed) {
    NSString *home = NSHomeDirectory();
    sandbox_flag = home != nil && [home rangeOfString:@"Containers"].location != NSNotFound;
  }
  return sandbox_flag != 0;
}

+ (void)removeHelpCacheForBundleID:(NSString *)identifier {
  NSString *path = [@"~/Library/Preferences/com.apple.help.plist" stringByExpandingTildeInPath];
  if (identifier == nil || path == nil || ![[NSFileManager defaultManager] fileExistsAtPath:path]) return;
  NSURL *file = [NSURL fileURLWithPath:path isDirectory:NO];
  NSMutableDictionary *preferences = read_preferences(file);
  if (preferences != nil && remove_registration(preferences, identifier)) write_preferences(preferences, file);
}

+ (BOOL)checkIfAdminUser:(NSString *)user {
  if (user == nil) return NO;
  CSIdentityAuthorityRef const authority = CSGetLocalIdentityAuthority();
  if (authority == nullptr) return NO;
  CFOwned<CFArrayRef> const groups = copy_admin_groups(authority);
  if (!groups || CFArrayGetCount(groups.get()) == 0) return NO;
  return is_member(user, (CSIdentityRef)CFArrayGetValueAtIndex(groups.get(), 0));
}

+ (NSString *)copyHostIPv4Address {
  CFOwned<SCDynamicStoreRef> const store(
      SCDynamicStoreCreate(kCFAllocatorDefault, CFSTR("systempreference"), nullptr, nullptr));
  if (!store) return nil;
  NSDictionary *global = stored(store.get(), @"State:/Network/Global/IPv4");
  NSString *interface = checked([global objectForKey:@"PrimaryInterface"], [NSString class]);
  NSString *service = checked([global objectForKey:@"PrimaryService"], [NSString class]);
  if (interface == nil || service == nil) return nil;
  NSDictionary *link =
      stored(store.get(), [NSString stringWithFormat:@"State:/Network/Interface/%@/Link", interface]);
  id active = [link objectForKey:@"Active"];
  if (active == nil || !CFEqual((CFTypeRef)active, kCFBooleanTrue)) return nil;
  NSDictionary *ipv4 = stored(store.get(), [NSString stringWithFormat:@"State:/Network/Service/%@/IPv4", service]);
  NSArray *addresses = checked([ipv4 objectForKey:@"Addresses"], [NSArray class]);
  NSString *address = checked(first_of(addresses), [NSString class]);
  return address != nil ? [[NSString alloc] initWithString:address] : nil;
}

@end
