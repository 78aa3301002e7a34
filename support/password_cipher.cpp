#include "support/password_cipher.h"

#include "support/cipher.h"

#include <array>

namespace {

// Texts on their way through the cipher. The last byte stays 0, because the decoder reads up to a NUL.
constexpr CFIndex kText = 256;
constexpr SInt32 kCapacity = 255;
using Buffer = std::array<UInt8, kText + 1>;

// How many bytes of buffer the string takes in the encoding, up to the first character that does not convert.
SInt32 convert(CFStringRef string, CFStringEncoding encoding, Buffer &buffer) {
  CFIndex used = 0;
  CFRange const whole = CFRangeMake(0, CFStringGetLength(string));
  if (CFStringGetBytes(string, whole, encoding, 0, false, buffer.data(), kText, &used) == 0) return 0;
  return static_cast<SInt32>(used);
}

}  // namespace

CFStringRef CreateEncryptedString(CFStringRef string, CFStringEncoding encoding) {
  if (string == nullptr) return nullptr;
  Buffer plain{}, scrambled{}, base64{};
  SInt32 const plain_length = convert(string, encoding, plain);
  if (plain_length == 0) return nullptr;
  uint32_t length = 0;
  if (XspEncrypt(plain.data(), plain_length, scrambled.data(), &length, kCapacity) != kXspOk) return nullptr;
  if (XspBinToB64(scrambled.data(), static_cast<SInt32>(length), base64.data(), &length, kCapacity) != kXspOk)
    return nullptr;
  return CFStringCreateWithBytes(kCFAllocatorDefault, base64.data(), length, kCFStringEncodingASCII, false);
}

CFStringRef CreateDecryptedString(CFStringRef string, CFStringEncoding encoding) {
  if (string == nullptr) return nullptr;
  Buffer base64{}, scrambled{}, plain{};
  SInt32 const base64_length = convert(string, kCFStringEncodingASCII, base64);
  if (base64_length == 0) return nullptr;
  uint32_t length = 0;
  if (XspB64ToBin(base64.data(), base64_length, scrambled.data(), &length, kCapacity) != kXspOk) return nullptr;
  if (XspEncrypt(scrambled.data(), static_cast<SInt32>(length), plain.data(), &length, kCapacity) != kXspOk)
    return nullptr;
  return CFStringCreateWithBytes(kCFAllocatorDefault, plain.data(), length, encoding, false);
}
