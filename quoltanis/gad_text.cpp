#include "quoltanis/gad_file.h"
#include "quoltanis/unicode.h"

#include <clocale>
#include <cwchar>
#include <cwctype>
#include <locale.h>

namespace fax::gad {
namespace {

// Not the locale of the process: an address book must not change its mind with the language of its reader.
locale_t letters() {
  static locale_t const all = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
  return all;
}

// By way of the capital, so that letters with two small forms (s and long s, both sigmas) become one.
char16_t fold_unit(char16_t unit) {
  if (unit < 0x80 || letters() == nullptr) return unit >= u'A' && unit <= u'Z' ? unit + (u'a' - u'A') : unit;
  return static_cast<char16_t>(towlower_l(towupper_l(unit, letters()), letters()));
}

}  // namespace

std::string fold(std::string_view name) {
  std::string folded(name);
  bool ascii = true;
  for (char &c : folded) {
    ascii = ascii && static_cast<unsigned char>(c) < 0x80;
    if (c >= 'A' && c <= 'Z') c += 'a' - 'A';
  }
  auto const units = ascii ? std::nullopt : units_in(folded);
  if (!units) return folded;
  std::u16string wide(*units + 1, u'\0');
  if (!fill_field(wide, folded).whole) return folded;
  wide.pop_back();
  for (char16_t &unit : wide) unit = fold_unit(unit);
  return utf8_of(wide).value_or(folded);
}

std::string index_key(std::string_view name) { return std::string(utf8_start(name, 20)); }

}  // namespace fax::gad
