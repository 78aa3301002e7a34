// The driver's side of the password cipher: base64 text of a job's settings back to the password.
#pragma once

#include "platform/text_encoding.h"

#include <optional>
#include <string>
#include <string_view>

namespace fax {

// The password in UTF-8, or nullopt when base64 is not the cipher's output: empty, no multiple of 4 long, a character
// outside the alphabet, padding anywhere but at the end, or bytes that are no text in the encoding. encoding is the
// printer's (printer_encoding.h).
std::optional<std::string> decipher_password(std::string_view base64, EncodingNumber encoding);

}  // namespace fax
