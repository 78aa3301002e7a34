#import "host/text.h"

#include <cstdarg>

NSString *HostText(NSString *english) {
  return [[NSBundle mainBundle] localizedStringForKey:english value:english table:@"Localizable"];
}

NSString *HostFormat(NSString *english, ...) {
  va_list arguments;
  va_start(arguments, english);
  NSString *text = [[[NSString alloc] initWithFormat:HostText(english) arguments:arguments] autorelease];
  va_end(arguments);
  return text;
}

namespace fax::host {

NSString *ns(std::string_view text) {
  NSString *made = [[[NSString alloc] initWithBytes:text.data() length:text.size()
                                           encoding:NSUTF8StringEncoding] autorelease];
  if (made) return made;
  return [[[NSString alloc] initWithBytes:text.data() length:text.size()
                                 encoding:NSISOLatin1StringEncoding] autorelease];
}

std::string utf8(id text) {
  if (!text) return {};
  char const *bytes = [[text description] UTF8String];
  return bytes ? bytes : "";
}

}  // namespace fax::host
