// The text encodings that a printer's PPD may name.
#pragma once

#include "platform/text_encoding.h"

#include <string_view>

namespace fax {

// The PPD attribute whose value printer_encoding takes.
inline constexpr char kPrinterEncodingAttribute[] = "QXPrinterLanguageEncoding";

// Shift JIS X 0213: the printers' own encoding, used wherever the PPD says nothing that is known.
inline constexpr EncodingNumber kDefaultPrinterEncoding = 0x0628;

// "JIS83-RKSJ" -> 0x0628. Compared whole and case-sensitively; the default for any other value.
EncodingNumber printer_encoding(std::string_view attribute_value);

}  // namespace fax
