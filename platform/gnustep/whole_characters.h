// UTF-16 text whose characters beyond the first plane are whole: the two halves of each stand together.
#pragma once

#include <cstddef>
#include <string_view>

namespace fax {

constexpr bool is_first_half(char16_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool is_second_half(char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; }

// Is the place before this unit between the halves of one character?
constexpr bool inside_character(std::u16string_view text, std::size_t place) {
  return place > 0 && place < text.size() && is_first_half(text[place - 1]) && is_second_half(text[place]);
}

// No half stands alone.
constexpr bool is_whole(std::u16string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (is_second_half(text[at])) return false;
    if (!is_first_half(text[at])) continue;
    if (++at == text.size() || !is_second_half(text[at])) return false;
  }
  return true;
}

}  // namespace fax
