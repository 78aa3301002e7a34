// The dynamic store of System Configuration for GNUstep, read only, over the kernel's routes and interfaces.
//
// Keys that have a value (NAME is an interface's name; on Linux an interface is its own service):
//   State:/Network/Global/IPv4            PrimaryInterface, PrimaryService, Router of the default route with the least
//                                         metric whose interface is up and running (no Router on a point-to-point link)
//   State:/Network/Interface/NAME/Link    Active: is the interface up and running
//   State:/Network/Service/NAME/IPv4      InterfaceName, Addresses (dotted quads, the kernel's order); none: no value
#pragma once
#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const struct __SCDynamicStore *SCDynamicStoreRef;
typedef void (*SCDynamicStoreCallBack)(SCDynamicStoreRef store, CFArrayRef keys, void *info);
typedef struct {
  CFIndex version;
  void *info;
  const void *(*retain)(const void *info);
  void (*release)(const void *info);
  CFStringRef (*copyDescription)(const void *info);
} SCDynamicStoreContext;
typedef CFTypeRef CFPropertyListRef;

// A session that the caller releases. callback and context are not used here and should be NULL.
CF_EXPORT SCDynamicStoreRef SCDynamicStoreCreate(CFAllocatorRef allocator, CFStringRef name,
                                                 SCDynamicStoreCallBack callback, SCDynamicStoreContext *context);
// A new dictionary, or NULL when the key has no value now.
CF_EXPORT CFPropertyListRef SCDynamicStoreCopyValue(SCDynamicStoreRef store, CFStringRef key);

#ifdef __cplusplus
}
#endif
