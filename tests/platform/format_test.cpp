#include "platform/format.h"

#include <gmock/gmock.h>

namespace {

std::u16string describe(void const *object) { return static_cast<char16_t const *>(object); }

std::optional<std::u16string> format(std::u16string_view form, ...) {
  std::va_list arguments;
  va_start(arguments, form);
  auto made = fax::format_text(form, arguments, describe);
  va_end(arguments);
  return made;
}

using testing::Optional;

TEST(Format, Objects) {
  EXPECT_EQ(format(u"%@/%@", u"folder", u"page"), u"folder/page");
  EXPECT_EQ(format(u"%@%@%d", u"prefix.", u"Name", 30), u"prefix.Name30");
  EXPECT_EQ(format(u"<%@>", nullptr), u"<(null)>");
  EXPECT_EQ(format(u"100%% of %@", u"it"), u"100% of it");
  EXPECT_EQ(format(u""), u"");
}

TEST(Format, Utf8Texts) {
  EXPECT_EQ(format(u"%s%%%s", "fe80::1", "en0"), u"fe80::1%en0");
  EXPECT_EQ(format(u"%s", "\xE3\x81\x8B"), u"\u304B");
  EXPECT_EQ(format(u"%s", "\xFF"), std::nullopt);
  EXPECT_EQ(format(u"%S|%C|%c", u"\u304B", 0x304B, 'x'), u"\u304B|\u304B|x");
}

TEST(Format, WidthAndPrecisionCountUnits) {
  EXPECT_EQ(format(u"[%5@][%-5@]", u"ab", u"ab"), u"[   ab][ab   ]");
  EXPECT_EQ(format(u"%.2@", u"abc"), u"ab");
  EXPECT_EQ(format(u"%.2@|", u"a\U0001F4E0"), u"a|");  // never half a pair
  EXPECT_EQ(format(u"%*d|%-*d|%.*f", 4, 7, -3, 7, 1, 2.25), u"   7|7  |2.2");
  EXPECT_EQ(format(u"[%*@]", -4, u"ab"), u"[ab  ]");
}

TEST(Format, NumbersOfEverySize) {
  EXPECT_EQ(format(u"%d %i %u", -1, 2, 0xFFFFFFFFu), u"-1 2 4294967295");
  EXPECT_EQ(format(u"%hhd %hhu %hd %hu", 0x1FF, 0x1FF, 0x18000, 0x18000), u"-1 255 -32768 32768");
  EXPECT_EQ(format(u"%ld %llu %zu %qd", -5L, ~0ULL, std::size_t(6), 7LL), u"-5 18446744073709551615 6 7");
  EXPECT_EQ(format(u"%#x %04X %o %+d", 255, 0xAB, 8, 1), u"0xff 00AB 10 +1");
  EXPECT_EQ(format(u"%.3f %g %Lf", 1.5, 0.5, 2.0L), u"1.500 0.5 2.000000");
  EXPECT_EQ(format(u"%p", reinterpret_cast<void *>(0x1F)), u"0x1f");
}

TEST(Format, NumberedArguments) {
  EXPECT_EQ(format(u"%2$@ of %1$d, %2$@", 3, u"x"), u"x of 3, x");
  EXPECT_EQ(format(u"%2$*1$d", 5, 42), u"   42");
}

class Malformed : public testing::TestWithParam<char16_t const *> {};

TEST_P(Malformed, IsRefused) { EXPECT_EQ(format(GetParam(), 1, 2, 3), std::nullopt); }

INSTANTIATE_TEST_SUITE_P(Table, Malformed,
                         testing::Values(u"%", u"a%5", u"%n", u"%y", u"%ls", u"%hhhd", u"%2$d", u"%1$d %d",
                                         u"%1$d %1$@", u"%99999999999d", u"%.70000d", u"%\u304B", u"%999$d"));

}  // namespace
