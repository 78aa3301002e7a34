#include "bench/peers.h"

#include <openssl/evp.h>

#include <stdexcept>

namespace fax::bench {

namespace {

template <auto Block>
std::size_t all(std::uint8_t const *in, std::size_t length, std::uint8_t *out) {
  int const written = Block(out, in, static_cast<int>(length));
  if (written < 0) throw std::runtime_error("OpenSSL: base64");
  return static_cast<std::size_t>(written);
}

Entered const base64(Base64{"OpenSSL", all<EVP_EncodeBlock>, all<EVP_DecodeBlock>});

}  // namespace

}  // namespace fax::bench
