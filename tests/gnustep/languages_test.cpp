// The user's environment decides in which language a bundle speaks, in every way that a bundle is asked.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

namespace {

namespace fs = std::filesystem;

class Languages : public testing::Test {
 protected:
  Languages() {
    char folder[] = "/tmp/directfax-languages-XXXXXX";
    root_ = mkdtemp(folder);
    for (std::string language : {"English", "ja", "de", "pt-BR", "zh-Hans"}) {
      fs::path const texts = root_ / "Try.bundle/Resources" / (language + ".lproj");
      fs::create_directories(texts);
      std::ofstream(texts / "Localizable.strings") << "\"word\" = \"" << language << " word\";\n";
      std::ofstream(texts / "page.htm") << language;
    }
  }
  ~Languages() override { fs::remove_all(root_); }

  // What the program says; environment is "NAME=value ...", for a user without any defaults but arguments.
  std::string said(std::string const &environment, std::string const &arguments) {
    std::string const command = "env -u LC_ALL -u LC_MESSAGES -u LANGUAGE -u LANG " + environment + " " SAY_LANGUAGES " " +
                                (root_ / "Try.bundle").string() + " " PLATFORM_LIBRARY " " + arguments + " 2>&1";
    std::unique_ptr<std::FILE, int (*)(std::FILE *)> const pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    for (int letter; (letter = std::getc(pipe.get())) != EOF;) text += static_cast<char>(letter);
    return text;
  }

  fs::path root_;
};

std::string all(std::string const &language) { return language + " word " + language + ".lproj " + language + "\n"; }

TEST_F(Languages, OfTheEnvironmentUnlessTheUserHasSetTheDefault) {
  struct {
    char const *environment, *arguments;
    std::string said;
  } const cases[] = {
      {"", "", all("English")},
      {"LANG=C", "", all("English")},
      {"LANG=ja_JP.UTF-8", "", all("ja")},
      {"LANG=pt_BR.UTF-8", "", all("pt-BR")},
      {"LANG=zh_CN.UTF-8", "", all("zh-Hans")},
      {"LANG=zh_TW.UTF-8", "", all("English")},
      {"LANG=de_DE LC_ALL=ja_JP", "", all("ja")},
      {"LANG=ja_JP LANGUAGE=nl:de", "", all("de")},
      {"LANG=C LANGUAGE=de", "", all("English")},
      {"LANG=ja_JP.UTF-8", "-NSLanguages '(German)'", all("de")},
      {"LANG=ja_JP.UTF-8", "-NSLanguages '(de_AT)'", all("de")},
      {"LANG=ja_JP.UTF-8", "-NSLanguages '(sv)'", all("English")},
      {"LANG=ja_JP.UTF-8", "de", all("ja") + all("de")},
  };
  for (auto const &row : cases)
    EXPECT_EQ(said(row.environment, row.arguments), row.said) << row.environment << " " << row.arguments;
}

}  // namespace
