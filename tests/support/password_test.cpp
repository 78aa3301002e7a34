#include "support/password.h"
#include "support/printer_encoding.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr fax::EncodingNumber kUtf8 = 0x08000100, kShiftJis = 0x0628, kLatin1 = 0x0201, kWindows = 0x0500;

struct EncodingCase {
  std::string_view name;
  fax::EncodingNumber number;
};

TEST(PrinterEncoding, ByAttributeValue) {
  constexpr EncodingCase kCases[] = {
      {"UTF-8", kUtf8},        {"JIS83-RKSJ", kShiftJis}, {"ISOLatin1", kLatin1},    {"WindowsANSI", kWindows},
      {"utf-8", kShiftJis},    {"UTF-8 ", kShiftJis},     {"UTF-", kShiftJis},       {"", kShiftJis},
      {"isolatin1", kShiftJis}, {"ISOLatin15", kShiftJis}, {"WindowsANSI2", kShiftJis}};
  for (auto const &c : kCases) EXPECT_EQ(fax::printer_encoding(c.name), c.number) << c.name;
}

struct PasswordCase {
  char const *name;
  std::string base64;
  fax::EncodingNumber encoding;
  std::optional<std::string> password;
};

class Password : public testing::TestWithParam<PasswordCase> {};

TEST_P(Password, Deciphered) {
  EXPECT_EQ(fax::decipher_password(GetParam().base64, GetParam().encoding), GetParam().password);
}

using namespace std::string_literals;
// 1234 XOR tovq is 45 5D 45 45.
PasswordCase const kPasswordCases[] = {
    {"four_digits", "RV1FRQ==", kShiftJis, "1234"},
    {"one_digit", "RQ==", kUtf8, "1"},
    {"latin1", "nQ==", kLatin1, "\xC3\xA9"},      // E9 ^ 74
    {"utf8", "t8Y=", kUtf8, "\xC3\xA9"},          // C3 ^ 74, A9 ^ 6F
    {"empty", "", kUtf8, std::nullopt},
    {"no_multiple_of_four", "RV1FRQ", kUtf8, std::nullopt},
    {"plain_digits_left_in", "12345", kUtf8, std::nullopt},
    {"outside_the_alphabet", "RV1-RQ==", kUtf8, std::nullopt},
    {"space", "RV1F RQ==  =", kUtf8, std::nullopt},
    {"nul", "RV\0FRQ=="s, kUtf8, std::nullopt},
    {"high_byte", "RV1\xC3RQ==", kUtf8, std::nullopt},
    {"padding_inside", "RQ==RV1F", kUtf8, std::nullopt},
    {"three_paddings", "R===", kUtf8, std::nullopt},
    {"only_padding", "====", kUtf8, std::nullopt},
    {"no_text_in_the_encoding", "nQ==", kUtf8, std::nullopt},
    {"unknown_encoding", "RQ==", 0x12345678, std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(Table, Password, testing::ValuesIn(kPasswordCases),
                         [](auto const &i) { return std::string(i.param.name); });

}  // namespace
