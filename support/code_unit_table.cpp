#include "support/code_unit_table.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace fax {

void mark_code_units(std::uint8_t *table, char16_t const *ranges) {
  std::memset(table, 0, kCodeUnitTableSize);
  if (ranges == nullptr) return;
  for (; ranges[0] != 0; ranges += 2) {
    std::size_t const first = ranges[0], last = ranges[1];
    if (first <= last) std::memset(table + first, 1, last - first + 1);
  }
}

void set_code_unit_table(std::uint8_t **table, char16_t const *ranges) {
  if (*table == nullptr) *table = static_cast<std::uint8_t *>(std::malloc(kCodeUnitTableSize));
  if (*table != nullptr) mark_code_units(*table, ranges);
}

std::size_t utf8_length(std::u16string_view text) {
  std::size_t length = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    bool const paired = text[i] >= 0xD800 && text[i] <= 0xDBFF && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
                        text[i + 1] <= 0xDFFF;
    if (paired) {
      length += 4;
      ++i;
    } else {
      length += text[i] < 0x80 ? 1 : text[i] < 0x800 ? 2 : 3;
    }
  }
  return length;
}

bool TextRule::accepts(std::u16string_view text) const {
  if (text.size() > max_length || utf8_length(text) > max_length) return false;
  if (unacceptable != nullptr)
    return std::none_of(text.begin(), text.end(), [this](char16_t unit) { return unacceptable[unit] != 0; });
  if (acceptable != nullptr)
    return std::all_of(text.begin(), text.end(), [this](char16_t unit) { return acceptable[unit] != 0; });
  return true;
}

}  // namespace fax
