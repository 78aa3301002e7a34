// Unicode text: how long, how to compare, how to show. UTF-8 throughout; reentrant.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fax::tool {

bool is_utf8(std::string_view text);

// The length in UTF-16 units.
std::size_t units(std::string_view text);

// For comparing names of columns: compatibility forms and letter case are gone, and everything but letters and digits.
std::string comparable(std::string_view text);

// Without white space at both ends.
std::string_view trimmed(std::string_view text);

// How many columns of a terminal it takes; East Asian wide characters take two.
std::size_t columns_of(std::string_view text);

// For messages: in quotes, one line, control characters and bad bytes as \xNN, and no longer than a line can be.
std::string in_quotes(std::string_view text);

// As it is, but control characters, bad bytes and backslashes as \t, \n, \r, \\ or \xNN: one field of one line.
std::string escaped(std::string_view text);

}  // namespace fax::tool
