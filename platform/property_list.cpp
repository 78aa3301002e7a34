#include "platform/property_list.h"

#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

namespace fax {

namespace {

constexpr int kDeepest = 512;
constexpr std::string_view kBinaryHead = "bplist00";

class BinaryList {
public:
  explicit BinaryList(std::string_view data) : data_(data) {}

  bool is_safe() {
    constexpr std::size_t kTrailer = 32;
    if (data_.size() < kBinaryHead.size() + kTrailer) return false;
    std::size_t const trailer = data_.size() - kTrailer;
    offset_size_ = number(trailer + 6, 1);
    reference_size_ = number(trailer + 7, 1);
    count_ = number(trailer + 8, 8);
    std::uint64_t const root = number(trailer + 16, 8);
    table_ = number(trailer + 24, 8);
    bool const sizes = offset_size_ >= 1 && offset_size_ <= 4 && reference_size_ >= 1 && reference_size_ <= 4;
    if (!sizes || table_ > trailer || count_ > (trailer - table_) / offset_size_) return false;
    visits_ = count_ + (1 << 20);
    return object(root, 0, false);
  }

private:
  // The big-endian number of at most 8 bytes at a place that is known to lie inside.
  std::uint64_t number(std::size_t at, std::size_t size) const {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) value = value << 8 | static_cast<unsigned char>(data_[at + i]);
    return value;
  }

  bool fits(std::uint64_t at, std::uint64_t count, std::uint64_t size) const {
    return at <= table_ && count <= (table_ - at) / size;
  }

  // What the low half of a marker counts: itself, or for 15 a number object that follows. Moves at behind it.
  std::optional<std::uint64_t> length(unsigned marker, std::uint64_t &at) const {
    if ((marker & 15) != 15) return marker & 15;
    if (!fits(at, 1, 1)) return std::nullopt;
    unsigned const kind = static_cast<unsigned char>(data_[at++]);
    if (kind < 0x10 || kind > 0x12) return std::nullopt;  // the toolkit reads no longer ones
    std::size_t const size = std::size_t(1) << (kind - 0x10);
    if (!fits(at, 1, size)) return std::nullopt;
    at += size;
    return number(at - size, size);
  }

  bool references(std::uint64_t at, std::uint64_t count, int depth, bool keys) {
    for (std::uint64_t i = 0; i < count; ++i)
      if (!object(number(at + i * reference_size_, reference_size_), depth + 1, keys)) return false;
    return true;
  }

  bool object(std::uint64_t index, int depth, bool is_key) {
    if (index >= count_ || depth > kDeepest || visits_-- == 0) return false;
    std::uint64_t at = number(table_ + index * offset_size_, offset_size_);
    if (at < kBinaryHead.size() || !fits(at, 1, 1)) return false;
    unsigned const marker = static_cast<unsigned char>(data_[at++]), kind = marker >> 4;
    if (is_key && kind != 5 && kind != 6) return false;
    if (kind == 4 || kind == 5 || kind == 6 || kind == 0xA || kind == 0xD) return sequence(marker, at, depth);
    switch (marker) {
      case 0x08: case 0x09: return true;
      case 0x10: case 0x11: case 0x12: case 0x13: return fits(at, 1, std::uint64_t(1) << (marker - 0x10));
      case 0x22: return fits(at, 1, 4);
      case 0x23: return fits(at, 1, 8);
      case 0x33: return fits(at, 1, 8) && is_date(at);
      case 0x80: case 0x81: return fits(at, 1, marker - 0x7F);
      default: return false;
    }
  }

  // Data, a text, a list or a dictionary.
  bool sequence(unsigned marker, std::uint64_t at, int depth) {
    auto const count = length(marker, at);
    if (!count) return false;
    switch (marker >> 4) {
      case 4: case 5: return fits(at, *count, 1);
      case 6: return fits(at, *count, 2);
      case 0xA: return fits(at, *count, reference_size_) && references(at, *count, depth, false);
      default:
        return fits(at, *count, 2 * reference_size_) && references(at, *count, depth, true) &&
               references(at + *count * reference_size_, *count, depth, false);
    }
  }

  // Seconds from 2001 within ten thousand years: the toolkit's calendar takes no others.
  bool is_date(std::uint64_t at) const {
    std::uint64_t const bits = number(at, 8);
    double seconds;
    std::memcpy(&seconds, &bits, sizeof seconds);
    return std::abs(seconds) < 3.2e11;
  }

  std::string_view data_;
  std::uint64_t offset_size_ = 0, reference_size_ = 0, count_ = 0, table_ = 0, visits_ = 0;
};

bool is_safe_xml(std::string_view text) {
  int depth = 0;
  for (std::size_t at = 0; (at = text.find('<', at)) != std::string_view::npos;) {
    bool const comment = text.substr(at).starts_with("<!--");
    std::size_t const end = comment ? text.find("-->", at) : text.find('>', at);
    if (end == std::string_view::npos) return false;
    unsigned char const first = static_cast<unsigned char>(text[at + 1]);
    if (first == '/') --depth;
    else if (first != '!' && first != '?' && text[end - 1] != '/' && ++depth > kDeepest) return false;
    at = end;
  }
  return true;
}

// Where the quoted text or the comment that begins at a place ends; the place itself when neither begins there.
std::size_t behind_aside(std::string_view text, std::size_t at) {
  auto const behind = [&](std::string_view end) {
    std::size_t const found = text.find(end, at + 2);
    return found == std::string_view::npos ? text.size() : found + end.size();
  };
  if (text.substr(at).starts_with("/*")) return behind("*/");
  if (text.substr(at).starts_with("//")) return behind("\n");
  if (text[at] != '"') return at;
  for (++at; at < text.size() && text[at] != '"'; ++at)
    if (text[at] == '\\') ++at;
  return at + 1;
}

bool is_safe_text(std::string_view text) {
  int depth = 0;
  for (std::size_t at = 0; at < text.size();) {
    if (std::size_t const behind = behind_aside(text, at); behind != at) {
      at = behind;
      continue;
    }
    char const letter = text[at++];
    if (letter == ')' || letter == '}') --depth;
    if ((letter == '(' || letter == '{') && ++depth > kDeepest) return false;
  }
  return true;
}

}  // namespace

bool is_safe_property_list(std::string_view data) {
  if (data.starts_with(kBinaryHead)) return BinaryList(data).is_safe();
  std::size_t const first = data.find_first_not_of(" \t\r\n\v\f");
  bool const xml = first != std::string_view::npos && data.substr(first).starts_with("<?");
  return xml ? is_safe_xml(data) : is_safe_text(data);
}

}  // namespace fax
