#include "gad/names.h"

#include "gad/text.h"

#include <unicode/uscript.h>
#include <unicode/utf8.h>

#include <array>

namespace fax::tool {
namespace {

bool family_comes_first(std::string_view family) {
  std::size_t position = 0;
  UChar32 first;
  U8_NEXT(family.data(), position, family.size(), first);
  UErrorCode error = U_ZERO_ERROR;
  UScriptCode const script = first < 0 ? USCRIPT_COMMON : uscript_getScript(first, &error);
  return script == USCRIPT_HAN || script == USCRIPT_HIRAGANA || script == USCRIPT_KATAKANA || script == USCRIPT_HANGUL;
}

}  // namespace

std::string joined_name(NameParts const &parts) {
  bool const family_first = !trimmed(parts.family).empty() && family_comes_first(trimmed(parts.family));
  std::array const order = family_first
                               ? std::array{parts.family, parts.given, parts.middle, parts.prefix, parts.suffix}
                               : std::array{parts.prefix, parts.given, parts.middle, parts.family, parts.suffix};
  std::string name;
  for (std::string_view part : order)
    if (std::string_view const text = trimmed(part); !text.empty()) name.append(name.empty() ? "" : " ").append(text);
  return name;
}

}  // namespace fax::tool
