// Which texts a field takes, and where a buffer of UTF-16 ends. Input: a list of ranges, a limit, then the text.
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "support/code_unit_table.h"
#include "support/string_encoding.h"

#include <algorithm>
#include <string>
#include <vector>

namespace {

std::u16string units_of(std::string_view bytes) {
  std::u16string units(bytes.size() / 2, u'\0');
  std::copy_n(bytes.data(), units.size() * 2, reinterpret_cast<char *>(units.data()));
  return units;
}

// What the table must say, by the list itself.
bool listed(std::u16string const &ranges, char16_t unit) {
  for (std::size_t at = 0; at + 1 < ranges.size() && ranges[at] != 0; at += 2)
    if (unit >= ranges[at] && unit <= ranges[at + 1]) return true;
  return false;
}

// By code points instead of units.
std::size_t utf8_bytes(std::u16string const &text) {
  std::size_t bytes = 0;
  for (std::size_t at = 0; at < text.size();) {
    std::uint32_t code = text[at++];
    if (code >> 10 == 0x36 && at < text.size() && text[at] >> 10 == 0x37)
      code = 0x10000 + ((code & 0x3FF) << 10) + (text[at++] & 0x3FF);
    bytes += code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
  }
  return bytes;
}

void check_rule(std::u16string const &ranges, std::uint8_t const *table, std::size_t limit, std::u16string const &text) {
  bool const fits = text.size() <= limit && utf8_bytes(text) <= limit;
  bool const all = std::ranges::all_of(text, [&](char16_t unit) { return listed(ranges, unit); });
  bool const none = std::ranges::none_of(text, [&](char16_t unit) { return listed(ranges, unit); });
  FUZZ_CHECK(fax::utf8_length(text) == utf8_bytes(text));
  FUZZ_CHECK((fax::TextRule{limit, nullptr, nullptr}.accepts(text)) == fits);
  FUZZ_CHECK((fax::TextRule{limit, table, nullptr}.accepts(text)) == (fits && all));
  FUZZ_CHECK((fax::TextRule{limit, nullptr, table}.accepts(text)) == (fits && none));
  FUZZ_CHECK((fax::TextRule{limit, table, table}.accepts(text)) == (fits && none));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  std::u16string ranges = units_of(input.text());
  if (ranges.size() % 2 != 0) ranges.pop_back();
  ranges += {u'\0', u'\0'};
  std::size_t const limit = input.byte();
  std::u16string const text = units_of(input.rest());

  std::uint8_t *table = nullptr;
  fax::set_code_unit_table(&table, reinterpret_cast<char16_t const *>(ranges.data()));
  if (table != nullptr) check_rule(ranges, table, limit, text);
  std::free(table);

  // Exactly as large as it is said to be.
  std::vector<UniChar> const buffer(text.begin(), text.end());
  auto const end = std::find(buffer.begin(), buffer.end(), 0);
  FUZZ_CHECK(unicharLength(buffer.data(), SInt32(buffer.size() * 2)) ==
             (end == buffer.end() ? -1 : SInt32(end - buffer.begin())));
  return 0;
}
