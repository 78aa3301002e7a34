#include "quoltanis/unicode.h"

namespace fax {
namespace {

constexpr bool high_half(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool low_half(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

struct Decoded {
  char32_t character;
  std::size_t length;  // 0: the first byte begins no character
};

constexpr Decoded invalid{U'\xFFFD', 0};

Decoded decode(std::string_view text) {
  auto const byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
  unsigned const lead = byte(0);
  if (lead < 0x80) return {lead, 1};
  std::size_t const length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return invalid;
  char32_t character = lead & (0x7Fu >> length);
  for (std::size_t at = 1; at < length; ++at) {
    if ((byte(at) & 0xC0) != 0x80) return invalid;
    character = character << 6 | (byte(at) & 0x3F);
  }
  bool const overlong = (length == 3 && character < 0x800) || (length == 4 && character < 0x10000);
  bool const outside = character > 0x10FFFF || (character >= 0xD800 && character < 0xE000);
  return overlong || outside ? invalid : Decoded{character, length};
}

void append(std::string &utf8, char32_t character) {
  auto const put = [&](char32_t byte) { utf8 += static_cast<char>(byte); };
  auto const rest = [&](int shift) { put(0x80 | (character >> shift & 0x3F)); };
  if (character < 0x80) {
    put(character);
  } else if (character < 0x800) {
    put(0xC0 | character >> 6);
    rest(0);
  } else if (character < 0x10000) {
    put(0xE0 | character >> 12);
    rest(6);
    rest(0);
  } else {
    put(0xF0 | character >> 18);
    rest(12);
    rest(6);
    rest(0);
  }
}

// Writes what text begins with that is ASCII and not U+0000; how many characters.
std::size_t fill_ascii(char16_t *field, std::string_view text) {
  std::size_t at = 0;
  for (; at < text.size() && static_cast<signed char>(text[at]) > 0; ++at) field[at] = static_cast<char16_t>(text[at]);
  return at;
}

}  // namespace

std::optional<std::string> utf8_of(std::u16string_view units) {
  std::string utf8;
  utf8.reserve(units.size());
  for (std::size_t at = 0; at < units.size(); ++at) {
    char32_t character = units[at];
    if (low_half(units[at])) return std::nullopt;
    if (high_half(units[at])) {
      if (++at == units.size() || !low_half(units[at])) return std::nullopt;
      character = 0x10000 + ((character - 0xD800) << 10) + (units[at] - 0xDC00);
    }
    append(utf8, character);
  }
  return utf8;
}

std::optional<std::size_t> units_in(std::string_view utf8) {
  std::size_t units = 0;
  while (!utf8.empty()) {
    auto const [character, length] = decode(utf8);
    if (length == 0) return std::nullopt;
    units += character >= 0x10000 ? 2 : 1;
    utf8.remove_prefix(length);
  }
  return units;
}

std::string_view utf8_start(std::string_view utf8, std::size_t max_bytes) {
  if (utf8.size() <= max_bytes) return utf8;
  std::size_t end = max_bytes;
  while (end > 0 && (static_cast<unsigned char>(utf8[end]) & 0xC0) == 0x80) --end;
  return utf8.substr(0, end);
}

Filled fill_field(std::span<char16_t> field, std::string_view utf8) {
  std::size_t units = 0;
  bool valid = true;
  std::size_t const room = field.size() - 1;
  while (true) {
    std::size_t const ascii = fill_ascii(field.data() + units, utf8.substr(0, room - units));
    units += ascii;
    utf8.remove_prefix(ascii);
    if (utf8.empty() || utf8.front() == '\0') break;
    auto const [character, length] = decode(utf8);
    std::size_t const needed = character >= 0x10000 ? 2 : 1;
    if (units + needed > room) break;
    if (needed == 2) {
      field[units++] = static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
      field[units++] = static_cast<char16_t>(0xDC00 + (character & 0x3FF));
    } else {
      field[units++] = static_cast<char16_t>(character);
    }
    valid = valid && length != 0;
    utf8.remove_prefix(length == 0 ? 1 : length);
  }
  field[units] = 0;
  return {units, valid && utf8.empty()};
}

}  // namespace fax
