// The bundle's functions over string objects: escapes both ways, the password's cipher. Input: the encoding's number in
// the list below, then the text in it.
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "support/cf_owned.h"
#include "support/password.h"
#include "support/password_cipher.h"
#include "support/string_encoding.h"

#include <array>
#include <optional>
#include <string>

namespace {

using String = fax::CFOwned<CFStringRef>;
constexpr std::array kEncodings{kCFStringEncodingUTF8, kCFStringEncodingShiftJIS_X0213, kCFStringEncodingISOLatin1,
                                kCFStringEncodingWindowsLatin1, kCFStringEncodingASCII};
constexpr std::size_t kLongest = 255;         // bytes, of what the escapes take
constexpr std::size_t kLongestPassword = 189;  // bytes, of what the cipher takes

String string_of(std::string_view bytes, CFStringEncoding encoding) {
  return String(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<UInt8 const *>(bytes.data()),
                                        CFIndex(bytes.size()), encoding, false));
}

std::optional<std::string> bytes_of(CFStringRef string, CFStringEncoding encoding) {
  std::string bytes(8 * std::size_t(CFStringGetLength(string)) + 1, '\0');
  if (!CFStringGetCString(string, bytes.data(), CFIndex(bytes.size()), encoding)) return std::nullopt;
  return bytes.c_str();
}

// An escaped text that has room for everything comes back, and is made of nothing that it was made to avoid.
void check_escapes(CFStringRef text, std::string const &bytes, CFStringEncoding encoding) {
  String const escaped(CopyEncodedString(text, encoding));
  FUZZ_CHECK((escaped != nullptr) == (bytes.size() <= kLongest));
  if (!escaped) return;
  bool const separators = bytes.find_first_of(",'\\/") != bytes.npos;
  FUZZ_CHECK(separators || escaped.get() == text);
  if (!separators) return;
  auto const items = bytes_of(escaped.get(), encoding);
  FUZZ_CHECK(items.has_value() && items->find_first_not_of("/-0123456789") == items->npos);
  if (items->size() > kLongest) return;  // longer than the way back takes
  String const again(CopyDecodedString(escaped.get(), encoding));
  FUZZ_CHECK(again && bytes_of(again.get(), encoding) == bytes);
}

void check_unescaping(CFStringRef text, std::string const &bytes, CFStringEncoding encoding) {
  String const plain(CopyDecodedString(text, encoding));
  if (!bytes.starts_with('/')) FUZZ_CHECK(plain.get() == text);
  if (plain) FUZZ_CHECK(bytes_of(plain.get(), encoding).has_value());
}

// What the panel writes is what the driver reads.
void check_password(CFStringRef text, std::string const &bytes, CFStringEncoding encoding) {
  String const base64(CreateEncryptedString(text, encoding));
  FUZZ_CHECK((base64 != nullptr) == (!bytes.empty() && bytes.size() <= kLongestPassword));
  String const unscrambled(CreateDecryptedString(text, encoding));
  if (!base64) return;
  String const again(CreateDecryptedString(base64.get(), encoding));
  FUZZ_CHECK(again && CFEqual(again.get(), text));
  auto const read = fax::decipher_password(*bytes_of(base64.get(), kCFStringEncodingASCII), encoding);
  FUZZ_CHECK(read && read == bytes_of(text, kCFStringEncodingUTF8));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  CFStringEncoding const encoding = kEncodings[input.byte() % kEncodings.size()];
  std::string_view const rest = input.rest();
  String const text = string_of(rest.substr(0, rest.find('\0')), encoding);
  if (!text) return 0;
  auto const bytes = bytes_of(text.get(), encoding);
  FUZZ_CHECK(bytes.has_value());
  check_escapes(text.get(), *bytes, encoding);
  check_unescaping(text.get(), *bytes, encoding);
  check_password(text.get(), *bytes, encoding);
  return 0;
}
