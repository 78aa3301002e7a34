// The password's way: repeating-key XOR, base64, and the driver's reading. Input: bytes to encode, and a text to decode.
#include "fuzz/check.h"
#include "support/cipher.h"
#include "support/password.h"
#include "support/printer_encoding.h"

#include <cstring>
#include <memory>
#include <string>

#ifdef FUZZ_OPENSSL
#include <openssl/evp.h>
#endif

namespace {

std::uint8_t const *bytes_of(std::string const &text) { return reinterpret_cast<std::uint8_t const *>(text.data()); }

struct Result {
  std::int32_t code;
  std::uint32_t length;
  std::unique_ptr<std::uint8_t[]> buffer;  // exactly as large as it was said to be
  std::string text() const { return {reinterpret_cast<char const *>(buffer.get()), length}; }
};

using Primitive = std::int32_t (*)(std::uint8_t const *, std::int32_t, std::uint8_t *, std::uint32_t *, std::int32_t);

Result run(Primitive primitive, std::string const &in, std::size_t capacity) {
  Result result{0, 0, std::make_unique<std::uint8_t[]>(capacity)};
  result.code = primitive(bytes_of(in), std::int32_t(in.size()), result.buffer.get(), &result.length,
                          std::int32_t(capacity));
  return result;
}

void compare_with_openssl([[maybe_unused]] std::string const &plain, [[maybe_unused]] std::string const &base64) {
#ifdef FUZZ_OPENSSL
  std::string theirs(base64.size() + 1, '\0');
  FUZZ_CHECK(EVP_EncodeBlock(reinterpret_cast<unsigned char *>(theirs.data()), bytes_of(plain), int(plain.size())) ==
             int(base64.size()));
  FUZZ_CHECK(theirs.c_str() == base64);
  std::string decoded(base64.size(), '\0');
  int const length =
      EVP_DecodeBlock(reinterpret_cast<unsigned char *>(decoded.data()), bytes_of(base64), int(base64.size()));
  FUZZ_CHECK(length >= int(plain.size()) && decoded.substr(0, plain.size()) == plain);
#endif
}

void check_round_trip(std::string const &plain, std::size_t capacity) {
  Result const scrambled = run(XspEncrypt, plain, plain.size());
  FUZZ_CHECK(scrambled.code == kXspOk && scrambled.length == plain.size());
  FUZZ_CHECK(run(XspEncrypt, scrambled.text(), plain.size()).text() == plain);
  if (capacity > 0 && capacity < plain.size()) {
    Result const start = run(XspEncrypt, plain, capacity);
    FUZZ_CHECK(start.code == kXspBufferTooSmall && start.length <= capacity);
    FUZZ_CHECK(scrambled.text().starts_with(start.text()));
  }
  std::size_t const size = (plain.size() + 2) / 3 * 4;
  Result const base64 = run(XspBinToB64, plain, size);
  FUZZ_CHECK(base64.code == kXspOk && base64.length == size);
  if (capacity < size) {
    Result const none = run(XspBinToB64, plain, capacity);
    FUZZ_CHECK(none.code == kXspBufferTooSmall && none.length == size);
  }
  compare_with_openssl(plain, base64.text());
  Result const decoded = run(XspB64ToBin, base64.text(), plain.size());
  FUZZ_CHECK(decoded.code == kXspOk && decoded.text() == plain);
}

// Any text: no more is written than fits, and what the strict reader takes is what OpenSSL takes.
void check_decoding(std::string const &base64, std::size_t capacity) {
  Result const decoded = run(XspB64ToBin, base64, capacity);
  if (decoded.code == kXspOk) FUZZ_CHECK(decoded.length <= capacity);
  auto const password = fax::decipher_password(base64, 0x08000100);
  auto const latin = fax::decipher_password(base64, 0x0201);
  if (password) FUZZ_CHECK(latin.has_value());
  if (!latin) return;
  FUZZ_CHECK(base64.size() % 4 == 0);
#ifdef FUZZ_OPENSSL
  std::string theirs(base64.size(), '\0');
  auto *const room = reinterpret_cast<unsigned char *>(theirs.data());
  FUZZ_CHECK(EVP_DecodeBlock(room, bytes_of(base64), int(base64.size())) >= 0);
#endif
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  if (size < 2) return 0;
  std::size_t const capacity = data[0];
  std::string const input(reinterpret_cast<char const *>(data) + 1, size - 1);
  check_round_trip(input, capacity);
  check_decoding(input, capacity);
  return 0;
}
