#include "gad/text.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>

#include <array>
#include <cstdint>
#include <cstdio>

namespace fax::tool {
namespace {

constexpr std::size_t longest_shown = 60;  // characters

struct Character {
  std::int32_t code;  // below 0: bytes that are no UTF-8
  std::string_view bytes;
};

// Calls visit with each character of text while it answers true.
template <typename Visit>
void for_each_character(std::string_view text, Visit visit) {
  auto const *bytes = reinterpret_cast<std::uint8_t const *>(text.data());
  std::size_t position = 0;
  while (position < text.size()) {
    std::size_t const start = position;
    UChar32 code;
    U8_NEXT(bytes, position, text.size(), code);
    if (!visit(Character{code, text.substr(start, position - start)})) return;
  }
}

// Format characters turn the reading direction or hide: they have no place in a message.
bool is_plain(std::int32_t code) {
  if (code < 0 || u_iscntrl(code) || code == 0x2028 || code == 0x2029) return false;
  return u_charType(code) != U_FORMAT_CHAR || code == 0x200C || code == 0x200D;
}

void append_hexadecimal(std::string &result, std::string_view bytes) {
  for (unsigned char byte : bytes) {
    std::array<char, 5> code{};
    std::snprintf(code.data(), code.size(), "\\x%02X", byte);
    result += code.data();
  }
}

void append_escaped(std::string &result, Character const &character) {
  switch (character.code) {
    case '\t': result += "\\t"; return;
    case '\n': result += "\\n"; return;
    case '\r': result += "\\r"; return;
    case '\\': result += "\\\\"; return;
    default: break;
  }
  if (character.code >= 0 && !u_iscntrl(character.code))
    result += character.bytes;
  else
    append_hexadecimal(result, character.bytes);
}

}  // namespace

bool is_utf8(std::string_view text) {
  bool valid = true;
  for_each_character(text, [&](Character const &character) { return valid = character.code >= 0; });
  return valid;
}

std::size_t units(std::string_view text) {
  std::size_t count = 0;
  for_each_character(text, [&](Character const &character) {
    count += character.code > 0xFFFF ? 2 : 1;
    return true;
  });
  return count;
}

std::string comparable(std::string_view text) {
  UErrorCode error = U_ZERO_ERROR;
  icu::Normalizer2 const *normalizer = icu::Normalizer2::getNFKCCasefoldInstance(error);
  icu::UnicodeString const source = icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), int(text.size())));
  icu::UnicodeString const folded = U_SUCCESS(error) ? normalizer->normalize(source, error) : source;
  icu::UnicodeString kept;
  for (std::int32_t i = 0; i < folded.length(); i = folded.moveIndex32(i, 1))
    if (u_isalnum(folded.char32At(i))) kept.append(folded.char32At(i));
  std::string result;
  kept.toUTF8String(result);
  return result;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view white = " \t\r\n\v\f";
  std::size_t const first = text.find_first_not_of(white);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(white) - first + 1);
}

std::size_t columns_of(std::string_view text) {
  std::size_t columns = 0;
  for_each_character(text, [&](Character const &character) {
    int const width = u_getIntPropertyValue(character.code, UCHAR_EAST_ASIAN_WIDTH);
    bool const wide = width == U_EA_WIDE || width == U_EA_FULLWIDTH;
    int const category = u_charType(character.code);
    bool const none = category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR;
    columns += none ? 0 : wide ? 2 : 1;
    return true;
  });
  return columns;
}

std::string in_quotes(std::string_view text) {
  std::string result = "\"";
  std::size_t count = 0;
  for_each_character(text, [&](Character const &character) {
    if (++count > longest_shown) {
      result += "...";
      return false;
    }
    if (is_plain(character.code))
      result += character.bytes;
    else
      append_hexadecimal(result, character.bytes);
    return true;
  });
  return result + '"';
}

std::string escaped(std::string_view text) {
  std::string result;
  for_each_character(text, [&](Character const &character) {
    append_escaped(result, character);
    return true;
  });
  return result;
}

}  // namespace fax::tool
