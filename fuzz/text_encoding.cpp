// The printers' encodings against iconv, one character at a time, and there and back. Input: the encoding's number in
// the list below, a limit, then the text.
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "platform/text_encoding.h"

#include <algorithm>
#include <array>
#include <iconv.h>
#include <string>

namespace {

constexpr fax::EncodingNumber kUtf8 = 0x08000100, kUtf16 = 0x14000100, kShiftJis = 0x0628;
constexpr std::array kEncodings{kUtf8, kShiftJis, 0x0201u, 0x0500u, 0x0600u, kUtf16, 0x0000u, 0x1234u};

// The whole text by iconv in one call with room enough; nothing where it does not convert.
std::optional<std::string> by_iconv(std::string const &text, char const *from, char const *to) {
  iconv_t const handle = iconv_open(to, from);
  FUZZ_CHECK(handle != iconv_t(-1));
  std::string out(text.size() * 8 + 64, '\0');
  char *in = const_cast<char *>(text.data()), *at = out.data();
  std::size_t in_left = text.size(), room = out.size();
  bool const well = iconv(handle, &in, &in_left, &at, &room) == 0 && in_left == 0 &&
                    iconv(handle, nullptr, nullptr, &at, &room) == 0;
  iconv_close(handle);
  if (!well) return std::nullopt;
  out.resize(out.size() - room);
  return out;
}

std::string bytes_of(std::u16string const &units) {
  return {reinterpret_cast<char const *>(units.data()), units.size() * sizeof(char16_t)};
}

void check_decoding(std::string const &bytes, fax::EncodingNumber encoding) {
  auto const text = fax::decode_text(bytes, encoding);
  auto const units = fax::decode_units(bytes, encoding);
  FUZZ_CHECK(text.has_value() == units.has_value());
  char const *const name = fax::iconv_name(encoding);
  if (name == nullptr) {
    FUZZ_CHECK(!text);
    return;
  }
  // Not to UTF-8: iconv takes that beyond U+10FFFF.
  auto const theirs = by_iconv(bytes, name, "UTF-16LE");
  FUZZ_CHECK(text.has_value() == theirs.has_value());
  if (!text) return;
  FUZZ_CHECK(by_iconv(bytes_of(*units), "UTF-16LE", "UTF-8") == text);
  // Shift JIS reads two bytes otherwise, and only them.
  if (encoding != kShiftJis || (bytes.find('\\') == bytes.npos && bytes.find('~') == bytes.npos))
    FUZZ_CHECK(bytes_of(*units) == *theirs);
  // What was read can be written; other codes may have the same meaning, so only the text has to be the same again.
  auto const again = fax::encode_text(*text, encoding);
  FUZZ_CHECK(again.has_value());
  FUZZ_CHECK(fax::decode_text(*again, encoding) == text);
}

void check_encoding(std::u16string const &text, fax::EncodingNumber encoding, std::size_t limit) {
  auto const whole = fax::encode_units(text, encoding);
  auto const part = fax::encode_part(text, encoding, std::nullopt, limit);
  auto const lossy = fax::encode_part(text, encoding, std::uint8_t('?'), limit);
  FUZZ_CHECK(part.bytes.size() <= limit && lossy.bytes.size() <= limit);
  FUZZ_CHECK(part.units <= text.size() && part.units <= lossy.units);
  if (fax::iconv_name(encoding) == nullptr) {
    FUZZ_CHECK(!whole && part.bytes.empty() && lossy.bytes.empty());
    return;
  }
  if (whole && whole->size() <= limit) FUZZ_CHECK(part.bytes == *whole && lossy.bytes == *whole);
  if (!part.bytes.empty()) FUZZ_CHECK(fax::encode_units(text.substr(0, part.units), encoding) == part.bytes);
  if (limit >= 2 * 4 * text.size()) FUZZ_CHECK(lossy.units == text.size());
  auto const utf8 = fax::encode_units(text, kUtf8);
  if (utf8) FUZZ_CHECK(fax::encode_text(*utf8, encoding) == whole);
  else FUZZ_CHECK(!whole);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  fax::EncodingNumber const encoding = kEncodings[input.byte() % kEncodings.size()];
  std::size_t const limit = input.byte();
  std::string const bytes(input.rest());
  check_decoding(bytes, encoding);
  std::u16string text(bytes.size() / 2, u'\0');
  std::copy_n(bytes.data(), text.size() * 2, reinterpret_cast<char *>(text.data()));
  check_encoding(text, encoding, limit);
  return 0;
}
