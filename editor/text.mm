#import "editor/text.h"

#include <cstdarg>

#include "platform/bridge.h"

NSString *EditorText(NSString *english) {
  return [[NSBundle mainBundle] localizedStringForKey:english value:english table:@"Localizable"];
}

NSString *EditorFormat(NSString *english, ...) {
  va_list arguments;
  va_start(arguments, english);
  NSString *text = [[[NSString alloc] initWithFormat:EditorText(english) arguments:arguments] autorelease];
  va_end(arguments);
  return text;
}

namespace fax::editor {

NSString *ns(std::string_view text) {
  if (NSString *made = to_string(text)) return made;
  return [[[NSString alloc] initWithBytes:text.data() length:text.size()
                                 encoding:NSISOLatin1StringEncoding] autorelease];
}

std::string utf8(NSString *text) { return to_utf8(text).value_or(""); }

}  // namespace fax::editor
