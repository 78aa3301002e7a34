// Conversion between Unicode and the text encodings that a printer's language uses. Plain C++ over iconv; strict: no
// transliteration, no replacement characters.
//
// Shift JIS is JIS X 0213 (iconv SHIFT_JISX0213) with one difference: the bytes 0x5C and 0x7E are read as the ASCII
// backslash and tilde, which are written as these bytes, so that ASCII text comes back as it went. The yen sign and the
// overline are written as these bytes too.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace fax {

// Core Foundation's numbers (CoreFoundation.h lists the ones that are known).
using EncodingNumber = std::uint32_t;

// The iconv name of an encoding, or nullptr for a number that is not known.
char const *iconv_name(EncodingNumber encoding);

// UTF-8 -> bytes in the encoding; nullopt when the encoding is not known, utf8 is not valid UTF-8, or holds a character
// that the encoding lacks.
std::optional<std::string> encode_text(std::string_view utf8, EncodingNumber encoding);

// Bytes in the encoding -> UTF-8; nullopt when the encoding is not known or the bytes are not valid in it.
std::optional<std::string> decode_text(std::string_view bytes, EncodingNumber encoding);

// The same for UTF-16 in the machine's byte order; half a surrogate pair is a character that every encoding lacks.
std::optional<std::string> encode_units(std::u16string_view text, EncodingNumber encoding);
std::optional<std::u16string> decode_units(std::string_view bytes, EncodingNumber encoding);

// The start of a text in an encoding.
struct EncodedPart {
  std::size_t units = 0;  // UTF-16 units converted, never half a pair
  std::string bytes;      // whole characters only
};

// Converts characters from the start of text while they convert and all bytes fit into limit. A letter and its
// combining mark that the encoding writes as one code are one character. loss, when given, stands in for each character
// that the encoding lacks (in UTF-16 as a unit of two bytes); else the first such character ends the part. Empty for an
// encoding that is not known.
EncodedPart encode_part(std::u16string_view text, EncodingNumber encoding, std::optional<unsigned char> loss,
                        std::size_t limit);

}  // namespace fax
