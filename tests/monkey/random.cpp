#include "random.h"

namespace monkey {

std::string a_name(Random &random) {
  static std::string const names[] = {
      "Ann", "ann", "ANN", "Bob", "bob", "Zo\u00eb", "ZO\u00cb", "\u00c9va", "\u00e9va", "Andr\u00e9", "Andre\u0301",
      "\u65e5\u672c\u8a9e", "\u03a9mega", "\u03c9mega", "\U0001F600", "Group", "Board", " ", "a\tb", "x,y=z",
      std::string(64, 'n'), std::string(65, 'w'), "stra\u00dfe", "STRASSE", "\u0130stanbul"};
  std::string const &name = random.pick(names);
  return random.one_in(3) ? name + std::to_string(random.below(40)) : name;
}

std::string a_number(Random &random) {
  static std::string const numbers[] = {"1", "2", "22", "0123", "#31#", "*-:=", "+46 8", "12a", std::string(50, '7'),
                                        std::string(51, '8')};
  return random.one_in(4) ? random.pick(numbers) : std::to_string(random.below(60));
}

}  // namespace monkey
