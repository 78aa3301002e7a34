// Which texts a field takes: a limit on their length and tables of UTF-16 code units.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fax {

// One byte for each UTF-16 code unit: 1 where it is marked.
inline constexpr std::size_t kCodeUnitTableSize = 65536;

// Clears the table of kCodeUnitTableSize bytes, then marks each range of the list: pairs (first, last), both inclusive,
// up to a pair whose first is 0. A pair whose first is above its last marks nothing. ranges NULL is an empty list.
void mark_code_units(std::uint8_t *table, char16_t const *ranges);

// The table of a range list in *table, which is made when it is NULL (release it with free). Without memory *table
// stays NULL.
void set_code_unit_table(std::uint8_t **table, char16_t const *ranges);

// In bytes; an unpaired surrogate counts as 3.
std::size_t utf8_length(std::u16string_view text);

struct TextRule {
  std::size_t max_length;            // the most UTF-16 units, and the most UTF-8 bytes
  std::uint8_t const *acceptable;    // tables of kCodeUnitTableSize bytes, or NULL: the units allowed
  std::uint8_t const *unacceptable;  // and the units refused; where there is this one, the other is not read

  bool accepts(std::u16string_view text) const;
};

}  // namespace fax
