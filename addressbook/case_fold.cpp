#include "addressbook/case_fold.h"

#include <algorithm>
#include <cstring>

namespace fax {

namespace {

void append_code(std::string &out, std::uint32_t code) {
  auto const tail = [code](int shift) { return static_cast<char>(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) {
    out += static_cast<char>(code);
  } else if (code < 0x800) {
    out += static_cast<char>(0xC0 | code >> 6);
    out += tail(0);
  } else if (code < 0x10000) {
    out += static_cast<char>(0xE0 | code >> 12);
    out += tail(6);
    out += tail(0);
  } else {
    out += static_cast<char>(0xF0 | code >> 18);
    out += tail(12);
    out += tail(6);
    out += tail(0);
  }
}

}  // namespace

CaseFold::Written const &CaseFold::ask(char16_t unit) {
  auto &page = pages_[unit / kPageSize];
  if (page == nullptr) page = std::make_unique<std::array<Written, kPageSize>>();
  Written &written = (*page)[unit % kPageSize];
  if (written.length != 0) return written;
  FoldedUnit const folded = fold_(unit);
  std::string bytes;
  for (std::size_t at = 0; at < folded.count; ++at) {
    char16_t const one = folded.units[at];
    append_code(bytes, one + (continues_(one) ? 0x10000u : 0u));
  }
  if (!bytes.empty() && bytes.size() <= written.bytes.size()) {
    std::copy(bytes.begin(), bytes.end(), written.bytes.begin());
    written.length = static_cast<std::uint8_t>(bytes.size());
    if (unit < ascii_.size() && written.length == 1) ascii_[unit] = bytes[0];
  } else {
    long_[unit] = bytes;
    written.length = kLong;
  }
  return written;
}

void CaseFold::append(std::string &out, std::u16string_view text) {
  std::array<char, 256> buffer;
  constexpr std::size_t kRoom = sizeof(Written::bytes);
  std::size_t used = 0;
  for (char16_t const unit : text) {
    if (unit < ascii_.size() && ascii_[unit] != 0 && used < buffer.size()) {
      buffer[used++] = ascii_[unit];
      continue;
    }
    auto const &page = pages_[unit / kPageSize];
    Written const *written = page == nullptr ? nullptr : &(*page)[unit % kPageSize];
    if (written == nullptr || written->length == 0) written = &ask(unit);
    if (written->length == kLong || used + kRoom > buffer.size()) {
      out.append(buffer.data(), used);
      used = 0;
    }
    if (written->length == kLong) {
      out += long_.find(unit)->second;
    } else {
      std::memcpy(buffer.data() + used, written->bytes.data(), kRoom);
      used += written->length;
    }
  }
  out.append(buffer.data(), used);
}

std::string CaseFold::operator()(std::u16string_view text) {
  std::string out;
  append(out, text);
  return out;
}

}  // namespace fax
