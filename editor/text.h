// Texts of the editor, and strings between C++ and Foundation.
#pragma once
#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

// The text in the user's language (table "Localizable" of the application); the English text is the key.
NSString *EditorText(NSString *english);
// The same, used as a format (%@ %lu as NSString takes them).
NSString *EditorFormat(NSString *english, ...);

namespace fax::editor {

// Autoreleased, never nil: bytes that are no UTF-8 are read as Latin-1.
NSString *ns(std::string_view text);
// "" for nil, and for half a surrogate pair.
std::string utf8(NSString *text);

}  // namespace fax::editor
