// Texts of the dialog, and strings between C++ and Foundation.
#pragma once
#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

// The text in the user's language (table "Localizable" of the application); the English text is the key.
NSString *HostText(NSString *english);
// The same, used as a format (%@ %d as NSString takes them).
NSString *HostFormat(NSString *english, ...);

namespace fax::host {

// Autoreleased, never nil: bytes that are no UTF-8 are read as Latin-1.
NSString *ns(std::string_view text);
// "" for nil. Any object: what it describes itself as.
std::string utf8(id text);

}  // namespace fax::host
