#include "support/cipher.h"

uint8_t const xspkey[4] = {'t', 'o', 'v', 'q'};

char const B64CHR[64] = {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H', 'I', 'J', 'K', 'L', 'M', 'N', 'O', 'P',
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

bool is_space(uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The 6 bits of a base64 character; 0xFF, all its bits, for any other byte.
unsigned sextet(uint8_t c) { return c < sizeof B64TBL ? B64TBL[c] : 0xFFu; }

// Base64 characters without the white space between them.
class Reader {
 public:
  explicit Reader(uint8_t const *in) : start_(in), at_(in) { skip_space(); }
  uint8_t current() const { return *at_; }
  int64_t offset() const { return at_ - start_; }
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

 private:
  uint8_t *out_;
  uint32_t capacity_;
  uint32_t count_ = 0;
};

void decode(Reader reader, int32_t in_length, Writer &writer) {
  while (reader.current() != 0 || reader.offset() < in_length) {
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
  for (int32_t left = in_length; left > 0; left -= 3, in += 3) {
    unsigned const group = in[0] << 16 | (left > 1 ? in[1] << 8 : 0) | (left > 2 ? in[2] : 0);
    *out++ = B64CHR[group >> 18];
    *out++ = B64CHR[group >> 12 & 63];
    *out++ = left > 1 ? B64CHR[group >> 6 & 63] : '=';
    *out++ = left > 2 ? B64CHR[group & 63] : '=';
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
