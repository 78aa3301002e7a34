// Which encoding a text file is in, and its text.
#pragma once

#include <string>
#include <string_view>

namespace fax::tool {

struct DecodedText {
  std::string text;      // UTF-8 without byte order mark
  std::string encoding;  // a name for a person
  bool guessed = false;  // nothing in the file says so, and other encodings would have been possible
};

// encoding: a name that ICU knows ("shift-jis", "latin1", "utf-16le", ...), or empty: a byte order mark decides, else
// UTF-8 when the bytes are UTF-8, else Shift JIS (as Windows writes it) when they make up Japanese text, else
// Windows-1252. Nothing is replaced: bytes that the encoding does not have are a Failure with their line. So is an
// unknown encoding and a file that is no text.
DecodedText decode_text_file(std::string_view bytes, std::string_view encoding);

// For a text whose encoding was guessed: what it was read as, in sentences.
std::string note_of_guess(DecodedText const &decoded);

}  // namespace fax::tool
