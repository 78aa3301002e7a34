#include "support/printer_encoding.h"

namespace fax {

EncodingNumber printer_encoding(std::string_view attribute_value) {
  struct Named {
    std::string_view name;
    EncodingNumber number;
  };
  static constexpr Named kKnown[] = {
      {"UTF-8", 0x08000100},
      {"JIS83-RKSJ", 0x0628},
      {"ISOLatin1", 0x0201},
      {"WindowsANSI", 0x0500},
  };
  for (auto const &known : kKnown)
    if (attribute_value == known.name) return known.number;
  return kDefaultPrinterEncoding;
}

}  // namespace fax
