// Text without its case, in a form whose bytes compare and contain as the toolkit's case-insensitive operations do.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace fax {

// One UTF-16 unit as the toolkit sees it.
struct FoldedUnit {
  // Its canonical decomposition, each unit in lower case.
  std::array<char16_t, 4> units{};
  std::uint8_t count = 0;
};

// The fold of a text: every unit is decomposed canonically, what it decomposes to is put into lower case unit by unit
// (sharp s stays one letter, final sigma stays apart from sigma), and written as UTF-8 of a code of its own: that of the
// unit, or 0x10000 more for a unit that continues a letter (accents, the second half of a surrogate pair). So
//  - the order of two folds' bytes is the order in which the toolkit compares the texts letter by letter, a letter with
//    accents after the same letter without, whatever follows;
//  - a text contains another where its fold contains the other's fold and no continuing unit comes next: "e" is not
//    found in e with an accent, however that is composed.
// Several accents of one letter are compared in the order in which they stand; the toolkit would sort them first.
//
// What a unit folds to is asked once. A fold is not safe for use by two threads at a time.
class CaseFold {
 public:
  using Fold = FoldedUnit (*)(char16_t unit);
  using Continues = bool (*)(char16_t unit);

  CaseFold(Fold fold, Continues continues) : fold_(fold), continues_(continues) {}

  // Appends the fold of text, which holds no U+0000.
  void append(std::string &out, std::u16string_view text);
  std::string operator()(std::u16string_view text);

  // Whether the fold beginning with this byte continues the letter before it.
  static bool continues_letter(char byte) { return static_cast<unsigned char>(byte) >= 0xF0; }

 private:
  static constexpr std::size_t kPageSize = 256;
  // The written fold of one unit; length 0: not asked yet; kLong: in long_.
  struct Written {
    std::array<char, 4> bytes;
    std::uint8_t length;
  };
  static constexpr std::uint8_t kLong = 0xFF;

  Written const &ask(char16_t unit);

  Fold fold_;
  Continues continues_;
  std::array<char, 0x80> ascii_{};  // the folds that are one byte; 0: not asked yet, or longer
  std::array<std::unique_ptr<std::array<Written, kPageSize>>, kPageSize> pages_;
  std::unordered_map<char16_t, std::string> long_;
};

}  // namespace fax
