#include "support/password.h"

#include "support/cipher.h"

#include <cstdint>
#include <limits>

namespace fax {

namespace {

bool is_base64(std::string_view text) {
  if (text.empty() || text.size() % 4 != 0) return false;
  std::size_t const padding = text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
  return text.substr(0, text.size() - padding).find_first_not_of(std::string_view(B64CHR, sizeof B64CHR)) ==
         std::string_view::npos;
}

uint8_t const *bytes_of(std::string const &text) { return reinterpret_cast<uint8_t const *>(text.data()); }
uint8_t *bytes_of(std::string &text) { return reinterpret_cast<uint8_t *>(text.data()); }

}  // namespace

std::optional<std::string> decipher_password(std::string_view base64, EncodingNumber encoding) {
  if (base64.size() > static_cast<std::size_t>(std::numeric_limits<int32_t>::max()) || !is_base64(base64))
    return std::nullopt;
  std::string const text(base64);  // with the NUL that the decoder reads up to
  std::string scrambled(text.size() / 4 * 3, '\0');
  uint32_t length = 0;
  if (XspB64ToBin(bytes_of(text), static_cast<int32_t>(text.size()), bytes_of(scrambled), &length,
                  static_cast<int32_t>(scrambled.size())) != kXspOk)
    return std::nullopt;
  std::string plain(length, '\0');
  if (XspEncrypt(bytes_of(scrambled), static_cast<int32_t>(length), bytes_of(plain), &length,
                 static_cast<int32_t>(plain.size())) != kXspOk)
    return std::nullopt;
  return decode_text(plain, encoding);
}

}  // namespace fax
