#include "faxsetting/address_record.h"

#include <algorithm>

namespace fax {

namespace {

constexpr std::size_t kMaximumIndexKey = 20;  // bytes of UTF-8

constexpr bool is_high(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool is_low(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// The character that text begins with: its units and its bytes of UTF-8. Both 0 for half a surrogate pair and no text.
struct Extent {
  std::size_t units, bytes;
};

Extent first_character(std::u16string_view text) {
  if (text.empty() || is_low(text[0])) return {0, 0};
  if (is_high(text[0])) return text.size() > 1 && is_low(text[1]) ? Extent{2, 4} : Extent{0, 0};
  return {1, text[0] < 0x80 ? 1u : text[0] < 0x800 ? 2u : 3u};
}

bool is_valid(std::u16string_view text) {
  while (!text.empty()) {
    Extent const character = first_character(text);
    if (character.units == 0 || text[0] == 0) return false;
    text.remove_prefix(character.units);
  }
  return true;
}

template <std::size_t Units>
bool put(char16_t (&field)[Units], std::u16string_view text) {
  if (text.size() >= Units || !is_valid(text)) return false;
  std::copy(text.begin(), text.end(), field);
  field[text.size()] = 0;
  return true;
}

}  // namespace

std::u16string_view index_key(std::u16string_view name) {
  std::size_t units = 0;
  std::size_t bytes = 0;
  for (;;) {
    Extent const next = first_character(name.substr(units));
    bytes += next.bytes;
    if (next.units == 0 || bytes > kMaximumIndexKey) return name.substr(0, units);
    units += next.units;
  }
}

Status fill_record(MyFax &record, std::u16string_view name, std::optional<std::u16string_view> phone_number,
                   std::int64_t registered) {
  if (name.empty()) return kNoName;
  if (!put(record.name, name) || !phone_number || !put(record.phone_number, *phone_number)) return kTextUnfit;
  std::u16string_view const key = index_key(name);
  if (key.empty() || !put(record.index_key, key)) return kTextUnfit;
  record.registered = registered;
  return kSuccess;
}

}  // namespace fax
