// Checks of UTF-8 text.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace fax::host {

// Bytes (1..4) of the character at the start of text, or 0 where text is empty or does not begin with valid UTF-8
// (over-long forms, surrogates and numbers past U+10FFFF are not valid).
std::size_t utf8_length(std::string_view text);

bool is_utf8(std::string_view text);

// Text with U+FFFD in place of each byte that is no part of valid UTF-8.
std::string valid_utf8(std::string_view text);

}  // namespace fax::host
