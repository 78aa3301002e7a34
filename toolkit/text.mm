#import "toolkit/text.h"

#include "platform/bridge.h"

namespace fax::toolkit {

NSString *ns(std::string_view text) {
  if (NSString *made = to_string(text)) return made;
  return [[[NSString alloc] initWithBytes:text.data() length:text.size()
                                 encoding:NSISOLatin1StringEncoding] autorelease];
}

std::string utf8(id text) { return to_utf8([text description]).value_or(""); }

}  // namespace fax::toolkit
