// Help pages: HTML to blocks and runs, links, history.
#include "host/help_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace fax::host {
namespace {

// Blocks as one line each: "h1 Title", "p text", "2* item", "row a | b", marks for looks: <b>, <i>, <c>, [link](text).
std::string outline(HelpPage const &page) {
  std::string out;
  for (auto const &block : page.blocks) {
    switch (block.kind) {
      case HelpBlock::Kind::heading: out += "h" + std::to_string(block.level) + " "; break;
      case HelpBlock::Kind::paragraph: out += "p "; break;
      case HelpBlock::Kind::item: out += std::to_string(block.level) + block.marker + " "; break;
      case HelpBlock::Kind::row: out += block.header ? "head " : "row "; break;
      case HelpBlock::Kind::preformatted: out += "pre "; break;
      case HelpBlock::Kind::rule: out += "rule"; break;
    }
    for (std::size_t at = 0; at < block.cells.size(); ++at) {
      if (at > 0) out += " | ";
      for (auto const &run : block.cells[at]) {
        std::string text = run.text;
        if (!run.image.empty()) text = "{" + run.image + " " + run.text + "}";
        if (run.code) text = "<c>" + text;
        if (run.italic) text = "<i>" + text;
        if (run.bold) text = "<b>" + text;
        if (!run.link.empty()) text = "[" + run.link + "](" + text + ")";
        out += text;
      }
    }
    for (auto const &anchor : block.anchors) out += " #" + anchor;
    out += "\n";
  }
  return out;
}

struct PageCase {
  char const *name;
  char const *html;
  char const *expected;
};

class Pages : public testing::TestWithParam<PageCase> {};

TEST_P(Pages, Outline) {
  auto const page = read_help_page(GetParam().html);
  ASSERT_TRUE(page);
  EXPECT_EQ(outline(*page), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Pages,
    testing::Values(
        PageCase{"white_space_is_folded", "<p> a\n  b\t<b> c</b>  d </p>", "p a b <b>c d\n"},
        PageCase{"space_before_a_look", "<p>Press <b>Print</b> or <a href='x.htm'>go</a>.</p>",
                 "p Press <b>Print or [x.htm](go).\n"},
        PageCase{"headings_and_anchors", "<h1 id=top>One</h1><a name='here'></a><h2>Two</h2>text",
                 "h1 One #top\nh2 Two #here\np text\n"},
        PageCase{"lists_in_lists", "<ul><li>a<ol start=3><li>b<li>c</ol><li>d</ul>e",
                 "1\u2022 a\n23. b\n24. c\n1\u2022 d\np e\n"},
        PageCase{"two_paragraphs_in_an_item", "<ol><li><p>a</p><p>b</p></li></ol>", "11. a\np b\n"},
        PageCase{"table", "<table><tr><th>K<th>V</tr><tr><td>k</td><td>v<br>w</td></tr></table>",
                 "head <b>K | <b>V\nrow k | v\nw\n"},
        PageCase{"image_and_rule", "<p><img src='a.png' alt='A'> x</p><hr>", "p {a.png A} x\nrule\n"},
        PageCase{"preformatted_keeps_lines", "<pre>a\n  b</pre>", "pre <c>a\n  b\n"},
        PageCase{"unseen", "<style>p{}</style><script>x</script><p>seen</p><form>no</form>", "p seen\n"},
        PageCase{"empty_block_hands_its_anchor_on", "<p id=a> </p><p>b</p>", "p b #a\n"},
        PageCase{"broken_markup", "<p>a<b>b<p>c</i>", "p a<b>b\np c\n"},
        PageCase{"entities", "<p>&lt;a&gt; &amp; &uuml;</p>", "p <a> & ü\n"}),
    [](auto const &info) { return std::string{info.param.name}; });

TEST(Page, EncodingIsTheOneThatIsDeclared) {
  auto const latin = read_help_page("<meta charset=iso-8859-1><p>\xFC</p>");
  auto const none = read_help_page("<p>ü</p>");
  ASSERT_TRUE(latin && none);
  EXPECT_EQ(outline(*latin), "p ü\n");
  EXPECT_EQ(outline(*none), "p ü\n");
}

TEST(Page, TitleFallsBackToTheFirstHeading) {
  EXPECT_EQ(read_help_page("<title> A\n b </title><h1>C</h1>")->title, "A b");
  EXPECT_EQ(read_help_page("<h1>C</h1>")->title, "C");
  EXPECT_FALSE(read_help_page(""));
}

struct LinkCase {
  char const *link;
  char const *path;
  char const *anchor;
};

TEST(Link, Leads) {
  for (auto const &[link, path, anchor] : {LinkCase{"#part", "/book/en/A.htm", "part"},
                                           LinkCase{"B.htm", "/book/en/B.htm", ""},
                                           LinkCase{"B%20C.htm#x%2Fy", "/book/en/B C.htm", "x/y"},
                                           LinkCase{"../img/a.png", "/book/img/a.png", ""},
                                           LinkCase{"file:///other/D.htm#z", "/other/D.htm", "z"},
                                           LinkCase{"B.htm?q=1#z", "/book/en/B.htm", "z"},
                                           LinkCase{"100%.htm", "/book/en/100%.htm", ""},
                                           LinkCase{"https://example.org/x", "", ""},
                                           LinkCase{"mailto:a@example.org", "", ""}}) {
    SCOPED_TRACE(link);
    auto const target = resolve_help_link("/book/en/A.htm", link);
    EXPECT_EQ(target.path, path);
    EXPECT_EQ(target.anchor, *path ? anchor : "");
  }
}

TEST(History, GoesBackAndForwardAndForgetsWhatLayAhead) {
  HelpHistory history;
  EXPECT_FALSE(history.can_go_back());
  history.visit({"a", ""});
  history.visit({"a", ""});
  EXPECT_FALSE(history.can_go_back());
  history.visit({"b", ""});
  history.visit({"b", "x"});
  EXPECT_EQ(history.back().anchor, "");
  EXPECT_EQ(history.back().path, "a");
  EXPECT_FALSE(history.can_go_back());
  EXPECT_EQ(history.forward().path, "b");
  history.visit({"c", ""});
  EXPECT_FALSE(history.can_go_forward());
  EXPECT_EQ(history.back().path, "b");
}

TEST(History, AListOfWhatWasFoundIsOnePlace) {
  HelpHistory history;
  history.visit({"a", ""});
  history.visit({"b", ""});
  history.back();
  history.visit({"", "", "f"});
  history.replace({"", "", "fa"});
  EXPECT_FALSE(history.can_go_forward());
  EXPECT_EQ(history.current().search, "fa");
  history.visit({"b", "", "fa", 3});
  history.visit({"b", "", "fa", 4});
  EXPECT_EQ(history.back().block, 3u);
  EXPECT_EQ(history.back().search, "fa");
  history.leave();
  EXPECT_EQ(history.current().path, "a");
  EXPECT_FALSE(history.can_go_back());
  EXPECT_FALSE(history.can_go_forward());
}

TEST(Image, LiesInTheBook) {
  namespace fs = std::filesystem;
  std::string name = (fs::temp_directory_path() / "book-XXXXXX").string();
  ASSERT_NE(mkdtemp(name.data()), nullptr);
  fs::path const root = fs::canonical(name);
  for (char const *file : {"secret.png", "res/de.lproj/Help/p.htm", "res/de.lproj/Help/a b.png", "res/pictures/x.png",
                           "res/flat/p.htm", "res/flat/in/y.png"}) {
    fs::create_directories((root / file).parent_path());
    std::ofstream(root / file) << "x";
  }
  fs::create_symlink(root / "secret.png", root / "res/pictures/link.png");
  struct {
    char const *page, *source, *image;
  } const cases[] = {{"res/de.lproj/Help/p.htm", "a%20b.png", "res/de.lproj/Help/a b.png"},
                     {"res/de.lproj/Help/p.htm", "../../pictures/x.png", "res/pictures/x.png"},
                     {"res/de.lproj/Help/p.htm", "../../pictures/link.png", ""},
                     {"res/de.lproj/Help/p.htm", "../../../secret.png", ""},
                     {"res/de.lproj/Help/p.htm", "http://example.org/x.png", ""},
                     {"res/de.lproj/Help/p.htm", "//example.org/x.png", ""},
                     {"res/de.lproj/Help/p.htm", "../../pictures", ""},
                     {"res/de.lproj/Help/p.htm", "no.png", ""},
                     {"res/flat/p.htm", "in/y.png", "res/flat/in/y.png"},
                     {"res/flat/p.htm", "../pictures/x.png", ""}};
  for (auto const &each : cases) {
    auto const found = find_help_image(root / each.page, each.source);
    EXPECT_EQ(found ? fs::relative(*found, root).string() : "", each.image) << each.page << ": " << each.source;
  }
  EXPECT_FALSE(find_help_image(root / "res/flat/p.htm", "file://" + (root / "secret.png").string()));
  fs::remove_all(root);
}

}  // namespace
}  // namespace fax::host
