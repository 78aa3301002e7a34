// UTF-8 and UTF-16 as records and files need them. Plain functions of their arguments.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace fax {

// nullopt when units hold half a surrogate pair.
std::optional<std::string> utf8_of(std::u16string_view units);

// How many UTF-16 units text needs; nullopt when it is no UTF-8 (overlong forms and surrogates count as none).
std::optional<std::size_t> units_in(std::string_view utf8);

// The longest start of text, whole characters only, that fits max_bytes. Text that is no UTF-8 gives a start of it that
// may end anywhere.
std::string_view utf8_start(std::string_view utf8, std::size_t max_bytes);

struct Filled {
  std::size_t units;  // written, the terminator not counted
  bool whole;         // all of the text is there, and it was valid
};

// Writes text into a field of at least one unit and ends it with a zero unit; what follows in the field is left alone.
// Text that does not fit is cut between two characters; U+0000 ends it; every byte that is no UTF-8 becomes U+FFFD.
Filled fill_field(std::span<char16_t> field, std::string_view utf8);

}  // namespace fax
