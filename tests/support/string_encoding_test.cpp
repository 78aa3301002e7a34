#include "support/string_encoding.h"

#include "cf_text.h"
#include "ppd_of.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

constexpr CFStringEncoding kUtf8 = kCFStringEncodingUTF8, kLatin1 = kCFStringEncodingISOLatin1;

TEST(PrinterLanguage, OfThePpd) {
  TestPpd utf8{{"QXPrinterLanguageEncoding", "UTF-8"}}, wrong_case{{"QXPrinterLanguageEncoding", "utf-8"}},
      windows{{"Other", "UTF-8"}, {"QXPrinterLanguageEncoding", "WindowsANSI"}},
      first{{"QXPrinterLanguageEncoding", "ISOLatin1"}, {"QXPrinterLanguageEncoding", "UTF-8"}},
      no_ascii{{"QXPrinterLanguageEncoding", "\xC3\xA9"}}, valueless{{"QXPrinterLanguageEncoding", nullptr}}, none{};
  EXPECT_EQ(GetEncodingInfoFromPPD(utf8.get()), 0x08000100u);
  EXPECT_EQ(GetEncodingInfoFromPPD(windows.get()), 0x0500u);
  EXPECT_EQ(GetEncodingInfoFromPPD(first.get()), 0x0201u);
  for (ppd_file_t *ppd : {wrong_case.get(), no_ascii.get(), valueless.get(), none.get(), (ppd_file_t *)nullptr})
    EXPECT_EQ(GetEncodingInfoFromPPD(ppd), 0x0628u);
}

using Converter = CFStringRef (*)(CFStringRef, CFStringEncoding);

struct EscapeCase {
  char const *name;
  Converter convert;
  std::string in;
  CFStringEncoding encoding;
  std::optional<std::string> out;
  bool itself = false;  // the argument, retained
  char const *message = "";
};

class Escape : public testing::TestWithParam<EscapeCase> {};

TEST_P(Escape, Converts) {
  auto const &c = GetParam();
  OwnedString const in = make_string(c.in);
  ASSERT_TRUE(in);
  testing::internal::CaptureStderr();
  OwnedString const out(c.convert(in.get(), c.encoding));
  EXPECT_EQ(testing::internal::GetCapturedStderr(), c.message);
  EXPECT_EQ(text_of(out.get()), c.out);
  EXPECT_EQ(out.get() == in.get(), c.itself);
}

std::string repeat(std::string const &text, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

constexpr char kEncodeFailed[] = "CopyEncodedString : CFStringGetCString failed.\n";
constexpr char kDecodeFailed[] = "CopyDecodedString : CFStringGetCString failed.\n";
EscapeCase const kEscapeCases[] = {
    {"plain", CopyEncodedString, "ab", kUtf8, "ab", true},
    {"empty", CopyEncodedString, "", kUtf8, "", true},
    {"comma", CopyEncodedString, "a,b", kUtf8, "/97/44/98"},
    {"apostrophe", CopyEncodedString, "'", kUtf8, "/39"},
    {"backslash", CopyEncodedString, "\\", kUtf8, "/92"},
    {"slash_last", CopyEncodedString, "ab/", kUtf8, "/97/98/47"},
    {"high_bytes_without_separator", CopyEncodedString, "\xC3\xA9", kUtf8, "\xC3\xA9", true},
    {"high_bytes_are_negative", CopyEncodedString, "\xC3\xA9,", kUtf8, "/-61/-87/44"},
    {"bytes_of_the_encoding", CopyEncodedString, "\xC3\xA9,", kLatin1, "/-23/44"},
    {"not_in_the_encoding", CopyEncodedString, "\xE3\x81\x82,", kLatin1, std::nullopt, false, kEncodeFailed},
    {"longest", CopyEncodedString, "," + std::string(254, 'a'), kUtf8, "/44" + repeat("/97", 254)},
    {"too_long", CopyEncodedString, "," + std::string(255, 'a'), kUtf8, std::nullopt, false, kEncodeFailed},
    // 3 + 113 * 9 = 1,020 characters; the item that reaches 1,023 is the last.
    {"stops_at_1023", CopyEncodedString, "," + repeat("\xC3\x80", 127), kUtf8,
     "/44" + repeat("/-61/-128", 113) + "/-61"},

    {"no_slash_first", CopyDecodedString, "abc", kUtf8, "abc", true},
    {"slash_later", CopyDecodedString, "a/97", kUtf8, "a/97", true},
    {"nothing", CopyDecodedString, "", kUtf8, "", true},
    {"lone_slash", CopyDecodedString, "/", kUtf8, "/"},
    {"items", CopyDecodedString, "/97/44/98", kUtf8, "a,b"},
    {"negative_items", CopyDecodedString, "/-61/-87", kUtf8, "\xC3\xA9"},
    {"above_255", CopyDecodedString, "/300", kLatin1, "\xC3\xBF"},
    {"far_above_255", CopyDecodedString, "/99999999999999999999", kLatin1, "\xC3\xBF"},
    {"unsigned_item", CopyDecodedString, "/233", kLatin1, "\xC3\xA9"},
    {"empty_item_ends_the_text", CopyDecodedString, "/97//98", kUtf8, "a"},
    {"two_slashes", CopyDecodedString, "//", kUtf8, ""},
    {"no_number_ends_the_text", CopyDecodedString, "/97/x/98", kUtf8, "a"},
    {"number_with_a_tail", CopyDecodedString, "/97x/98", kUtf8, "ab"},
    {"slash_at_the_end", CopyDecodedString, "/97/98/", kUtf8, "ab"},
    {"longest_items", CopyDecodedString, repeat("/97", 85), kUtf8, std::string(85, 'a')},
    {"too_many_items", CopyDecodedString, repeat("/97", 85) + "/", kUtf8, std::nullopt, false, kDecodeFailed},
    {"not_ascii", CopyDecodedString, "/\xE3\x81\x82", kLatin1, std::nullopt, false, kDecodeFailed},
    {"bytes_are_no_text", CopyDecodedString, "/255", kUtf8, std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(Table, Escape, testing::ValuesIn(kEscapeCases),
                         [](auto const &i) { return std::string(i.param.name); });

TEST(EscapeNull, OnlyDecodingSaysSo) {
  testing::internal::CaptureStderr();
  EXPECT_EQ(CopyEncodedString(nullptr, kUtf8), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  testing::internal::CaptureStderr();
  EXPECT_EQ(CopyDecodedString(nullptr, kUtf8), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "CopyDecodedString : an argument is NULL.\n");
}

TEST(UnicharLength, StaysInsideTheBuffer) {
  struct {
    std::vector<UniChar> units;
    SInt32 size, length;
  } const cases[] = {
      {{0x41, 0}, 4, 1}, {{0x41, 0x42}, 4, -1}, {{0}, 2, 0},           {{0x41, 0}, 3, -1},     {{0x41, 0}, 2, -1},
      {{0, 0x41}, 4, 0}, {{0}, 1, -1},          {{0x4100, 0}, 5, 1},   {{0}, 0, -1},           {{0}, -4, -1},
  };
  for (auto const &c : cases) EXPECT_EQ(unicharLength(c.units.data(), c.size), c.length) << c.size;
  EXPECT_EQ(unicharLength(nullptr, 4), -1);
}

}  // namespace
