#include "support/password_cipher.h"

#include "support/password.h"

#include "cf_text.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::optional<std::string> encrypted(std::string const &plain, CFStringEncoding encoding) {
  return text_of(OwnedString(CreateEncryptedString(make_string(plain).get(), encoding)).get());
}

std::optional<std::string> decrypted(std::string const &base64, CFStringEncoding encoding) {
  return text_of(OwnedString(CreateDecryptedString(make_string(base64).get(), encoding)).get());
}

struct EncryptCase {
  char const *name;
  std::string plain;
  CFStringEncoding encoding;
  std::optional<std::string> base64;
};

class EncryptedString : public testing::TestWithParam<EncryptCase> {};

TEST_P(EncryptedString, Is) { EXPECT_EQ(encrypted(GetParam().plain, GetParam().encoding), GetParam().base64); }

EncryptCase const kEncryptCases[] = {
    {"digits", "1234", kCFStringEncodingShiftJIS_X0213, "RV1FRQ=="},
    {"latin1", "\xC3\xA9", kCFStringEncodingISOLatin1, "nQ=="},
    {"utf8", "\xC3\xA9", kCFStringEncodingUTF8, "t8Y="},
    {"ends_at_what_the_encoding_lacks", "1\xE3\x81\x82" "2", kCFStringEncodingISOLatin1, "RQ=="},
    {"begins_with_what_the_encoding_lacks", "\xE3\x81\x82" "2", kCFStringEncodingISOLatin1, std::nullopt},
    {"empty", "", kCFStringEncodingUTF8, std::nullopt},
    {"unknown_encoding", "1234", 0x12345678, std::nullopt},
};
INSTANTIATE_TEST_SUITE_P(Table, EncryptedString, testing::ValuesIn(kEncryptCases),
                         [](auto const &i) { return std::string(i.param.name); });

TEST(EncryptedStringLength, LongestPasswordHas189Bytes) {
  auto const longest = encrypted(std::string(189, '7'), kCFStringEncodingShiftJIS_X0213);
  ASSERT_TRUE(longest);
  EXPECT_EQ(longest->size(), 252u);
  EXPECT_EQ(decrypted(*longest, kCFStringEncodingShiftJIS_X0213), std::string(189, '7'));
  for (std::size_t length : {190, 255, 256, 1000})
    EXPECT_EQ(encrypted(std::string(length, '7'), kCFStringEncodingShiftJIS_X0213), std::nullopt) << length;
}

TEST(EncryptedStringLength, EveryLengthComesBackHereAndAtTheDriver) {
  for (std::size_t length = 1; length <= 189; ++length) {
    std::string plain;
    for (std::size_t i = 0; i < length; ++i) plain += static_cast<char>(' ' + (i * 31 + length) % 95);
    auto const base64 = encrypted(plain, kCFStringEncodingUTF8);
    ASSERT_TRUE(base64) << length;
    EXPECT_EQ(decrypted(*base64, kCFStringEncodingUTF8), plain);
    EXPECT_EQ(fax::decipher_password(*base64, kCFStringEncodingUTF8), plain);
  }
}

struct DecryptCase {
  char const *name;
  std::string base64;
  std::optional<std::string> plain;
};

TEST(DecryptedString, FailsWithoutAText) {
  DecryptCase const cases[] = {
      {"password", "RV1FRQ==", "1234"},
      {"space inside", "RV1F RQ==   ", "1234"},
      {"empty", "", std::nullopt},
      {"no multiple of four", "RV1FRQ", std::nullopt},
      {"nothing decoded", "    ", std::nullopt},
      {"not the encoding", "nQ==", std::nullopt},
      {"no ASCII", "\xC3\xA9", std::nullopt},
  };
  for (auto const &c : cases) EXPECT_EQ(decrypted(c.base64, kCFStringEncodingUTF8), c.plain) << c.name;
  EXPECT_EQ(CreateDecryptedString(nullptr, kCFStringEncodingUTF8), nullptr);
  EXPECT_EQ(CreateEncryptedString(nullptr, kCFStringEncodingUTF8), nullptr);
}

// 256 characters fill the work buffer to its last byte.
TEST(DecryptedString, FullBufferOfBase64) {
  std::string base64, plain;
  for (int i = 0; i < 64; ++i) base64 += "AAAA";
  for (int i = 0; i < 192; ++i) plain += "tovq"[i % 4];
  EXPECT_EQ(decrypted(base64, kCFStringEncodingISOLatin1), plain);
}

}  // namespace
