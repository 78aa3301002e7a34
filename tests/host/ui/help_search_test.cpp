// What a search in the help finds, and where.
#include "host/help_search.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fs = std::filesystem;

namespace fax::host {
namespace {

// The text with the places in brackets; "-" unless every word is there.
std::string marked(std::string_view typed, std::u16string text) {
  SearchWords const words{typed};
  if (!words.all_in(text)) return "-";
  auto const places = words.places(text);
  for (auto place = places.rbegin(); place != places.rend(); ++place) {
    text.insert(place->start + place->length, u"]");
    text.insert(place->start, u"[");
  }
  return std::string(reinterpret_cast<char const *>(fs::path{text}.u8string().c_str()));
}

TEST(SearchWords, FindWhatAPersonMeans) {
  struct {
    char const *typed;
    char16_t const *text;
    char const *marked;
  } const cases[] = {
      {"fax", u"DirectFax: a FAX", "Direct[Fax]: a [FAX]"},
      {"fax send", u"Send a fax", "[Send] a [fax]"},
      {"send mail", u"Send a fax", "-"},
      {"a fax", u"a fax at last", "a [fax] at last"},
      {"a", u"a fax", "[a] f[a]x"},
      {"  fax\t", u"fax", "[fax]"},
      {"", u"fax", "-"},
      {" ", u"fax", "-"},
      {"muller", u"Müller, Mu\u0308ller", "[Müller], [Mu\u0308ller]"},
      {"MÜLLER", u"Muller", "[Muller]"},
      {"strasse", u"Straße 1", "[Straße] 1"},
      {"ß", u"Strasse", "Stra[ss]e"},
      {"printer's", u"the printer’s own", "the [printer’s] own"},
      {"pass ssw", u"password", "[passw]ord"},
      {"senden fax", u"Fax versenden", "[Fax] ver[senden]"},
      {"file", u"a ﬁle", "a [ﬁle]"},
      {"...", u"Printer…", "Printer[…]"},
      {"ファックス", u"ﾌｧｯｸｽを送る", "[ﾌｧｯｸｽ]を送る"},
      {"ハス", u"バス", "-"},
      {"バス", u"ﾊﾞｽ", "[ﾊﾞｽ]"},
      {"送信", u"ファクス送信", "ファクス[送信]"},
      {"팩스", u"팩스를 보내기", "[팩스]를 보내기"},
      {"ＦＡＸ １", u"fax 1", "[fax] 1"},
      {"😀", u"x😀y", "x[😀]y"},
      {"\xFF\xC3", u"fax", "-"},
  };
  for (auto const &each : cases) EXPECT_EQ(marked(each.typed, each.text), each.marked) << each.typed;
}

class Books : public testing::Test {
 protected:
  Books() {
    std::string name = (fs::temp_directory_path() / "book-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    root_ = name;
  }
  ~Books() override { fs::remove_all(root_); }

  std::string write(std::string const &name, std::string const &html) const {
    fs::create_directories((root_ / name).parent_path());
    std::ofstream(root_ / name) << html;
    return (root_ / name).string();
  }

  // "file | page | section | block | excerpt, with <b>" for each hit.
  std::string found(std::string_view typed, std::vector<std::string> const &books) const {
    std::string out;
    for (auto const &hit : search_help(read_help_books(books), SearchWords{typed})) {
      out += fs::path{hit.path}.filename().string() + " | " + hit.page + " | " + hit.section + " | " +
             std::to_string(hit.block) + " | ";
      for (auto const &run : hit.excerpt) out += run.bold ? "<b>" + run.text + "</b>" : run.text;
      out += "\n";
    }
    return out;
  }

  fs::path root_;
};

TEST_F(Books, PagesComeInTheOrderOfTheIndex) {
  std::string const first = write("en/A.htm", "<title>A</title><p>word");
  write("en/Z.htm", "<title>Z</title><p>word");
  write("en/B.html", "<title>B</title><p>word");
  write("en/notes.txt", "word");
  write("en/empty.htm", "");
  write("en/index.html", "<title>I</title><p>word<p><a href='Z.htm#x'>word</a>, <a href='../out.htm'>x</a>");
  std::string const other = write("out.htm", "<title>Out</title><p>word");
  EXPECT_EQ(found("word", {first, (root_ / "en/Z.htm").string(), other, (root_ / "nowhere/x.htm").string()}),
            "index.html | I | I | 0 | <b>word</b>\nZ.htm | Z | Z | 0 | <b>word</b>\nA.htm | A | A | 0 | <b>word</b>\n"
            "B.html | B | B | 0 | <b>word</b>\nout.htm | Out | Out | 0 | <b>word</b>\n");
}

TEST_F(Books, HitsAreSections) {
  std::string const page = write("p.htm",
      "<title>P</title><h1>Top</h1><p>one<h2>Two</h2><p>nothing<p>two <b>three</b><p>two"
      "<ul><li><a href='#x'>four</a></ul><h2>Four three</h2><p><img src='x.png' alt='five'><p>text"
      "<table><tr><td>six<td>seven</table><h2>Last</h2>");
  struct {
    char const *typed, *found;
  } const cases[] = {
      {"one", "p.htm | P | Top | 1 | <b>one</b>\n"},
      {"three two", "p.htm | P | Two | 2 | <b>two</b> <b>three</b>\n"},
      {"three", "p.htm | P | Four three | 7 | text\np.htm | P | Two | 4 | two <b>three</b>\n"},
      {"four", "p.htm | P | Four three | 7 | text\n"},
      {"five", ""},
      {"six sev", "p.htm | P | Four three | 10 | <b>six</b> \u2013 <b>sev</b>en\n"},
      {"last", "p.htm | P | Last | 11 | \n"},
      {"one three", ""},
  };
  for (auto const &each : cases) EXPECT_EQ(found(each.typed, {page}), each.found) << each.typed;
}

TEST_F(Books, AnExcerptOfALongText) {
  std::string words, kanji;
  for (int i = 0; i < 60; ++i) words += "word" + std::to_string(i) + " ";
  for (int i = 0; i < 80; ++i) kanji += "漢字";
  std::string const page = write("p.htm", "<title>P</title><p>" + words + "needle " + words + "<h2>K</h2><p>" + kanji +
                                              "針" + kanji + "<h2>Long</h2><p>x" + std::string(400, 'y') + "z");
  EXPECT_EQ(found("needle", {page}),
            "p.htm | P | P | 0 | \u2026 word53 word54 word55 word56 word57 word58 word59 <b>needle</b> word0 word1 word2 word3 "
            "word4 word5 word6 word7 word8 word9 word10 word11 word12 word13 word14 word15 word16 word17 word18 \u2026\n");
  std::string before, after;
  for (int i = 0; i < 25; ++i) before += "漢字";
  for (int i = 0; i < 64; ++i) after += "漢字";
  EXPECT_EQ(found("針", {page}),
            "p.htm | P | K | 2 | \u2026 " + before + "<b>針</b>" + after + "漢 \u2026\n");
  EXPECT_EQ(found("x" + std::string(400, 'y') + "z", {page}),
            "p.htm | P | Long | 4 | <b>x" + std::string(400, 'y') + "z</b>\n");
}

TEST(ResultsPage, LinksLeadToHits) {
  HelpHit one, two;
  one.page = one.section = "A";
  two.page = "B";
  two.section = "Part";
  HelpPage const page = results_page("Found", {one, two});
  EXPECT_EQ(page.title, "Found");
  ASSERT_EQ(page.blocks.size(), 3u);
  EXPECT_EQ(page.blocks[1].cells[0][0].link, "hit:0");
  EXPECT_EQ(page.blocks[2].cells[0][0].link, "hit:1");
  EXPECT_EQ(page.blocks[2].cells[0][0].text + page.blocks[2].cells[0][1].text, "Part \u2013 B\n");
}

}  // namespace
}  // namespace fax::host
