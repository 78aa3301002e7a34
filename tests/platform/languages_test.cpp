#include "platform/languages.h"

#include <gmock/gmock.h>

#include <map>

namespace {

using testing::ElementsAre;
using Variables = std::map<std::string, std::string>;

std::vector<std::string> wanted(Variables const &variables) {
  return fax::wanted_languages([&](char const *name) {
    auto const found = variables.find(name);
    return found != variables.end() ? found->second.c_str() : nullptr;
  });
}

TEST(Languages, LocalesAndNamesOfMacOS) {
  for (auto const &[locale, language] : std::map<std::string, std::string>{
           {"ja_JP.UTF-8", "ja"}, {"de_AT@euro", "de"}, {"pt_BR", "pt-BR"},      {"pt-PT", "pt-BR"},
           {"zh_CN.GB18030", "zh-Hans"}, {"zh-Hans-CN", "zh-Hans"}, {"zh", "zh-Hans"}, {"zh_TW", ""},
           {"zh-Hant", ""},       {"sv_SE", ""},      {"C", ""},              {"", ""},  {"_", ""},
           {"en_GB.UTF-8", "en"}, {"deutsch", ""}})
    EXPECT_EQ(fax::known_language(locale), language) << locale;
}

TEST(Languages, TheEnvironmentDecidesAsPosixSays) {
  EXPECT_THAT(wanted({}), ElementsAre("en"));
  EXPECT_THAT(wanted({{"LANG", "ja_JP.UTF-8"}}), ElementsAre("ja", "en"));
  EXPECT_THAT(wanted({{"LANG", "ja_JP.UTF-8"}, {"LC_ALL", ""}, {"LC_MESSAGES", "de_DE"}}), ElementsAre("de", "en"));
  EXPECT_THAT(wanted({{"LC_ALL", "fr_FR"}, {"LC_MESSAGES", "de_DE"}}), ElementsAre("fr", "en"));
  EXPECT_THAT(wanted({{"LANG", "de_DE"}, {"LANGUAGE", "sv:nl:de:nl"}}), ElementsAre("nl", "de", "en"));
  EXPECT_THAT(wanted({{"LANG", "C.UTF-8"}, {"LANGUAGE", "ja"}}), ElementsAre("en"));
  EXPECT_THAT(wanted({{"LANG", "it_IT"}, {"LANGUAGE", "en_GB:it"}}), ElementsAre("en"));
}

}  // namespace
