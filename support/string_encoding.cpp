#include "support/string_encoding.h"

#include "support/ppd_attributes.h"
#include "support/printer_encoding.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

constexpr std::string_view kSeparators = ",'\\/";
constexpr std::size_t kEscapedEnough = 1023;

// Text with its NUL, at most 255 bytes.
using Text = std::array<char, 256>;

// Whether one of the four units is 0: taking 1 from each borrows into the highest bit of the first such unit.
bool holds_zero_unit(UniChar const *four) {
  std::uint64_t units;
  std::memcpy(&units, four, sizeof(units));
  return ((units - 0x0001000100010001u) & ~units & 0x8000800080008000u) != 0;
}

bool get_text(CFStringRef string, CFStringEncoding encoding, Text &text) {
  return CFStringGetCString(string, text.data(), text.size(), encoding);
}

CFStringRef retained(CFStringRef string) { return static_cast<CFStringRef>(CFRetain(string)); }

// "a,b" -> "/97/44/98"
std::string escape(std::string_view bytes) {
  std::string escaped;
  for (char byte : bytes) {
    escaped += '/';
    escaped += std::to_string(static_cast<signed char>(byte));
    if (escaped.size() >= kEscapedEnough) break;
  }
  return escaped;
}

// "/97/44/98" -> "a,b"; items have no NUL and begin behind the first slash.
std::string unescape(std::string const &items) {
  std::string bytes;
  for (std::size_t start = 1; start < items.size();) {
    std::size_t const end = std::min(items.find('/', start), items.size());
    long const value = std::strtol(items.substr(start, end - start).c_str(), nullptr, 10);
    bytes += static_cast<char>(std::min(value, 255L));
    start = end + 1;
  }
  return bytes;
}

}  // namespace

CFStringEncoding GetEncodingInfoFromPPD(ppd_file_t *ppd) {
  ppd_attr_t const *attribute = ppdFindAttr_ALT(ppd, fax::kPrinterEncodingAttribute, nullptr);
  if (attribute == nullptr || attribute->value == nullptr) return fax::kDefaultPrinterEncoding;
  return fax::printer_encoding(attribute->value);
}

CFStringRef CopyEncodedString(CFStringRef string, CFStringEncoding encoding) {
  if (string == nullptr) return nullptr;
  Text text{};
  if (!get_text(string, encoding, text)) {
    std::fputs("CopyEncodedString : CFStringGetCString failed.\n", stderr);
    return nullptr;
  }
  std::string_view const bytes(text.data());
  if (bytes.find_first_of(kSeparators) == std::string_view::npos) return retained(string);
  return CFStringCreateWithCString(kCFAllocatorDefault, escape(bytes).c_str(), encoding);
}

CFStringRef CopyDecodedString(CFStringRef string, CFStringEncoding encoding) {
  if (string == nullptr) {
    std::fputs("CopyDecodedString : an argument is NULL.\n", stderr);
    return nullptr;
  }
  if (CFStringGetLength(string) == 0 || CFStringGetCharacterAtIndex(string, 0) != '/') return retained(string);
  Text text{};
  if (!get_text(string, encoding, text)) {
    std::fputs("CopyDecodedString : CFStringGetCString failed.\n", stderr);
    return nullptr;
  }
  std::string const items(text.data());
  if (items.size() < 2) return CFStringCreateWithCString(kCFAllocatorDefault, items.c_str(), encoding);
  return CFStringCreateWithCString(kCFAllocatorDefault, unescape(items).c_str(), encoding);
}

SInt32 unicharLength(UniChar const *buffer, SInt32 size) {
  if (buffer == nullptr || size < 2) return -1;
  UniChar const *const end = buffer + size / 2;
  UniChar const *at = buffer;
  while (end - at >= 4 && !holds_zero_unit(at)) at += 4;
  UniChar const *const terminator = std::find(at, end, UniChar{0});
  return terminator == end ? -1 : static_cast<SInt32>(terminator - buffer);
}
