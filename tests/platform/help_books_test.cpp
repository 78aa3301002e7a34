#include "platform/help_books.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>

namespace fs = std::filesystem;

namespace {

class HelpPages : public testing::Test {
protected:
  HelpPages() {
    std::string name = (fs::temp_directory_path() / "help-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    root_ = fs::canonical(name);
  }
  ~HelpPages() override { fs::remove_all(root_); }

  void page(fs::path const &where) {
    fs::create_directories((root_ / where).parent_path());
    std::ofstream(root_ / where) << "<html>";
  }

  // The page's place below the resources; "" when none was found.
  std::string find(std::string const &name, std::vector<std::string> const &languages = {},
                   std::string const &folder = "Book") {
    auto const found = fax::find_help_page({root_ / "res", folder}, name, languages);
    return found ? fs::relative(*found, root_ / "res").string() : "";
  }

  fs::path root_;
};

TEST_F(HelpPages, EachPlaceInItsTurn) {
  // From the last resort to the first choice: each page that comes hides those before it.
  for (std::string place : {"Book/Contents/Resources/p.htm", "Book/p.htm", "Book/Contents/Resources/en.lproj/p.htm",
                            "English.lproj/Book/p.htm", "Book/English.lproj/p.htm",
                            "Book/Contents/Resources/Japanese.lproj/p.htm", "Japanese.lproj/Book/p.htm",
                            "Book/Japanese.lproj/p.htm", "ja.lproj/Book/p.htm", "Book/ja.lproj/p.htm",
                            "Book/ja_JP.lproj/p.htm"}) {
    page("res" / fs::path(place));
    EXPECT_EQ(find("p.htm", {"ja_JP", "French"}), place);
  }
  EXPECT_EQ(find("p.htm", {"German"}), "Book/English.lproj/p.htm");
  EXPECT_EQ(find("p.htm", {"Japanese"}), "Book/Japanese.lproj/p.htm");
}

TEST_F(HelpPages, APageThatALanguageLacksComesFromTheNext) {
  page("res/Book/ja.lproj/one.htm");
  page("res/Book/en.lproj/two.htm");
  EXPECT_EQ(find("two.htm", {"ja"}), "Book/en.lproj/two.htm");
  EXPECT_EQ(find("three.htm", {"ja"}), "");
}

TEST_F(HelpPages, FirstPage) {
  page("res/Book/en.lproj/index.html");
  EXPECT_EQ(find("", {"ja"}), "Book/en.lproj/index.html");
  page("res/Book/ja.lproj/index.htm");
  EXPECT_EQ(find("", {"ja"}), "Book/ja.lproj/index.htm");
}

TEST_F(HelpPages, SubfoldersAndNamesOutsideAscii) {
  page("res/Book/en.lproj/model 1/\xE8\xAA\xAC.htm");
  EXPECT_EQ(find("model 1/\xE8\xAA\xAC.htm"), "Book/en.lproj/model 1/\xE8\xAA\xAC.htm");
  EXPECT_EQ(find("model 1/../model 1/\xE8\xAA\xAC.htm"), "Book/en.lproj/model 1/\xE8\xAA\xAC.htm");
}

TEST_F(HelpPages, NothingOutsideTheBook) {
  page("res/secret.htm");
  page("res/Bookend/secret.htm");
  page("outside.htm");
  page("res/Book/en.lproj/p.htm");
  fs::create_symlink(root_ / "outside.htm", root_ / "res/Book/en.lproj/link.htm");
  fs::create_directory_symlink(root_, root_ / "res/Away");
  EXPECT_EQ(find("../../secret.htm"), "");
  EXPECT_EQ(find("../secret.htm"), "");
  EXPECT_EQ(find("../../Bookend/secret.htm"), "");
  EXPECT_EQ(find((root_ / "outside.htm").string()), "");
  EXPECT_EQ(find("link.htm"), "");
  EXPECT_EQ(find(std::string("p.htm\0x", 7)), "");
  EXPECT_EQ(find("."), "");  // a folder is no page
  EXPECT_EQ(find("outside.htm", {}, ".."), "");
  EXPECT_EQ(find("outside.htm", {}, "Away"), "");
  EXPECT_EQ(find("outside.htm", {}, root_.string()), "");
  EXPECT_EQ(find("p.htm", {}, ""), "");
  EXPECT_EQ(find("p.htm", {"../../x", ""}), "Book/en.lproj/p.htm");
}

TEST_F(HelpPages, ABookReachedThroughALink) {
  page("real/Book/en.lproj/p.htm");
  fs::create_directory_symlink(root_ / "real", root_ / "res");
  EXPECT_EQ(fax::find_help_page({root_ / "res", "Book"}, "p.htm", {}), root_ / "real/Book/en.lproj/p.htm");
}

TEST(LanguageNames, NameAndCode) {
  using testing::ElementsAre;
  EXPECT_THAT(fax::language_names("ja_JP"), ElementsAre("ja_JP", "ja", "Japanese"));
  EXPECT_THAT(fax::language_names("Japanese"), ElementsAre("Japanese", "ja"));
  EXPECT_THAT(fax::language_names("pt-BR"), ElementsAre("pt-BR", "pt", "Portuguese"));
  EXPECT_THAT(fax::language_names("Klingon"), ElementsAre("Klingon"));
  EXPECT_THAT(fax::language_names(""), ElementsAre());
}

}  // namespace
