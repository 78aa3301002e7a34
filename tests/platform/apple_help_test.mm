#include <Carbon/Carbon.h>
#include <DirectFaxHelp.h>

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <thread>

namespace fs = std::filesystem;

namespace {

// Sets an environment variable until it goes.
class Variable {
public:
  Variable(char const *name, char const *value) : name_(name) {
    if (char const *old = std::getenv(name)) old_ = old;
    value == nullptr ? unsetenv(name) : setenv(name, value, 1);
  }
  ~Variable() { old_ ? setenv(name_, old_->c_str(), 1) : unsetenv(name_); }
  Variable(Variable const &) = delete;
  Variable &operator=(Variable const &) = delete;

private:
  char const *name_;
  std::optional<std::string> old_;
};

class AppleHelp : public testing::Test {
protected:
  AppleHelp() {
    std::string name = (fs::temp_directory_path() / "book-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    root_ = fs::canonical(name);
    bundle("Fax.bundle", "{ CFBundleHelpBookName = \"Fax Help\"; CFBundleHelpBookFolder = \"FaxHelp\"; }");
    for (char const *language : {"en", "ja"}) {
      fs::path const folder = root_ / "Fax.bundle/Resources" / (std::string(language) + ".lproj") / "FaxHelp";
      fs::create_directories(folder);
      std::ofstream(folder / "a page.htm") << "<html>";
    }
    [NSUserDefaults setUserLanguages:[NSArray arrayWithObject:@"Japanese"]];
    EXPECT_EQ(registered("Fax.bundle"), noErr);
  }

  ~AppleHelp() override {
    DirectFaxSetHelpViewer(nullptr, nullptr);
    fs::remove_all(root_);
    [pool_ release];
  }

  void bundle(char const *name, char const *information) {
    fs::create_directories(root_ / name / "Resources");
    std::ofstream(root_ / name / "Resources/Info-gnustep.plist") << information;
  }

  OSStatus registered(char const *name) {
    NSString *path = [NSString stringWithUTF8String:(root_ / name).c_str()];
    return AHRegisterHelpBookWithURL(reinterpret_cast<CFURLRef>([NSURL fileURLWithPath:path isDirectory:YES]));
  }

  struct Shown {
    std::string page, anchor;
    bool accepts = true;
  };

  static Boolean show(CFURLRef page, CFStringRef anchor, void *context) {
    auto &shown = *static_cast<Shown *>(context);
    UInt8 path[512] = "";
    char text[64] = "(none)";
    CFURLGetFileSystemRepresentation(page, true, path, sizeof path);
    if (anchor != nullptr) CFStringGetCString(anchor, text, sizeof text, kCFStringEncodingUTF8);
    shown.page = reinterpret_cast<char *>(path);
    shown.anchor = text;
    return shown.accepts;
  }

  static Boolean raise(CFURLRef, CFStringRef, void *) {
    [NSException raise:NSGenericException format:@"viewer is broken"];
    return true;
  }

  std::string place(char const *language) const {
    return (root_ / "Fax.bundle/Resources" / (std::string(language) + ".lproj") / "FaxHelp/a page.htm").string();
  }

  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
  fs::path root_;
};

TEST_F(AppleHelp, ViewerGetsThePageOfTheUsersLanguage) {
  Shown shown;
  DirectFaxSetHelpViewer(show, &shown);
  EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), CFSTR("a page.htm"), CFSTR("top")), noErr);
  EXPECT_EQ(shown.page, place("ja"));
  EXPECT_EQ(shown.anchor, "top");
  [NSUserDefaults setUserLanguages:[NSArray arrayWithObject:@"German"]];
  EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), CFSTR("a page.htm"), nullptr), noErr);
  EXPECT_EQ(shown.page, place("en"));
  EXPECT_EQ(shown.anchor, "(none)");
}

// Pages name buttons: they are in the language of the bundle's own texts, even where that is not the first of the user's.
TEST_F(AppleHelp, PagesAreInTheLanguageOfTheTexts) {
  Shown shown;
  DirectFaxSetHelpViewer(show, &shown);
  [NSUserDefaults setUserLanguages:[NSArray arrayWithObjects:@"ja", @"en", nil]];
  for (std::string const texts : {"en", "ja"}) {
    std::string const name = "Texts " + texts;
    fs::path const resources = root_ / (name + ".bundle") / "Resources";
    for (char const *language : {"en.lproj", "ja.lproj"}) {
      fs::create_directories(resources / language / "Help");
      std::ofstream(resources / language / "Help/p.htm") << "<html>";
    }
    std::ofstream(resources / (texts + ".lproj") / "Localizable.strings") << "\"a\" = \"b\";\n";
    bundle((name + ".bundle").c_str(),
           ("{ CFBundleHelpBookName = \"" + name + "\"; CFBundleHelpBookFolder = Help; }").c_str());
    EXPECT_EQ(registered((name + ".bundle").c_str()), noErr);
    NSString *book = [NSString stringWithUTF8String:name.c_str()];
    EXPECT_EQ(AHGotoPage(reinterpret_cast<CFStringRef>(book), CFSTR("p.htm"), nullptr), noErr);
    EXPECT_EQ(shown.page, (resources / (texts + ".lproj") / "Help/p.htm").string());
  }
}

TEST_F(AppleHelp, FirstPagesOfAllBooks) {
  NSArray *before = [(NSArray *)DirectFaxCopyHelpBooks() autorelease];
  for (char const *language : {"en", "ja"})
    std::ofstream(root_ / "Fax.bundle/Resources" / (std::string(language) + ".lproj") / "FaxHelp/index.html") << "<html>";
  NSArray *after = [(NSArray *)DirectFaxCopyHelpBooks() autorelease];
  ASSERT_EQ([after count], [before count] + 1) << "a book without a first page was counted";
  std::string const first = fs::path(place("ja")).parent_path() / "index.html";
  EXPECT_TRUE([[after valueForKey:@"path"] containsObject:[NSString stringWithUTF8String:first.c_str()]]);
}

TEST_F(AppleHelp, WhatIsNotThere) {
  Shown shown;
  DirectFaxSetHelpViewer(show, &shown);
  EXPECT_EQ(AHGotoPage(nullptr, CFSTR("a page.htm"), nullptr), kAHParamErr);
  EXPECT_EQ(AHGotoPage(CFSTR("Other Help"), CFSTR("a page.htm"), nullptr), kAHNoSuchBook);
  EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), CFSTR("no page.htm"), nullptr), kAHNoSuchBook);
  EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), CFSTR("../../Info-gnustep.plist"), nullptr), kAHNoSuchBook);
  EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), nullptr, nullptr), kAHNoSuchBook);  // it has no first page
  EXPECT_EQ(shown.page, "");
}

TEST_F(AppleHelp, BundlesThatAreNoBooks) {
  bundle("NoName.bundle", "{ CFBundleHelpBookFolder = \"FaxHelp\"; }");
  bundle("NoFolder.bundle", "{ CFBundleHelpBookName = \"Half Help\"; }");
  bundle("Strange.bundle", "{ CFBundleHelpBookName = ( a, b ); CFBundleHelpBookFolder = \"FaxHelp\"; }");
  EXPECT_EQ(registered("NoName.bundle"), kAHNoSuchBook);
  EXPECT_EQ(registered("NoFolder.bundle"), kAHNoSuchBook);
  EXPECT_EQ(registered("Strange.bundle"), kAHNoSuchBook);
  EXPECT_EQ(registered("nowhere"), kAHParamErr);
  EXPECT_EQ(AHRegisterHelpBookWithURL(nullptr), kAHParamErr);
  EXPECT_EQ(AHGotoPage(CFSTR("Half Help"), CFSTR("a page.htm"), nullptr), kAHNoSuchBook);
}

TEST_F(AppleHelp, BrowserTakesWhatTheViewerRefuses) {
  fs::path const told = root_ / "told";
  fs::create_directories(root_ / "bin");
  std::ofstream(root_ / "bin/xdg-open") << "#!/bin/sh\nprintf '%s' \"$1\" > '" << told.string() << ".new'\n/bin/mv '"
                                        << told.string() << ".new' '" << told.string() << "'\n";
  fs::permissions(root_ / "bin/xdg-open", fs::perms::owner_all);
  Variable const path("PATH", (root_ / "bin").c_str()), display("DISPLAY", ":99");
  Shown shown{"", "", false};
  DirectFaxSetHelpViewer(show, &shown);
  EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), CFSTR("a page.htm"), CFSTR("top 1")), noErr);
  EXPECT_EQ(shown.page, place("ja"));
  for (int i = 0; i < 500 && !fs::exists(told); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  std::ostringstream url;
  url << std::ifstream(told).rdbuf();
  std::string expected = "file://" + place("ja") + "#top%201";
  expected.replace(expected.find("a page"), 6, "a%20page");
  EXPECT_EQ(url.str(), expected);
}

TEST_F(AppleHelp, NothingCanShowIt) {
  fs::create_directories(root_ / "bin");
  Variable const path("PATH", (root_ / "bin").c_str()), wayland("WAYLAND_DISPLAY", nullptr);
  {
    Variable const display("DISPLAY", ":99");  // a desktop without xdg-open
    EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), CFSTR("a page.htm"), nullptr), kAHInternalErr);
  }
  std::ofstream(root_ / "bin/xdg-open") << "#!/bin/sh\n";
  fs::permissions(root_ / "bin/xdg-open", fs::perms::owner_all);
  Variable const display("DISPLAY", nullptr);  // no desktop
  EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), CFSTR("a page.htm"), nullptr), kAHInternalErr);
  DirectFaxSetHelpViewer(raise, nullptr);
  EXPECT_EQ(AHGotoPage(CFSTR("Fax Help"), CFSTR("a page.htm"), nullptr), kAHInternalErr);
}

}  // namespace
