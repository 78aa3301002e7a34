// What is asked of the help viewer, for information dictionaries that the test makes up. The functions below stand in
// front of the platform's.
#include "support/help.h"

#include "cf_text.h"
#include "ppd_of.h"

#include <Carbon/Carbon.h>
#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace {

struct Opened {
  std::optional<std::string> book, page, anchor;
  bool operator==(Opened const &) const = default;
};
std::vector<Opened> opened;
std::vector<std::string> registered;
// The bundle's information dictionary; a value of NULL stands for one that is no string.
std::map<std::string, char const *> information;
std::vector<OwnedString> lent;
char const *bundle_url = nullptr;

CFBundleRef const kBundle = reinterpret_cast<CFBundleRef>(&information);

}  // namespace

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
  EXPECT_EQ(bundle, kBundle);
  auto const found = information.find(text_of(key).value_or("(null)"));
  if (found == information.end()) return nullptr;
  if (found->second == nullptr) return kCFBooleanTrue;
  return lent.emplace_back(make_string(found->second)).get();
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
  EXPECT_EQ(bundle, kBundle);
  if (bundle_url == nullptr) return nullptr;
  return CFURLCreateWithString(kCFAllocatorDefault, make_string(bundle_url).get(), nullptr);
}

OSStatus AHRegisterHelpBookWithURL(CFURLRef url) {
  registered.push_back(text_of(CFURLGetString(url)).value_or("(null)"));
  return noErr;
}

OSStatus AHGotoPage(CFStringRef book, CFStringRef page, CFStringRef anchor) {
  opened.push_back({text_of(book), text_of(page), text_of(anchor)});
  return noErr;
}

namespace {

class Help : public testing::Test {
 protected:
  void SetUp() override {
    opened.clear();
    registered.clear();
    information = {{"CFBundleHelpBookName", "Fax Help"}};
    bundle_url = nullptr;
  }
  void TearDown() override { lent.clear(); }
  OwnedString page = make_string("FaxSettings.htm"), anchor = make_string("top"), folder = make_string("common");
};

TEST_F(Help, RegistersTheBundle) {
  RegisterHelpBook(nullptr);
  RegisterHelpBook(kBundle);
  EXPECT_TRUE(registered.empty());
  bundle_url = "file:///Library/Fax.bundle/";
  RegisterHelpBook(kBundle);
  EXPECT_EQ(registered, std::vector<std::string>{bundle_url});
}

TEST_F(Help, PageOfTheBundle) {
  GotoHelpPage(nullptr, page.get(), nullptr);
  EXPECT_TRUE(opened.empty());
  GotoHelpPage(kBundle, page.get(), nullptr);
  GotoHelpPage(kBundle, page.get(), anchor.get());
  Opened const expected[] = {{"Fax Help", "FaxSettings.htm", std::nullopt}, {"Fax Help", "FaxSettings.htm", "top"}};
  EXPECT_EQ(opened, std::vector<Opened>(std::begin(expected), std::end(expected)));
}

TEST_F(Help, NoBookOpensNothing) {
  TestPpd ppd{{"QXHelp", "folder"}};
  for (bool not_a_string : {false, true}) {
    information.clear();
    if (not_a_string) information["CFBundleHelpBookName"] = nullptr;
    GotoHelpPage(kBundle, page.get(), nullptr);
    GotoHelpPage2_105(nullptr, nullptr, kBundle, page.get(), nullptr);
    GotoHelpPage2_106(ppd.get(), "QXHelp", kBundle, folder.get(), page.get(), nullptr);
    EXPECT_TRUE(opened.empty());
  }
}

using Dictionary = std::map<std::string, char const *>;

struct BookCase {
  char const *name;
  Dictionary information;
  std::optional<char const *> attribute;  // nullopt: no PPD; NULL: an attribute without a value
  std::optional<std::string> book;        // nullopt: nothing is opened
};

TEST_F(Help, BookByPrinter) {
  Dictionary const named = {{"CFBundleHelpBookName", "Fax Help"}, {"Fax Help", "General"}, {"ModelA", "Help of A"},
                            {"List", nullptr}};
  BookCase const cases[] = {
      {"printer's book", named, "ModelA", "Help of A"},
      {"unknown printer", named, "ModelB", "General"},
      {"no ASCII", named, "\xC3\xA9", "General"},
      {"no PPD", named, std::nullopt, "General"},
      {"attribute without a value", named, nullptr, "General"},
      {"value is no string", named, "List", std::nullopt},
      {"book name is no key", {{"CFBundleHelpBookName", "Fax Help"}}, "ModelA", "Fax Help"},
      {"book name leads to no string", {{"CFBundleHelpBookName", "Fax Help"}, {"Fax Help", nullptr}}, std::nullopt,
       std::nullopt},
      {"printer's book without the bundle's", {{"ModelA", "Help of A"}}, "ModelA", "Help of A"},
  };
  for (auto const &c : cases) {
    SCOPED_TRACE(c.name);
    opened.clear();
    information = c.information;
    TestPpd ppd{{"QXHelpBook", c.attribute.value_or("")}};
    GotoHelpPage2_105(c.attribute ? ppd.get() : nullptr, "QXHelpBook", kBundle, page.get(), anchor.get());
    GotoHelpPage2_105(ppd.get(), "QXHelpBook", nullptr, page.get(), anchor.get());
    if (c.book) {
      EXPECT_EQ(opened, (std::vector<Opened>{{c.book, "FaxSettings.htm", "top"}}));
    } else {
      EXPECT_TRUE(opened.empty());
    }
  }
}

TEST_F(Help, FolderByPrinter) {
  TestPpd ppd{{"QXHelpFolder", "mod\xC3\xA9l"}, {"Valueless", nullptr}};
  struct {
    char const *keyword;
    ppd_file_t *ppd;
    char const *path;
  } const cases[] = {{"QXHelpFolder", ppd.get(), "mod\xC3\xA9l/FaxSettings.htm"},
                     {"Absent", ppd.get(), "common/FaxSettings.htm"},
                     {"Valueless", ppd.get(), "common/FaxSettings.htm"},
                     {nullptr, ppd.get(), "common/FaxSettings.htm"},
                     {"QXHelpFolder", nullptr, "common/FaxSettings.htm"}};
  for (auto const &c : cases) {
    opened.clear();
    GotoHelpPage2_106(c.ppd, c.keyword, kBundle, folder.get(), page.get(), anchor.get());
    EXPECT_EQ(opened, (std::vector<Opened>{{"Fax Help", c.path, "top"}})) << c.path;
  }
  opened.clear();
  GotoHelpPage2_106(ppd.get(), "QXHelpFolder", nullptr, folder.get(), page.get(), nullptr);
  GotoHelpPage2_106(ppd.get(), "QXHelpFolder", kBundle, folder.get(), nullptr, nullptr);
  EXPECT_TRUE(opened.empty());
}

}  // namespace
