#include "host/core/utf8.h"

#include <algorithm>
#include <cstdint>

namespace fax::host {

std::size_t utf8_length(std::string_view text) {
  if (text.empty()) return 0;
  auto const lead = static_cast<unsigned char>(text[0]);
  if (lead < 0x80) return 1;
  std::size_t const length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
  if (lead < 0xC2 || lead > 0xF4 || text.size() < length) return 0;
  std::uint32_t character = lead & (0x7F >> length);
  for (std::size_t at = 1; at < length; ++at) {
    auto const next = static_cast<unsigned char>(text[at]);
    if ((next & 0xC0) != 0x80) return 0;
    character = character << 6 | (next & 0x3F);
  }
  constexpr std::uint32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
  if (character < kSmallest[length] || character > 0x10FFFF || (character >= 0xD800 && character <= 0xDFFF)) return 0;
  return length;
}

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    std::size_t const length = utf8_length(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string valid_utf8(std::string_view text) {
  std::string valid;
  while (!text.empty()) {
    std::size_t const length = utf8_length(text);
    if (length == 0)
      valid += "\uFFFD";
    else
      valid.append(text.substr(0, length));
    text.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return valid;
}

}  // namespace fax::host
