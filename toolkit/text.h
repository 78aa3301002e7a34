// Texts between C++ and Foundation, for the windows of our programs. What they say comes from texts/: ns(tr("Print")).
#pragma once
#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

#include "texts/texts.h"

namespace fax::toolkit {

using fax::tr;
using fax::tr_n;

// Autoreleased, never nil: bytes that are no UTF-8 are read as Latin-1.
NSString *ns(std::string_view text);
// "" for nil, and for half a surrogate pair. Any object: what it describes itself as.
std::string utf8(id text);

}  // namespace fax::toolkit
