#include <SystemConfiguration/SystemConfiguration.h>

#include "platform/bridge.h"
#include "platform/routes.h"

using fax::pooled;

// The store keeps nothing: every value is read from the kernel when it is asked for.
@interface FaxPlatformDynamicStore : NSObject
@end

@implementation FaxPlatformDynamicStore
@end

namespace {

NSString *inner_name(NSString *key, NSString *before, NSString *behind) {
  NSUInteger const around = [before length] + [behind length];
  if (![key hasPrefix:before] || ![key hasSuffix:behind] || [key length] <= around) return nil;
  return [key substringWithRange:NSMakeRange([before length], [key length] - around)];
}

fax::Interface const *named(std::vector<fax::Interface> const &interfaces, NSString *name) {
  auto const text = fax::to_utf8(name);
  return text ? fax::find_interface(interfaces, *text) : nullptr;
}

NSDictionary *value_for(NSString *key) {
  auto const interfaces = fax::system_interfaces();
  if ([key isEqualToString:@"State:/Network/Global/IPv4"]) {
    auto const route = fax::default_route(fax::system_route_table(), interfaces);
    NSString *name = route ? fax::to_string(route->interface) : nil;
    if (name == nil) return nil;
    NSMutableDictionary *value = [NSMutableDictionary dictionaryWithObjectsAndKeys:name, @"PrimaryInterface", name,
                                                                                   @"PrimaryService", nil];
    if (!route->router.empty()) [value setObject:fax::to_string(route->router) forKey:@"Router"];
    return value;
  }
  if (NSString *name = inner_name(key, @"State:/Network/Interface/", @"/Link")) {
    auto const *interface = named(interfaces, name);
    return interface == nullptr ? nil
                                : [NSDictionary dictionaryWithObject:[NSNumber numberWithBool:interface->active]
                                                              forKey:@"Active"];
  }
  if (NSString *name = inner_name(key, @"State:/Network/Service/", @"/IPv4")) {
    auto const *interface = named(interfaces, name);
    if (interface == nullptr || interface->addresses.empty()) return nil;
    NSMutableArray *addresses = [NSMutableArray array];
    for (auto const &address : interface->addresses) [addresses addObject:fax::to_string(address)];
    return [NSDictionary dictionaryWithObjectsAndKeys:name, @"InterfaceName", addresses, @"Addresses", nil];
  }
  return nil;
}

}  // namespace

SCDynamicStoreRef SCDynamicStoreCreate(CFAllocatorRef, CFStringRef, SCDynamicStoreCallBack, SCDynamicStoreContext *) {
  return pooled(__func__, nullptr, [] { return reinterpret_cast<SCDynamicStoreRef>([FaxPlatformDynamicStore new]); });
}

CFPropertyListRef SCDynamicStoreCopyValue(SCDynamicStoreRef, CFStringRef key) {
  return pooled(__func__, nullptr, [&]() -> CFPropertyListRef {
    NSString *text = fax::object_of<NSString>(key, [NSString class]);
    return text == nil ? nil : [value_for(text) retain];
  });
}
