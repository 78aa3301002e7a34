// The toolkit's reader of property lists, as the product calls it.
#include "platform/bridge.h"

#include <string_view>

// An exception ends the process: the product's repair of the class lets none out.
bool toolkit_reads(std::string_view list) {
  fax::Pool const pool;
  NSData *data = [NSData dataWithBytes:list.data() length:list.size()];
  id const object = [NSPropertyListSerialization propertyListWithData:data options:0 format:NULL error:NULL];
  if (object == nil) return false;
  // Writing it goes through every part.
  [NSPropertyListSerialization dataWithPropertyList:object format:NSPropertyListXMLFormat_v1_0 options:0 error:NULL];
  return true;
}
