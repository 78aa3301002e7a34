#include "platform/text_encoding.h"

#include <gmock/gmock.h>

#include <limits>

using namespace std::string_literals;

namespace {

constexpr fax::EncodingNumber kUtf8 = 0x08000100, kShiftJis = 0x0628, kLatin1 = 0x0201, kWindows = 0x0500,
                              kAscii = 0x0600, kUtf16 = 0x14000100, kMacRoman = 0x0000;
constexpr std::size_t kNoLimit = std::numeric_limits<std::size_t>::max();

std::string named(auto const &info) { return info.param.name; }

struct Pair {
  char const *name;
  fax::EncodingNumber encoding;
  std::u16string text;
  std::string bytes;
};

class BothWays : public testing::TestWithParam<Pair> {};

TEST_P(BothWays, Agree) {
  auto const &row = GetParam();
  EXPECT_EQ(fax::encode_units(row.text, row.encoding), row.bytes);
  EXPECT_EQ(fax::decode_units(row.bytes, row.encoding), row.text);
  auto const utf8 = fax::encode_units(row.text, kUtf8);
  ASSERT_TRUE(utf8);
  EXPECT_EQ(fax::encode_text(*utf8, row.encoding), row.bytes);
  EXPECT_EQ(fax::decode_text(row.bytes, row.encoding), utf8);
}

INSTANTIATE_TEST_SUITE_P(Table, BothWays, testing::Values(
    Pair{"utf8_pair", kUtf8, u"a\U0001F4E0", "a\xF0\x9F\x93\xA0"},
    Pair{"utf8_nul_inside", kUtf8, u"a\0b"s, "a\0b"s},
    Pair{"utf8_mark_stays", kUtf8, u"\uFEFFa", "\xEF\xBB\xBF" "a"},
    Pair{"latin1_high", kLatin1, u"\u00E9\u00FF\u0080", "\xE9\xFF\x80"},
    Pair{"windows_euro", kWindows, u"\u20AC\u201C", "\x80\x93"},
    Pair{"macroman", kMacRoman, u"\u00E9", "\x8E"},
    Pair{"ascii", kAscii, u"0123", "0123"},
    Pair{"utf16_pair", kUtf16, u"A\U00020089", "A\0\x40\xD8\x89\xDC"s},
    Pair{"sjis_kana_kanji", kShiftJis, u"\u304B\u6F22", "\x82\xA9\x8A\xBF"},
    Pair{"sjis_half_width", kShiftJis, u"\uFF76", "\xB6"},
    Pair{"sjis_joined", kShiftJis, u"\u304B\u309A", "\x82\xF5"},              // one code, two characters
    Pair{"sjis_joined_latin", kShiftJis, u"\u00E6\u0300", "\x86\x63"},
    Pair{"sjis_base_at_end", kShiftJis, u"x\u304B", "x\x82\xA9"},             // held back by iconv until flushed
    Pair{"sjis_outside_bmp", kShiftJis, u"\U0002000B", "\x87\xA0"},
    Pair{"sjis_plane_2", kShiftJis, u"\U00020089", "\xF0\x40"},
    Pair{"sjis_backslash_tilde", kShiftJis, u"a\\~b", "a\\~b"},               // ASCII comes back as ASCII
    Pair{"sjis_backslash_as_trail", kShiftJis, u"\u8868\\", "\x95\x5C\x5C"}), // 0x5C inside a code stays there
  [](auto const &info) { return named(info); });

TEST(ShiftJis, OnlyTheSingleBytesReadAsBackslashAndTilde) {
  // Every code that reads as backslash or tilde, of all that the encoding has: a second one would be lost on the way.
  for (int lead = 0; lead < 256; ++lead) {
    for (int trail = -1; trail < 256; ++trail) {
      std::string bytes(1, char(lead));
      if (trail >= 0) bytes.push_back(char(trail));
      auto const text = fax::decode_units(bytes, kShiftJis);
      if (!text || text->size() != 1 || (text->front() != u'\\' && text->front() != u'~')) continue;
      EXPECT_EQ(bytes, text->front() == u'\\' ? "\\" : "~");
    }
  }
}

TEST(ShiftJis, YenAndOverlineAreWritten) { EXPECT_EQ(fax::encode_units(u"\u00A5\u203E", kShiftJis), "\\~"); }

struct Refusal {
  char const *name;
  fax::EncodingNumber encoding;
  std::u16string text;
};

class Unconvertible : public testing::TestWithParam<Refusal> {};

TEST_P(Unconvertible, IsRefusedWhole) {
  EXPECT_EQ(fax::encode_units(GetParam().text, GetParam().encoding), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, Unconvertible, testing::Values(
    Refusal{"latin1_euro", kLatin1, u"1\u20AC"},
    Refusal{"ascii_e_acute", kAscii, u"caf\u00E9"},
    Refusal{"windows_kana", kWindows, u"\u304B"},
    Refusal{"windows_no_transliteration", kWindows, u"\u2260"},
    Refusal{"sjis_hangul", kShiftJis, u"\uD55C"},
    Refusal{"sjis_lone_mark", kShiftJis, u"\u309A"},
    Refusal{"sjis_emoji", kShiftJis, u"\U0001F4E0"},
    Refusal{"utf8_leading_half", kUtf8, std::u16string{u'a', 0xD83D}},
    Refusal{"utf16_trailing_half", kUtf16, std::u16string{0xDCE0, u'a'}},
    Refusal{"unknown_encoding", 0x0A01, u"a"}),
  [](auto const &info) { return named(info); });

struct Broken {
  char const *name;
  fax::EncodingNumber encoding;
  std::string bytes;
};

class BrokenBytes : public testing::TestWithParam<Broken> {};

TEST_P(BrokenBytes, AreRefused) {
  EXPECT_EQ(fax::decode_units(GetParam().bytes, GetParam().encoding), std::nullopt);
  EXPECT_EQ(fax::decode_text(GetParam().bytes, GetParam().encoding), std::nullopt);
}

INSTANTIATE_TEST_SUITE_P(Table, BrokenBytes, testing::Values(
    Broken{"utf8_cut", kUtf8, "a\xE3\x81"},
    Broken{"utf8_overlong", kUtf8, "\xC0\xAF"},
    Broken{"utf8_surrogate", kUtf8, "\xED\xA0\x80"},
    Broken{"sjis_cut", kShiftJis, "\x82"},
    Broken{"ascii_high", kAscii, "\x80"},
    Broken{"windows_hole", kWindows, "\x81"},
    Broken{"utf16_odd", kUtf16, "abc"},
    Broken{"utf16_half_pair", kUtf16, "\x40\xD8"},
    Broken{"unknown_encoding", 0x0A01, "a"}),
  [](auto const &info) { return named(info); });

struct Part {
  char const *name;
  fax::EncodingNumber encoding;
  std::u16string text;
  std::size_t limit;
  std::optional<unsigned char> loss;
  std::size_t units;
  std::string bytes;
};

class EncodePart : public testing::TestWithParam<Part> {};

TEST_P(EncodePart, TakesWholeCharacters) {
  auto const &row = GetParam();
  auto const part = fax::encode_part(row.text, row.encoding, row.loss, row.limit);
  EXPECT_EQ(part.units, row.units);
  EXPECT_EQ(part.bytes, row.bytes);
}

INSTANTIATE_TEST_SUITE_P(Table, EncodePart, testing::Values(
    Part{"exact_fit", kUtf8, u"a\u304B", 4, {}, 2, "a\xE3\x81\x8B"},
    Part{"one_short", kUtf8, u"a\u304B", 3, {}, 1, "a"},
    Part{"pair_exact", kUtf8, u"a\U0001F4E0b", 5, {}, 3, "a\xF0\x9F\x93\xA0"},
    Part{"pair_one_short", kUtf8, u"a\U0001F4E0b", 4, {}, 1, "a"},
    Part{"utf16_pair_one_short", kUtf16, u"\U0001F4E0", 3, {}, 0, ""},
    Part{"no_room", kAscii, u"a", 0, {}, 0, ""},
    Part{"nothing", kAscii, u"", 0, {}, 0, ""},
    Part{"ends_at_unconvertible", kLatin1, u"ab\u20ACc", kNoLimit, {}, 2, "ab"},
    Part{"unconvertible_first", kAscii, u"\u00E9a", kNoLimit, {}, 0, ""},
    Part{"half_pair_ends", kUtf8, std::u16string{u'a', 0xD83D, u'b'}, kNoLimit, {}, 1, "a"},
    Part{"loss_for_one", kAscii, u"a\u00E9b", kNoLimit, '?', 3, "a?b"},
    Part{"loss_for_a_pair_is_one_byte", kAscii, u"a\U0001F4E0b", kNoLimit, '?', 4, "a?b"},
    Part{"loss_takes_room", kAscii, u"a\u00E9b", 2, '?', 2, "a?"},
    Part{"loss_in_utf16", kUtf16, std::u16string{0xD83D, u'b'}, kNoLimit, '?', 2, "?\0b\0"s},
    Part{"joined_exact", kShiftJis, u"\u304B\u309Ax", 2, {}, 2, "\x82\xF5"},
    Part{"joined_one_short", kShiftJis, u"\u304B\u309A", 1, {}, 0, ""},
    Part{"joined_before_unconvertible", kShiftJis, u"\u304B\u309A\uD55C", kNoLimit, {}, 2, "\x82\xF5"},
    Part{"base_before_unconvertible", kShiftJis, u"\u304B\uD55C", kNoLimit, {}, 1, "\x82\xA9"},
    Part{"mark_that_does_not_join", kShiftJis, u"x\u309A", kNoLimit, {}, 1, "x"},
    Part{"marks_apart_when_no_code_joins", kShiftJis, u"\u304B\u0300", 2, {}, 1, "\x82\xA9"},
    Part{"plane_2_one_short", kShiftJis, u"a\U00020089", 2, {}, 1, "a"},
    Part{"unknown_encoding", 0x0A01, u"a", kNoLimit, '?', 0, ""}),
  [](auto const &info) { return named(info); });

TEST(LongTexts, ComeThroughWholeWhateverTheirLength) {
  struct {
    fax::EncodingNumber encoding;
    std::u16string text;
    std::string bytes;
  } const rows[] = {
      {kShiftJis, u"\u304B\u309A", "\x82\xF5"},  // each code is two characters
      {kShiftJis, u"\U00020089", "\xF0\x40"},
      {kUtf8, u"\U0001F4E0", "\xF0\x9F\x93\xA0"},
      {kUtf16, u"\U0001F4E0", "\x3D\xD8\xE0\xDC"},
  };
  for (auto const &row : rows) {
    for (int before = 0; before < 4; ++before) {  // moves every boundary of a buffer through the character
      SCOPED_TRACE(testing::Message() << std::hex << row.encoding << " behind " << before);
      std::u16string text(before, u'a');
      std::string bytes = *fax::encode_units(text, row.encoding);
      for (int i = 0; i < 10000; ++i) {
        text += row.text;
        bytes += row.bytes;
      }
      EXPECT_TRUE(fax::encode_units(text, row.encoding) == bytes);
      EXPECT_TRUE(fax::decode_units(bytes, row.encoding) == text);
      EXPECT_EQ(fax::decode_units(bytes.substr(0, bytes.size() - 1), row.encoding), std::nullopt);
    }
  }
}

}  // namespace
