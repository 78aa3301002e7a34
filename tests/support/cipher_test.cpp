#include "support/cipher.h"

#include <gmock/gmock.h>

#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Primitive = int32_t (*)(uint8_t const *, int32_t, uint8_t *, uint32_t *, int32_t);

Bytes bytes_of(std::string const &text) { return {text.begin(), text.end()}; }

// Not a length that any call here produces.
constexpr uint32_t kUntouched = 0xABCDEF01;

struct Result {
  int32_t code;
  uint32_t length = kUntouched;
  Bytes buffer;  // exactly the capacity, so that a sanitizer sees a write behind it
};

Result run(Primitive primitive, Bytes const &in, int32_t capacity) {
  Bytes terminated = in;
  terminated.push_back(0);
  Result result{.code = 0, .buffer = Bytes(capacity, 0xEE)};
  result.code = primitive(terminated.data(), static_cast<int32_t>(in.size()), result.buffer.data(), &result.length,
                          capacity);
  return result;
}

std::string text_of(Result const &result) { return {result.buffer.begin(), result.buffer.begin() + result.length}; }

Bytes random_bytes(std::size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  Bytes bytes(count);
  for (auto &byte : bytes) byte = static_cast<uint8_t>(generator());
  return bytes;
}

// Base64 by writing out the bits, six at a time: slow, and nothing like the product's way.
std::string base64_by_bits(Bytes const &bytes) {
  std::string bits;
  for (uint8_t byte : bytes)
    for (int bit = 7; bit >= 0; --bit) bits += byte >> bit & 1 ? '1' : '0';
  while (bits.size() % 6 != 0) bits += '0';
  std::string text;
  for (std::size_t i = 0; i < bits.size(); i += 6) {
    int const value = std::stoi(bits.substr(i, 6), nullptr, 2);
    text += static_cast<char>(value < 26   ? 'A' + value
                              : value < 52 ? 'a' + value - 26
                              : value < 62 ? '0' + value - 52
                              : value == 62 ? '+'
                                            : '/');
  }
  while (text.size() % 4 != 0) text += '=';
  return text;
}

TEST(Tables, InvertEachOther) {
  for (int code = 0; code < 128; ++code) {
    auto const *place = std::find(B64CHR, B64CHR + 64, static_cast<char>(code));
    EXPECT_EQ(B64TBL[code], place == B64CHR + 64 ? 0xFF : place - B64CHR) << code;
  }
}

struct EncryptCase {
  char const *name;
  int32_t in_length, capacity, code;
  uint32_t produced;
};

class Encrypt : public testing::TestWithParam<EncryptCase> {};

TEST_P(Encrypt, WritesWhatFits) {
  auto const &c = GetParam();
  Bytes const in = random_bytes(c.in_length, 1);
  Result const result = run(XspEncrypt, in, c.capacity);
  EXPECT_EQ(result.code, c.code);
  ASSERT_EQ(result.length, c.produced);
  for (uint32_t i = 0; i < c.produced; ++i) EXPECT_EQ(result.buffer[i], in[i] ^ "tovq"[i % 4]) << i;
  for (std::size_t i = c.produced; i < result.buffer.size(); ++i) EXPECT_EQ(result.buffer[i], 0xEE) << i;
}

constexpr EncryptCase kEncryptCases[] = {
    {"one_byte", 1, 1, 0, 1},
    {"whole_group", 4, 4, 0, 4},
    {"group_and_rest", 5, 5, 0, 5},
    {"room_left", 7, 100, 0, 7},
    {"second_group_does_not_fit", 8, 6, -3, 4},
    {"rest_does_not_fit", 7, 6, -3, 4},
    {"rest_has_no_room_at_all", 5, 4, -3, 4},
    {"first_group_does_not_fit", 4, 3, -3, 0},
    {"only_rest_does_not_fit", 3, 2, -3, 0},
    {"third_group_of_many", 40, 11, -3, 8},
    {"password_limit", 255, 255, 0, 255},
    {"beyond_password_limit", 256, 255, -3, 252},
};
INSTANTIATE_TEST_SUITE_P(Table, Encrypt, testing::ValuesIn(kEncryptCases),
                         [](auto const &i) { return std::string(i.param.name); });

TEST(Encrypt, TwiceInPlaceGivesTheTextBack) {
  Bytes const in = random_bytes(189, 2);
  Bytes text = in;
  uint32_t length = 0;
  ASSERT_EQ(XspEncrypt(text.data(), 189, text.data(), &length, 189), 0);
  EXPECT_NE(text, in);
  ASSERT_EQ(XspEncrypt(text.data(), 189, text.data(), &length, 189), 0);
  EXPECT_EQ(text, in);
}

struct CodeCase {
  char const *name;
  Primitive primitive;
  bool in, out, length_pointer;  // given, not null
  int32_t in_length, capacity, code;
};

class Codes : public testing::TestWithParam<CodeCase> {};

TEST_P(Codes, NullComesBeforeLengthBeforeRoom) {
  auto const &c = GetParam();
  uint8_t const in[] = "QUJDRA==";
  uint8_t out[16];
  uint32_t length = kUntouched;
  EXPECT_EQ(c.primitive(c.in ? in : nullptr, c.in_length, c.out ? out : nullptr, c.length_pointer ? &length : nullptr,
                        c.capacity),
            c.code);
  if (c.code != -3) {
    EXPECT_EQ(length, kUntouched);
  }
}

constexpr CodeCase kCodeCases[] = {
    {"encrypt_no_input", XspEncrypt, false, true, true, 0, 0, -1},
    {"encrypt_no_output", XspEncrypt, true, false, true, 4, 0, -1},
    {"encrypt_no_length", XspEncrypt, true, true, false, 4, 4, -1},
    {"encrypt_empty", XspEncrypt, true, true, true, 0, 4, -2},
    {"encrypt_negative", XspEncrypt, true, true, true, -4, 4, -2},
    {"encrypt_no_room", XspEncrypt, true, true, true, 4, 0, -2},
    {"encode_no_input", XspBinToB64, false, true, true, 0, 0, -1},
    {"encode_no_output", XspBinToB64, true, false, true, 3, 4, -1},
    {"encode_no_output_negative_room", XspBinToB64, true, false, true, 3, -1, -1},
    {"encode_no_length", XspBinToB64, true, true, false, 3, 4, -1},
    {"encode_empty", XspBinToB64, true, true, true, 0, 0, -2},
    {"encode_negative_room", XspBinToB64, true, true, true, 3, -1, -2},
    {"encode_asks_size", XspBinToB64, true, false, true, 3, 0, -3},
    {"decode_no_input", XspB64ToBin, false, true, true, 0, 0, -1},
    {"decode_no_output", XspB64ToBin, true, false, true, 4, 3, -1},
    {"decode_no_length", XspB64ToBin, true, true, false, 4, 3, -1},
    {"decode_empty", XspB64ToBin, true, true, true, 0, 3, -2},
    {"decode_negative_room", XspB64ToBin, true, true, true, 4, -1, -2},
    {"decode_six", XspB64ToBin, true, true, true, 6, 16, -2},
    {"decode_six_without_room", XspB64ToBin, true, false, true, 6, 0, -2},
    {"decode_asks_size", XspB64ToBin, true, false, true, 4, 0, -3},
};
INSTANTIATE_TEST_SUITE_P(Table, Codes, testing::ValuesIn(kCodeCases),
                         [](auto const &i) { return std::string(i.param.name); });

// The vectors of RFC 4648, section 10.
struct Vector {
  char const *plain, *base64;
};
constexpr Vector kVectors[] = {{"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"},
                               {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"}};

TEST(Base64, PublishedVectors) {
  for (auto const &v : kVectors) {
    EXPECT_EQ(text_of(run(XspBinToB64, bytes_of(v.plain), 8)), v.base64);
    EXPECT_EQ(text_of(run(XspB64ToBin, bytes_of(v.base64), 8)), v.plain);
  }
}

TEST(Base64, EveryLengthAgreesWithAnotherEncoderAndComesBack) {
  for (std::size_t length = 1; length <= 189; ++length) {
    SCOPED_TRACE(length);
    Bytes const in = random_bytes(length, static_cast<unsigned>(length));
    std::string const expected = base64_by_bits(in);
    int32_t const needed = static_cast<int32_t>(expected.size());

    Result const small = run(XspBinToB64, in, needed - 1);
    EXPECT_EQ(small.code, -3);
    EXPECT_EQ(small.length, expected.size());
    EXPECT_THAT(small.buffer, testing::Each(0xEE));
    Result const encoded = run(XspBinToB64, in, needed);
    ASSERT_EQ(encoded.code, 0);
    EXPECT_EQ(text_of(encoded), expected);

    Bytes const base64 = bytes_of(expected);
    Result const short_of_one = run(XspB64ToBin, base64, static_cast<int32_t>(length) - 1);
    EXPECT_EQ(short_of_one.code, -3);
    EXPECT_EQ(short_of_one.length, length);
    Result const decoded = run(XspB64ToBin, base64, static_cast<int32_t>(length));
    ASSERT_EQ(decoded.code, 0);
    EXPECT_EQ(decoded.buffer, in);
  }
}

TEST(Base64, SizeOfTheLongestInputDoesNotOverflow) {
  uint8_t const in[1] = {};
  uint32_t length = 0;
  EXPECT_EQ(XspBinToB64(in, 0x7FFFFFFF, nullptr, &length, 0), -3);
  EXPECT_EQ(length, 2863311532u);
}

struct DecodeCase {
  char const *name;
  std::string in;
  int32_t capacity, code;
  uint32_t length;
  std::string out;
};

class Decode : public testing::TestWithParam<DecodeCase> {};

TEST_P(Decode, Text) {
  auto const &c = GetParam();
  Result const result = run(XspB64ToBin, bytes_of(c.in), c.capacity);
  EXPECT_EQ(result.code, c.code);
  ASSERT_EQ(result.length, c.length);
  if (c.code == 0) {
    EXPECT_EQ(text_of(result), c.out);
  }
}

using namespace std::string_literals;
DecodeCase const kDecodeCases[] = {
    {"one_byte", "QQ==", 1, 0, 1, "A"},
    {"two_bytes", "QUI=", 2, 0, 2, "AB"},
    {"space_between", "QU JD   ", 6, 0, 3, "ABC"},
    {"every_kind_of_space", " \t\n\v\f\rQUJD  ", 9, 0, 3, "ABC"},
    {"space_counts_for_the_size", "QUJD    ", 5, -3, 6, ""},
    {"space_before_padding", "QQ = =  ", 6, 0, 1, "A"},
    {"only_space", "    ", 3, 0, 0, ""},
    {"stops_at_padding", "QQ==QUJD", 6, 0, 1, "A"},
    {"stops_at_padding_in_third_group", "QUJDQUI=QUJD", 9, 0, 5, "ABCAB"},
    // Padding behind a single character: counted off the size, decoded as a character of the table's 0xFF.
    {"three_paddings", "Q===", 3, 0, 1, "\x4F"},
    {"three_paddings_need_nothing", "Q===", 0, -3, 0, ""},
    {"four_paddings", "====", 3, 0, 1, "\xFF"},
    {"four_paddings_need_nothing", "====", 0, -3, 0, ""},
    {"nul_after_first", "Q\0\0\0"s, 3, 0, 0, ""},
    {"nul_after_second", "QQ\0\0"s, 3, 0, 0, ""},
    {"nul_after_third", "QUI\0"s, 3, 0, 1, "A"},
    // A NUL inside the counted length begins a group, as 0xFF.
    {"nul_begins_group", "QUJD\0UJD"s, 6, 0, 6, "ABC\xFD\x42\x43"},
    {"outside_the_alphabet", "-UJD", 3, 0, 3, "\xFD\x42\x43"},
    {"high_bytes", "\x80\xFF\xC3\xA9", 3, 0, 3, "\xFF\xFF\xFF"},
    // So much padding that the room for what is left of it ends inside a group.
    {"padding_takes_room", "QUJDREVG====", 5, 0, 5, "ABCDE"},
    {"padding_takes_a_group", "QUJDREVG========", 4, 0, 4, "ABCD"},
};
INSTANTIATE_TEST_SUITE_P(Table, Decode, testing::ValuesIn(kDecodeCases),
                         [](auto const &i) { return std::string(i.param.name); });

// The decoder goes on to the NUL even where the counted length ends before it, but never beyond its room.
TEST(Decode, ReadsOnToTheNulAndKeepsToItsRoom) {
  uint8_t const in[] = "QUJDREVG";
  uint32_t length = 0;
  Bytes roomy(6), tight(4);
  EXPECT_EQ(XspB64ToBin(in, 4, roomy.data(), &length, 6), 0);
  EXPECT_EQ(length, 6u);
  EXPECT_EQ(roomy, bytes_of("ABCDEF"));
  EXPECT_EQ(XspB64ToBin(in, 4, tight.data(), &length, 4), 0);
  EXPECT_EQ(length, 4u);
  EXPECT_EQ(tight, bytes_of("ABCD"));
}

// Groups that stand without anything between them are taken a whole one at a time; white space after each character
// keeps them from it.
TEST(Decode, WhiteSpaceChangesNothing) {
  std::mt19937 generator(8);
  for (int round = 0; round < 3000; ++round) {
    SCOPED_TRACE(round);
    Bytes plain(4 * (1 + generator() % 40)), spaced;
    for (uint8_t &character : plain) character = static_cast<uint8_t>(B64CHR[generator() % 64]);
    std::size_t const stranger = generator() % (2 * plain.size());
    if (stranger < plain.size()) plain[stranger] = static_cast<uint8_t>("=-\x80\n"[generator() % 4]);
    for (uint8_t const character : plain) spaced.insert(spaced.end(), {character, ' ', '\n', '\t'});
    Result const fast = run(XspB64ToBin, plain, 120), slow = run(XspB64ToBin, spaced, 480);
    ASSERT_EQ(fast.code, 0);
    ASSERT_EQ(slow.code, 0);
    EXPECT_EQ(text_of(fast), text_of(slow));
  }
}

TEST(Decode, AnyBytesKeepToTheBuffers) {
  std::mt19937 generator(7);
  constexpr char kLikely[] = "QUJD==  \n\0\x80\xFFzz+/";
  for (int round = 0; round < 20000; ++round) {
    std::size_t const length = 4 * (1 + generator() % 6);
    std::unique_ptr<uint8_t[]> in(new uint8_t[length + 1]);
    for (std::size_t i = 0; i < length; ++i) in[i] = static_cast<uint8_t>(kLikely[generator() % (sizeof kLikely - 1)]);
    in[length] = 0;
    int32_t const capacity = static_cast<int32_t>(generator() % 20);
    Bytes out(capacity);
    uint32_t produced = 0;
    int32_t const code = XspB64ToBin(in.get(), static_cast<int32_t>(length), out.data(), &produced, capacity);
    ASSERT_THAT(code, testing::AnyOf(0, -3));
    ASSERT_LE(produced, code == 0 ? static_cast<uint32_t>(capacity) : length / 4 * 3);
  }
}

}  // namespace
