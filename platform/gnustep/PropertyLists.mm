// NSPropertyListSerialization on damaged data and on objects that a format cannot hold: nil and an error, as on macOS.
// The toolkit's own readers raise, or end the process (platform/property_list.h), and take data that begins with a byte
// 0 or 1 for an archive of NSSerializer, which is no property list and has a reader of its own; its writers raise.
#import <Foundation/Foundation.h>

#include "platform/gnustep/repair.h"
#include "platform/property_list.h"

namespace {

bool is_safe(NSData *data) {
  std::string_view const bytes(static_cast<char const *>([data bytes]), [data length]);
  bool const archive = !bytes.empty() && (bytes[0] == 0 || bytes[0] == 1);
  return !archive && fax::is_safe_property_list(bytes);
}

id fail(NSString *reason, NSError **error) {
  if (error != nullptr) {
    *error = [NSError errorWithDomain:NSCocoaErrorDomain
                                 code:0
                             userInfo:[NSDictionary dictionaryWithObject:reason forKey:NSLocalizedDescriptionKey]];
  }
  return nil;
}

fax::Repair<id(NSData *, NSUInteger, NSPropertyListFormat *, NSError **)> list_with_data{
    "NSPropertyListSerialization", "propertyListWithData:options:format:error:",
    [](id self, SEL command, NSData *data, NSUInteger options, NSPropertyListFormat *format, NSError **error) -> id {
      if ([data isKindOfClass:[NSData class]] && !is_safe(data)) return fail(@"not a sound property list", error);
      try {
        return list_with_data(self, command, data, options, format, error);
      } catch (...) {
        return fail(@"damaged property list", error);
      }
    },
    fax::MethodOf::class_object};

fax::Repair<NSData *(id, NSPropertyListFormat, NSUInteger, NSError **)> data_with_list{
    "NSPropertyListSerialization", "dataWithPropertyList:format:options:error:",
    [](id self, SEL command, id list, NSPropertyListFormat format, NSUInteger options, NSError **error) -> NSData * {
      try {
        return data_with_list(self, command, list, format, options, error);
      } catch (...) {
        return fail(@"not a property list of that format", error);
      }
    },
    fax::MethodOf::class_object};

}  // namespace
