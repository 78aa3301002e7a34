// A person's name from its parts.
#pragma once

#include <string>
#include <string_view>

namespace fax::tool {

struct NameParts {
  std::string_view prefix, given, middle, family, suffix;
};

// As people write it: "Dr. Anna Maria Berg"; the family first where its name is in Chinese characters, kana or Hangul.
// Blank parts are left out, and white space around a part.
std::string joined_name(NameParts const &parts);

}  // namespace fax::tool
