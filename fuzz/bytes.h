// Takes a fuzzer's input apart. When the input is used up, numbers are 0 and texts empty.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace fuzz {

class Bytes {
 public:
  Bytes(std::uint8_t const *data, std::size_t size) : left_(reinterpret_cast<char const *>(data), size) {}

  bool empty() const { return left_.empty(); }
  std::string_view rest() const { return left_; }

  std::uint8_t byte() { return left_.empty() ? 0 : static_cast<std::uint8_t>(take(1)[0]); }
  unsigned number() { return byte() | static_cast<unsigned>(byte()) << 8; }
  // Of as many bytes as the next byte says.
  std::string_view text() { return take(byte()); }
  // The same with two bytes of length.
  std::string_view long_text() { return take(number()); }
  // Up to the next such byte, which is dropped; all that is left where there is none.
  std::string_view until(char end) {
    std::size_t const length = std::min(left_.find(end), left_.size());
    std::string_view const taken = take(length);
    take(1);
    return taken;
  }

 private:
  std::string_view take(std::size_t count) {
    std::string_view const taken = left_.substr(0, count);
    left_.remove_prefix(taken.size());
    return taken;
  }
  std::string_view left_;
};

}  // namespace fuzz
