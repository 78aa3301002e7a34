#include "support/cipher.h"

#include <algorithm>
#include <array>
#include <cstring>

uint8_t const xspkey[4] = {'t', 'o', 'v', 'q'};

constexpr char B64CHR[64] = {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'M', 'N', 'O', 'P',
                             'Q', 'R', 'S', 'T', 'U', 'V', 'W', 'X', 'Y', 'Z', 'a', 'b', 'c', 'd', 'e', 'f',
                             'g', 'h', 'i', 'j', 'k', 'l', 'm', 'n', 'o', 'p', 'q', 'r', 's', 't', 'u', 'v',
                             'w', 'x', 'y', 'z', '0', '1', '2', '3', '4', '5', '6', '7', '8', '9', '+', '/'};

// Eight character codes a row.
uint8_t const B64TBL[128] = {
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // 0x00
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  //
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // 0x10
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  //
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // 0x20
    0xFF, 0xFF, 0xFF, 62,   0xFF, 0xFF, 0xFF, 63,    // + /
    52,   53,   54,   55,   56,   57,   58,   59,    // 0x30, digits
    60,   61,   0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  //
    0xFF, 0,    1,    2,    3,    4,    5,    6,     // 0x40, capitals
    7,    8,    9,    10,   11,   12,   13,   14,    //
    15,   16,   17,   18,   19,   20,   21,   22,    // 0x50
    23,   24,   25,   0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  //
    0xFF, 26,   27,   28,   29,   30,   31,   32,    // 0x60, small letters
    33,   34,   35,   36,   37,   38,   39,   40,    //
    41,   42,   43,   44,   45,   46,   47,   48,    // 0x70
    49,   50,   51,   0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  //
};

namespace {

constexpr int32_t kGroup = sizeof xspkey;

// The two characters of 12 bits.
using Pair = std::array<uint8_t, 2>;
constexpr std::array<Pair, 4096> every_pair() {
  std::array<Pair, 4096> pairs{};
  for (std::size_t bits = 0; bits < pairs.size(); ++bits) {
    pairs[bits] = {static_cast<uint8_t>(B64CHR[bits >> 6]), static_cast<uint8_t>(B64CHR[bits & 63])};
  }
  return pairs;
}
constexpr std::array<Pair, 4096> kPairs = every_pair();

void put_pair(uint8_t *out, uint64_t bits) { std::memcpy(out, kPairs[bits & 4095].data(), sizeof(Pair)); }

// Eight bytes as one number, the first weighing most: inline, for it is one load, which the compiler sees too late.
inline uint64_t eight_bytes(uint8_t const *in) {
  return uint64_t{in[0]} << 56 | uint64_t{in[1]} << 48 | uint64_t{in[2]} << 40 | uint64_t{in[3]} << 32 |
         uint64_t{in[4]} << 24 | uint64_t{in[5]} << 16 | uint64_t{in[6]} << 8 | in[7];
}

// Eight characters from the first six of eight bytes.
void put_six(uint8_t *out, uint64_t bytes) {
  put_pair(out, bytes >> 52);
  put_pair(out + 2, bytes >> 40);
  put_pair(out + 4, bytes >> 28);
  put_pair(out + 6, bytes >> 16);
}

// The bits of a character, where they stand in a group of four when the character is the first, second, third or fourth.
constexpr uint32_t kOutside = 1u << 24;
using Bits = std::array<std::array<uint32_t, 256>, 4>;
constexpr Bits every_bit() {
  Bits tables{};
  for (std::size_t place = 0; place < tables.size(); ++place) {
    tables[place].fill(kOutside);
    for (uint32_t value = 0; value < sizeof B64CHR; ++value) {
      tables[place][static_cast<uint8_t>(B64CHR[value])] = value << (18 - 6 * place);
    }
  }
  return tables;
}
constexpr Bits kBits = every_bit();

bool is_space(uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The 6 bits of a base64 character; 0xFF, all its bits, for any other byte.
unsigned sextet(uint8_t c) { return c < sizeof B64TBL ? B64TBL[c] : 0xFFu; }

// Base64 characters without the white space between them.
class Reader {
 public:
  explicit Reader(uint8_t const *in) : start_(in), at_(in) { skip_space(); }
  uint8_t current() const { return *at_; }
  uint8_t const *here() const { return at_; }
  int64_t offset() const { return at_ - start_; }
  // Steps past that many characters and the white space behind them.
  void skip(std::size_t characters) {
    at_ += characters;
    skip_space();
  }
  // Steps past the current character and the white space behind it; answers the character.
  uint8_t take() {
    uint8_t const taken = *at_++;
    skip_space();
    return taken;
  }

 private:
  void skip_space() {
    while (is_space(*at_)) ++at_;
  }
  uint8_t const *start_;
  uint8_t const *at_;
};

// Bytes into a buffer, dropping what is beyond its capacity.
class Writer {
 public:
  Writer(uint8_t *out, int32_t capacity) : out_(out), capacity_(static_cast<uint32_t>(capacity)) {}
  void put(unsigned value) {
    if (count_ < capacity_) out_[count_++] = static_cast<uint8_t>(value);
  }
  uint32_t count() const { return count_; }
  uint32_t room() const { return capacity_ - count_; }
  uint8_t *end() { return out_ + count_; }
  // Bytes that were put at the end.
  void extend(std::size_t bytes) { count_ += static_cast<uint32_t>(bytes); }

 private:
  uint8_t *out_;
  uint32_t capacity_;
  uint32_t count_ = 0;
};

// The groups of four characters of the alphabet that come next, without anything between them.
void decode_plain(Reader &reader, int32_t in_length, Writer &writer) {
  uint8_t const *in = reader.here();
  uint8_t *out = writer.end();
  int64_t groups = std::min<int64_t>((in_length - reader.offset()) / 4, writer.room() / 3);
  for (; groups > 0; --groups, in += 4, out += 3) {
    uint32_t const bits = kBits[0][in[0]] | kBits[1][in[1]] | kBits[2][in[2]] | kBits[3][in[3]];
    if (bits >= kOutside) break;
    out[0] = static_cast<uint8_t>(bits >> 16);
    out[1] = static_cast<uint8_t>(bits >> 8);
    out[2] = static_cast<uint8_t>(bits);
  }
  writer.extend(static_cast<std::size_t>(out - writer.end()));
  reader.skip(static_cast<std::size_t>(in - reader.here()));
}

void decode(Reader reader, int32_t in_length, Writer &writer) {
  for (;;) {
    decode_plain(reader, in_length, writer);
    if (reader.current() == 0 && reader.offset() >= in_length) return;
    unsigned const first = sextet(reader.take());
    if (reader.current() == 0) return;
    unsigned const second = sextet(reader.take());
    if (reader.current() == 0) return;
    writer.put(first << 2 | second >> 4);
    uint8_t const third_character = reader.take();
    if (reader.current() == 0 || third_character == '=') return;
    unsigned const third = sextet(third_character);
    writer.put(second << 4 | third >> 2);
    uint8_t const fourth_character = reader.take();
    if (fourth_character == '=') return;
    writer.put(third << 6 | sextet(fourth_character));
  }
}

}  // namespace

int32_t XspEncrypt(uint8_t const *in, int32_t in_length, uint8_t *out, uint32_t *out_length, int32_t capacity) {
  if (in == nullptr || out == nullptr || out_length == nullptr) return kXspNullArgument;
  if (in_length < 1 || capacity < 1) return kXspBadLength;
  // A group of 4 bytes that does not fit is left out whole, the shorter one at the end likewise.
  int32_t fitting = in_length;
  if (in_length > capacity) {
    int32_t const whole_groups = in_length / kGroup * kGroup;
    fitting = whole_groups <= capacity ? whole_groups : capacity / kGroup * kGroup;
  }
  for (int32_t i = 0; i < fitting; ++i) out[i] = in[i] ^ xspkey[i % kGroup];
  *out_length = static_cast<uint32_t>(fitting);
  return fitting == in_length ? kXspOk : kXspBufferTooSmall;
}

int32_t XspBinToB64(uint8_t const *in, int32_t in_length, uint8_t *out, uint32_t *out_length, int32_t capacity) {
  if (in == nullptr || (capacity != 0 && out == nullptr) || out_length == nullptr) return kXspNullArgument;
  if (in_length < 1 || capacity < 0) return kXspBadLength;
  int64_t const needed = (int64_t{in_length} + 2) / 3 * 4;
  *out_length = static_cast<uint32_t>(needed);
  if (capacity == 0 || needed > capacity) return kXspBufferTooSmall;
  int32_t left = in_length;
  // 12 bytes a turn, of which the last ones need two readable bytes behind them.
  for (; left >= 14; left -= 12, in += 12, out += 16) {
    uint64_t const first = eight_bytes(in), second = eight_bytes(in + 6);
    put_six(out, first);
    put_six(out + 8, second);
  }
  for (; left > 0; left -= 3, in += 3, out += 4) {
    unsigned const group = in[0] << 16 | (left > 1 ? in[1] << 8 : 0) | (left > 2 ? in[2] : 0);
    put_pair(out, group >> 12);
    put_pair(out + 2, group);
    if (left < 3) out[3] = '=';
    if (left < 2) out[2] = '=';
  }
  return kXspOk;
}

int32_t XspB64ToBin(uint8_t const *in, int32_t in_length, uint8_t *out, uint32_t *out_length, int32_t capacity) {
  if (in == nullptr || (capacity != 0 && out == nullptr) || out_length == nullptr) return kXspNullArgument;
  if (in_length < 1 || capacity < 0 || in_length % 4 != 0) return kXspBadLength;
  int32_t padding = 0;
  while (padding < in_length && in[in_length - 1 - padding] == '=') ++padding;
  int32_t const full = in_length / 4 * 3;
  int32_t const needed = padding < full ? full - padding : 0;
  if (capacity == 0 || needed > capacity) {
    *out_length = static_cast<uint32_t>(needed);
    return kXspBufferTooSmall;
  }
  Writer writer(out, capacity);
  decode(Reader(in), in_length, writer);
  *out_length = writer.count();
  return kXspOk;
}
