// Help from a bundle's call to what stands on the screen: the real bundle's functions, real books and PPD files, and the
// print dialog's help window; in a host without one, the desktop's browser.
#import "host/HostHelpWindow.h"

#import "support/help.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace fs = std::filesystem;
using testing::HasSubstr;

namespace {

struct ClosePpd {
  void operator()(ppd_file_t *ppd) const { ppdClose(ppd); }
};
using Ppd = std::unique_ptr<ppd_file_t, ClosePpd>;

// A function of the real bundle.
template <typename Function>
Function *of_bundle(char const *name) {
  static void *const module = dlopen(BUNDLE_PATH "/DirectFax", RTLD_NOW);
  return module == nullptr ? nullptr : reinterpret_cast<Function *>(dlsym(module, name));
}

auto *const register_book = of_bundle<decltype(RegisterHelpBook)>("RegisterHelpBook");
auto *const goto_page = of_bundle<decltype(GotoHelpPage)>("GotoHelpPage");
auto *const goto_page_105 = of_bundle<decltype(GotoHelpPage2_105)>("GotoHelpPage2_105");
auto *const goto_page_106 = of_bundle<decltype(GotoHelpPage2_106)>("GotoHelpPage2_106");

NSString *ns(std::string const &text) { return [NSString stringWithUTF8String:text.c_str()]; }
CFStringRef cf(char const *text) { return text == nullptr ? nullptr : reinterpret_cast<CFStringRef>(ns(text)); }
CFBundleRef bundle(fs::path const &path) {
  return reinterpret_cast<CFBundleRef>([NSBundle bundleWithPath:ns(path.string())]);
}

class HelpPages : public testing::Test {
protected:
  void SetUp() override {
    ASSERT_TRUE(register_book && goto_page && goto_page_105 && goto_page_106);
    // A browser that writes down what it shall open.
    write("bin/xdg-open", "#!/bin/sh\nprintf '%s\\n' \"$1\" >> '" + told() + "'\n");
    fs::permissions(root_ / "bin/xdg-open", fs::perms::owner_all);
    setenv("PATH", (root_ / "bin").c_str(), 1);
  }

  ~HelpPages() override {
    setenv("PATH", path_.c_str(), 1);
    fs::remove_all(root_);
    [pool_ release];
  }

  static fs::path new_folder() {
    std::string name = (fs::temp_directory_path() / "help b\xC3\xBC" "cher XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    return fs::canonical(name);
  }

  void write(fs::path const &where, std::string const &text) const {
    fs::create_directories((root_ / where).parent_path());
    std::ofstream(root_ / where) << text;
  }

  // A page that says its own name, with an anchor far below it.
  void page(fs::path const &where) const {
    std::string text = "<meta charset=utf-8><title>" + where.stem().string() + "</title><p>This is " + where.string();
    for (int line = 0; line < 100; ++line) text += "<p>Line";
    write(where, text + "<p id='far below'>Far below");
  }

  // A registered book of its own bundle.
  CFBundleRef book(std::string const &name, std::string const &more = "") const {
    write(name + ".bundle/Resources/Info-gnustep.plist",
          "{ CFBundleHelpBookName = \"" + name + "\"; CFBundleHelpBookFolder = Pages; " + more + "}");
    page(name + ".bundle/Resources/Pages/Start.htm");
    CFBundleRef const made = bundle(root_ / (name + ".bundle"));
    register_book(made);
    return made;
  }

  Ppd ppd(std::string const &attributes) const {
    write("printer.ppd",
          "*PPD-Adobe: \"4.3\"\n*FormatVersion: \"4.3\"\n*FileVersion: \"1\"\n*LanguageVersion: English\n"
          "*LanguageEncoding: ISOLatin1\n*PCFileName: \"P.PPD\"\n*Manufacturer: \"Norvalt\"\n*Product: \"(P)\"\n"
          "*PSVersion: \"(3010) 0\"\n*ModelName: \"P\"\n*ShortNickName: \"P\"\n*NickName: \"P\"\n" + attributes);
    Ppd opened(ppdOpenFile((root_ / "printer.ppd").c_str()));
    EXPECT_NE(opened, nullptr);
    return opened;
  }

  std::string told() const { return (root_ / "told").string(); }

  // What the browser was told, once it was started.
  std::string browsed() const {
    std::string text;
    for (int i = 0; i < 500 && !text.ends_with('\n'); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      std::ifstream file(told());
      text.assign(std::istreambuf_iterator<char>(file), {});
    }
    return text;
  }

  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
  std::string const path_ = std::getenv("PATH");
  fs::path const root_ = new_folder();
};

class HelpWindow : public HelpPages {
protected:
  HelpWindow() { [window_ serveHelpBooks]; }
  ~HelpWindow() override { [window_ release]; }

  // The page on the screen as "title: first line"; "" when no window is open. Closes it.
  std::string shown() {
    if (![[window_ panel] isVisible]) return "";
    std::string const title = [[[window_ panel] title] UTF8String], text = [[[window_ textView] string] UTF8String];
    [[window_ panel] performClose:nil];
    return title + ": " + text.substr(0, text.find('\n'));
  }

  std::string text() const { return [[[window_ textView] string] UTF8String]; }

  NSSearchField *search_field() const {
    NSArray *views = [[[window_ panel] contentView] subviews];
    for (NSUInteger at = 0; at < [views count]; ++at)
      if ([[views objectAtIndex:at] isKindOfClass:[NSSearchField class]]) return [views objectAtIndex:at];
    return nil;
  }
  std::string field() const { return [[search_field() stringValue] UTF8String]; }

  void type(char const *words) const {
    [search_field() setStringValue:ns(words)];
    [search_field() sendAction:[search_field() action] to:[search_field() target]];
  }

  // Clicks on the link that begins with this text.
  void follow(char const *link) const {
    NSTextView *view = [window_ textView];
    NSUInteger const at = [[view string] rangeOfString:[@"\n" stringByAppendingString:ns(link)]].location + 1;
    id const leads = [[view textStorage] attribute:NSLinkAttributeName atIndex:at effectiveRange:NULL];
    ASSERT_NE(leads, nil);
    [view clickedOnLink:leads atIndex:at];
  }

  CGFloat scrolled() const { return [[window_ textView] visibleRect].origin.y; }

  HostHelpWindow *window_ = [HostHelpWindow new];
};

TEST_F(HelpWindow, ShowsTheBundlesOwnBook) {
  CFBundleRef const own = bundle(BUNDLE_PATH);
  goto_page(own, CFSTR("FaxSettings.htm"), nullptr);
  EXPECT_EQ(shown(), "") << "not registered yet";
  register_book(own);
  struct {
    char const *page, *shown;
  } const cases[] = {{"FaxSettings.htm", "Fax settings: Fax settings"},
                     {"FaxTransmission.htm", "Sending the fax: Sending the fax"},
                     {nullptr, "DirectFax Help: DirectFax Help"},
                     {"NoPage.htm", ""},
                     {"../Localizable.strings", ""},
                     {"../../../DirectFax", ""},
                     {BUNDLE_PATH "/Resources/English.lproj/DirectFaxHelp/index.html", ""},
                     {"FaxSettings.htm/", ""},
                     {"%46axSettings.htm", ""},
                     {"/etc/passwd", ""}};
  for (auto const &each : cases) {
    goto_page(own, cf(each.page), nullptr);
    EXPECT_EQ(shown(), each.shown) << (each.page != nullptr ? each.page : "(first page)");
  }
  EXPECT_FALSE(fs::exists(told())) << "the browser was asked";
}

TEST_F(HelpWindow, NamesAndAnchors) {
  CFBundleRef const made = book("Names");
  fs::path const pages = "Names.bundle/Resources/Pages";
  for (char const *name : {"two words.htm", "\xC3\x9C" "ber \xE8\xAA\xAC.htm", "100% #1?.htm", "sub/inner.htm"})
    page(pages / name);
  page("outside.htm");
  fs::create_symlink(root_ / "outside.htm", root_ / pages / "link.htm");
  struct {
    char const *page, *shown;
  } const cases[] = {{"two words.htm", "two words"},      {"\xC3\x9C" "ber \xE8\xAA\xAC.htm", "\xC3\x9C" "ber \xE8\xAA\xAC"},
                     {"100% #1?.htm", "100% #1?"},        {"sub/inner.htm", "inner"},
                     {"sub/../two words.htm", "two words"}, {"link.htm", ""},
                     {"../../../../outside.htm", ""},     {"two%20words.htm", ""},
                     {"sub", ""},                         {"..", ""}};
  for (auto const &each : cases) {
    goto_page(made, cf(each.page), nullptr);
    std::string const title = shown();
    EXPECT_EQ(title.substr(0, title.find(": ")), each.shown) << each.page;
  }
  goto_page(made, cf("two words.htm"), nullptr);
  EXPECT_EQ(scrolled(), 0);
  goto_page(made, cf("two words.htm"), CFSTR("far below"));
  EXPECT_GT(scrolled(), 500);
  goto_page(made, cf("two words.htm"), CFSTR("no such anchor"));
  EXPECT_EQ(scrolled(), 0);
  EXPECT_FALSE(fs::exists(told())) << "the browser was asked";
}

// A page that nothing can read does not take the one away that is on the screen.
TEST_F(HelpWindow, KeepsWhatItShows) {
  CFBundleRef const made = book("Kept");
  goto_page(made, CFSTR("Start.htm"), nullptr);
  goto_page(made, CFSTR("Other.htm"), nullptr);
  EXPECT_THAT(shown(), HasSubstr("Start: This is Kept.bundle"));
}

// The window's text, with the marked words in brackets.
std::string marked(NSTextView *view) {
  NSMutableString *text = [[[view string] mutableCopy] autorelease];
  for (NSUInteger at = [text length]; at > 0;) {
    NSRange run;
    id const mark = [[view textStorage] attribute:NSBackgroundColorAttributeName
                                          atIndex:at - 1
                            longestEffectiveRange:&run
                                          inRange:NSMakeRange(0, at)];
    if (mark) [text replaceCharactersInRange:run
                                  withString:[NSString stringWithFormat:@"[%@]", [text substringWithRange:run]]];
    at = run.location;
  }
  return [text UTF8String];
}

TEST_F(HelpWindow, SearchesAllBooks) {
  CFBundleRef const made = book("Searched");
  write("Searched.bundle/Resources/Pages/index.html", "<title>Index</title><p>Nothing here");
  page("Searched.bundle/Resources/Pages/Other.htm");
  write("own/Own.html", "<title>Own</title><h2>Far away</h2><p>It is f\xC3\xA4r below");
  [window_ addBook:ns((root_ / "own/Own.html").string())];
  goto_page(made, CFSTR("Start.htm"), nullptr);
  type("FAR BEL");
  EXPECT_THAT(text(), HasSubstr("Far away \xE2\x80\x93 Own\nIt is f\xC3\xA4r below\n"));
  EXPECT_THAT(text(), HasSubstr("\nOther\n"));
  EXPECT_THAT(text(), HasSubstr("\nStart\n"));
  EXPECT_EQ(marked([window_ textView]), text()) << "the list is not marked";

  follow("Other");
  EXPECT_THAT(marked([window_ textView]), HasSubstr("[Far] [bel]ow"));
  EXPECT_GT(scrolled(), 500);
  EXPECT_EQ(field(), "FAR BEL");
  [window_ goBack:nil];
  EXPECT_THAT(text(), HasSubstr("Far away"));
  [window_ goForward:nil];
  EXPECT_THAT(marked([window_ textView]), HasSubstr("[Far] [bel]ow"));

  // Out of the search, and only then out of the window.
  [window_ leave:nil];
  EXPECT_EQ(marked([window_ textView]), text());
  EXPECT_EQ(field(), "");
  EXPECT_GT(scrolled(), 500);
  EXPECT_TRUE([[window_ panel] isVisible]);
  type("no such word");
  EXPECT_THAT(text(), HasSubstr("no such word"));
  type("");
  EXPECT_THAT(text(), HasSubstr("This is Searched.bundle/Resources/Pages/Other.htm"));
  [window_ leave:nil];
  EXPECT_FALSE([[window_ panel] isVisible]);
}

TEST_F(HelpWindow, LinksCanBeReachedByKeys) {
  CFBundleRef const made = book("Keys");
  page("Keys.bundle/Resources/Pages/Other.htm");
  write("Keys.bundle/Resources/Pages/Links.htm",
        "<title>Links</title><p><a href='Other.htm'>one</a> and <a href='Other.htm#far%20below'><b>tw</b>o</a>");
  goto_page(made, CFSTR("Links.htm"), nullptr);
  HostHelpTextView *view = (HostHelpTextView *)[window_ textView];
  auto selected = [&] { return std::string([[[view string] substringWithRange:[view selectedRange]] UTF8String]); };
  EXPECT_TRUE([view selectLink:+1]);
  EXPECT_EQ(selected(), "one");
  EXPECT_TRUE([view selectLink:+1]);
  EXPECT_EQ(selected(), "two");
  EXPECT_FALSE([view selectLink:+1]);
  EXPECT_TRUE([view selectLink:-1]);
  EXPECT_EQ(selected(), "one");
  EXPECT_FALSE([view selectLink:-1]);
}

// A picture of the book is drawn, one from elsewhere is told by its text.
TEST_F(HelpWindow, PicturesOfTheBook) {
  CFBundleRef const made = book("Pictures");
  for (char const *place : {"later.png", "Pictures.bundle/Resources/Pages/later.png"})
    fs::copy(BUNDLE_PATH "/Resources/DirectFaxHelp/pictures/later.png", root_ / place);
  write("Pictures.bundle/Resources/Pages/P.htm",
        "<p><img src='later.png' alt='ours'/> <img src='../../../later.png' alt='theirs'/> <img src='x.png' alt='lost'/>");
  goto_page(made, CFSTR("P.htm"), nullptr);
  EXPECT_THAT(text(), HasSubstr("\xEF\xBF\xBC theirs lost"));
}

// The book of a language that has pages is shown and searched in that language, and for any other one in English.
TEST_F(HelpWindow, BookInTheUsersLanguage) {
  struct {
    char const *languages, *title;
    bool finds;
  } const cases[] = {{"de", "Hilfe", true}, {"fr", "Help", false}};
  for (auto const &each : cases) {
    std::string const name = std::string("Book for ") + each.languages, resources = name + ".bundle/Resources/";
    write(resources + "Info-gnustep.plist",
          "{ CFBundleHelpBookName = \"" + name + "\"; CFBundleHelpBookFolder = Pages; }");
    for (auto const &[language, title, section] :
         {std::tuple("de", "Hilfe", "Sp\xC3\xA4ter senden"), {"English", "Help", "Send later"}}) {
      std::string const folder = resources + language + ".lproj/";
      write(folder + "Localizable.strings", "\"a\" = \"b\";\n");
      write(folder + "Pages/index.html", std::string("<title>") + title + "</title><p><a href='P.htm#later'>x</a>");
      write(folder + "Pages/P.htm", std::string("<title>") + title + "</title><h2 id='later'>" + section + "</h2><p>x");
    }
    [NSUserDefaults setUserLanguages:[NSArray arrayWithObjects:ns(each.languages), @"English", nil]];
    CFBundleRef const made = bundle(root_ / (name + ".bundle"));
    register_book(made);
    goto_page(made, nullptr, nullptr);
    EXPECT_EQ([[[window_ panel] title] UTF8String], std::string(each.title));
    type("spater");
    EXPECT_EQ(text().find("Sp\xC3\xA4ter senden") != std::string::npos, each.finds) << text();
  }
  [NSUserDefaults setUserLanguages:[NSArray arrayWithObject:@"English"]];
}

TEST_F(HelpWindow, BookByPrinter) {
  book("Help of A");
  book("General");
  CFBundleRef const made = book("Own", "ModelA = \"Help of A\"; ModelB = (x); ModelC = Unregistered; Own = General; ");
  CFBundleRef const plain = book("Plain", "ModelA = \"Help of A\"; ");
  struct {
    char const *attribute;
    CFBundleRef bundle;
    char const *shown;
  } const cases[] = {{"*QXHelpBook: \"ModelA\"\n", made, "Help of A"},
                     {"*QXHelpBook: \"ModelB\"\n", made, ""},
                     {"*QXHelpBook: \"ModelC\"\n", made, ""},
                     {"*QXHelpBook: \"ModelD\"\n", made, "General"},
                     {"*QXHelpBook: \"Mod\xE9l\"\n", made, "General"},
                     {"*QXOther: \"ModelA\"\n", made, "General"},
                     {"*QXHelpBook: \"ModelD\"\n", plain, "Plain"},
                     {"*QXHelpBook: \"ModelA\"\n", plain, "Help of A"}};
  for (auto const &each : cases) {
    goto_page_105(ppd(each.attribute).get(), "QXHelpBook", each.bundle, CFSTR("Start.htm"), nullptr);
    std::string const expected = std::string("Start: This is ") + each.shown + ".bundle/Resources/Pages/Start.htm";
    EXPECT_EQ(shown(), *each.shown == '\0' ? "" : expected) << each.attribute;
  }
  goto_page_105(nullptr, "QXHelpBook", made, CFSTR("Start.htm"), CFSTR("far below"));
  EXPECT_GT(scrolled(), 500);
  EXPECT_THAT(shown(), HasSubstr("This is General.bundle"));
}

TEST_F(HelpWindow, FolderByPrinter) {
  CFBundleRef const made = book("Folders");
  for (char const *name : {"model A/Start.htm", "common/Start.htm", "common/Only here.htm"})
    page(fs::path("Folders.bundle/Resources/Pages") / name);
  page("Folders.bundle/Resources/Secret.htm");
  struct {
    char const *attribute, *page, *shown;
  } const cases[] = {{"*QXHelpFolder: \"model A\"\n", "Start.htm", "model A/Start.htm"},
                     {"*QXHelpFolder: \"model A\"\n", "Only here.htm", ""},
                     {"*QXOther: \"model A\"\n", "Start.htm", "common/Start.htm"},
                     {"*QXHelpFolder: \".\"\n", "Start.htm", "Start.htm"},
                     {"*QXHelpFolder: \"..\"\n", "Secret.htm", ""},
                     {"*QXHelpFolder: \"no such\"\n", "Start.htm", ""}};
  for (auto const &each : cases) {
    goto_page_106(ppd(each.attribute).get(), "QXHelpFolder", made, CFSTR("common"), cf(each.page), nullptr);
    std::string const text = shown(), place = "This is Folders.bundle/Resources/Pages/";
    std::size_t const at = text.find(place);
    EXPECT_EQ(at == std::string::npos ? text : text.substr(at + place.size()), each.shown) << each.attribute;
  }
  goto_page_106(nullptr, nullptr, made, CFSTR("common"), CFSTR("Only here.htm"), nullptr);
  EXPECT_THAT(shown(), HasSubstr("common/Only here.htm"));
  goto_page_106(nullptr, nullptr, made, nullptr, CFSTR("Start.htm"), nullptr);
  EXPECT_EQ(shown(), "") << "no folder";
}

// No window is there to show it.
TEST_F(HelpPages, TheBrowserShowsThemToOtherHosts) {
  CFBundleRef const made = book("Browsed");
  page("Browsed.bundle/Resources/Pages/\xC3\x9C" "ber 100%#.htm");
  goto_page(made, CFSTR("../Info-gnustep.plist"), nullptr);
  goto_page(made, CFSTR("No.htm"), nullptr);
  goto_page(made, cf("\xC3\x9C" "ber 100%#.htm"), cf("far \xC3\xBC"));
  std::string folder = root_.string();
  for (auto const &[from, to] : {std::pair("\xC3\xBC", "%C3%BC"), {" ", "%20"}})
    for (std::size_t at; (at = folder.find(from)) != std::string::npos;) folder.replace(at, std::strlen(from), to);
  EXPECT_EQ(browsed(), "file://" + folder +
                           "/Browsed.bundle/Resources/Pages/%C3%9Cber%20100%25%23.htm#far%20%C3%BC\n");
}

TEST_F(HelpPages, TheBrowserShowsTheBundlesOwnBook) {
  CFBundleRef const own = bundle(BUNDLE_PATH);
  register_book(own);
  goto_page(own, CFSTR("FaxTransmission.htm"), nullptr);
  EXPECT_EQ(browsed(), "file://" + fs::canonical(BUNDLE_PATH).string() +
                           "/Resources/English.lproj/DirectFaxHelp/FaxTransmission.htm\n");
}

}  // namespace
