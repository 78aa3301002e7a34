// The toolkit's reader of property lists, as the product calls it.
#include "platform/bridge.h"

#include <string_view>

bool toolkit_reads(std::string_view list) {
  return fax::pooled("toolkit_reads", false, [&] {
    NSData *data = [NSData dataWithBytes:list.data() length:list.size()];
    id const object = [NSPropertyListSerialization propertyListWithData:data options:0 format:NULL error:NULL];
    // Every part is reached, as the writer has to.
    if (object != nil)
      [NSPropertyListSerialization dataWithPropertyList:object
                                                 format:NSPropertyListBinaryFormat_v1_0
                                                options:0
                                                  error:NULL];
    return object != nil;
  });
}
