// The help pages that are there, in every language: links, pictures, names.
#include "host/help_page.h"
#include "host/help_search.h"

#include <libxml/parser.h>
#include <libxml/tree.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <regex>
#include <set>

namespace fs = std::filesystem;

namespace fax::host {
namespace {

// What a translation has in common with the English page, in the order of the page or, where that may differ, sorted.
struct Page {
  std::vector<std::string> ids;
  std::multiset<std::string> links, pictures;
  std::vector<std::string> names;  // of what stands on the screen: the texts in <b>
  std::string language, title, lacking;
};

std::string text(xmlChar *owned) {
  std::string const result = owned ? reinterpret_cast<char const *>(owned) : "";
  xmlFree(owned);
  return std::regex_replace(result, std::regex{"\\s+"}, " ");
}

std::string attribute(xmlNode *node, char const *name) {
  return text(xmlGetNoNsProp(node, reinterpret_cast<xmlChar const *>(name)));
}

void walk(xmlNode *node, Page &page) {
  for (; node; node = node->next) {
    if (node->type != XML_ELEMENT_NODE) continue;
    std::string const name = reinterpret_cast<char const *>(node->name);
    if (auto const id = attribute(node, "id"); !id.empty()) page.ids.push_back(id);
    if (name == "a" || name == "link") page.links.insert(attribute(node, "href"));
    if (name == "b") page.names.push_back(text(xmlNodeGetContent(node)));
    if (name == "title") page.title = text(xmlNodeGetContent(node));
    if (name == "html") page.language = attribute(node, "lang");
    if (name == "h2" && attribute(node, "id").empty()) page.lacking += "a section without an id; ";
    if (name == "img") {
      page.pictures.insert(attribute(node, "src"));
      if (attribute(node, "alt").empty()) page.lacking += "a picture without a text; ";
    }
    walk(node->children, page);
  }
}

std::optional<Page> read_xhtml(fs::path const &file) {
  std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> const document{
      xmlReadFile(file.c_str(), nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING), &xmlFreeDoc};
  if (!document) return std::nullopt;
  Page page;
  walk(xmlDocGetRootElement(document.get()), page);
  return page;
}

// A book: resources/LANG.lproj/folder has its pages, the pictures are for all languages.
struct Book {
  fs::path resources, folder, pictures;
  std::string first;
};

Book const kBooks[] = {{SOURCES "/resources", "DirectFaxHelp", "DirectFaxHelp/pictures", "index.html"},
                       {SOURCES "/host/resources", ".", "pictures", "PrintDialog.html"}};

std::vector<fs::path> languages(Book const &book) {
  std::vector<fs::path> found;
  for (auto const &entry : fs::directory_iterator(book.resources)) {
    if (entry.path().extension() == ".lproj") found.push_back(entry.path().filename());
  }
  std::sort(found.begin(), found.end());
  return found;
}

std::map<std::string, Page> pages_of(fs::path const &folder) {
  std::map<std::string, Page> pages;
  if (!fs::exists(folder)) return pages;
  for (auto const &entry : fs::directory_iterator(folder)) {
    if (entry.path().extension() != ".htm" && entry.path().extension() != ".html") continue;
    auto page = read_xhtml(entry.path());
    EXPECT_TRUE(page) << entry.path() << " is not well-formed";
    if (page) pages[entry.path().filename()] = std::move(*page);
  }
  return pages;
}

class HelpBook : public testing::TestWithParam<Book> {
 protected:
  fs::path folder(fs::path const &language) const {
    return (GetParam().resources / language / GetParam().folder).lexically_normal();
  }
};

TEST_P(HelpBook, LinksLeadSomewhereAndEveryPageIsReached) {
  for (auto const &language : languages(GetParam())) {
    auto const pages = pages_of(folder(language));
    if (pages.empty()) continue;
    std::set<std::string> reached{GetParam().first};
    for (std::size_t before = 0; before != reached.size();) {
      before = reached.size();
      for (auto const &name : std::set(reached)) {
        ASSERT_TRUE(pages.contains(name)) << language << ": no " << name;
        std::string const path = folder(language) / name;
        for (auto const &link : pages.at(name).links) {
          auto const target = resolve_help_link(path, link);
          EXPECT_TRUE(fs::is_regular_file(target.path)) << path << ": " << link;
          if (fs::path{target.path}.extension() == ".css") continue;
          EXPECT_EQ(fs::path{target.path}.parent_path(), fs::path{path}.parent_path()) << path << ": " << link;
          std::string const page = fs::path{target.path}.filename();
          reached.insert(page);
          if (!pages.contains(page) || target.anchor.empty()) continue;
          EXPECT_THAT(pages.at(page).ids, testing::Contains(target.anchor)) << path << ": " << link;
        }
      }
    }
    EXPECT_EQ(reached.size(), pages.size()) << language << ": pages that no link leads to";
  }
}

TEST_P(HelpBook, PagesSayWhatTheyAreAndEveryAnchorIsScrolledTo) {
  for (auto const &language : languages(GetParam())) {
    for (auto const &[name, page] : pages_of(folder(language))) {
      SCOPED_TRACE(folder(language) / name);
      EXPECT_EQ(page.lacking, "");
      EXPECT_NE(page.title, "");
      EXPECT_EQ(page.language, language == "English.lproj" ? "en" : language.stem().string());
      EXPECT_EQ(std::set(page.ids.begin(), page.ids.end()).size(), page.ids.size()) << "an id twice";
      std::ifstream file{folder(language) / name};
      auto const shown = read_help_page(std::string{std::istreambuf_iterator<char>{file}, {}});
      ASSERT_TRUE(shown);
      std::vector<std::string> anchors;
      for (auto const &block : shown->blocks) anchors.insert(anchors.end(), block.anchors.begin(), block.anchors.end());
      EXPECT_EQ(anchors, page.ids);
    }
  }
}

TEST_P(HelpBook, PicturesAreThereAndAllAreUsed) {
  std::set<fs::path> used;
  std::uintmax_t bytes = 0;
  for (auto const &language : languages(GetParam())) {
    for (auto const &[name, page] : pages_of(folder(language))) {
      for (auto const &picture : page.pictures) {
        auto const found = find_help_image(folder(language) / name, picture);
        ASSERT_TRUE(found) << language << ", " << name << ": " << picture;
        used.insert(*found);
      }
    }
  }
  for (auto const &entry : fs::directory_iterator(GetParam().resources / GetParam().pictures)) {
    EXPECT_TRUE(used.contains(fs::canonical(entry.path()))) << entry.path() << " is on no page";
    bytes += entry.file_size();
  }
  EXPECT_LT(bytes, 1000000u);
}

TEST_P(HelpBook, EveryLanguageHasTheSamePages) {
  auto const english = pages_of(folder("English.lproj"));
  for (auto const &language : languages(GetParam())) {
    auto const pages = pages_of(folder(language));
    if (pages.empty()) continue;
    for (auto const &[name, page] : english) {
      ASSERT_TRUE(pages.contains(name)) << language << ": no " << name;
      EXPECT_EQ(pages.at(name).ids, page.ids) << language << ": " << name;
      EXPECT_EQ(pages.at(name).links, page.links) << language << ": " << name;
      EXPECT_EQ(pages.at(name).pictures, page.pictures) << language << ": " << name;
      EXPECT_EQ(pages.at(name).names.size(), page.names.size()) << language << ": " << name;
    }
    EXPECT_EQ(pages.size(), english.size()) << language << ": pages that English lacks";
  }
}

std::string contents(fs::path const &file) {
  std::ifstream source{file};
  return {std::istreambuf_iterator<char>{source}, {}};
}

// A label is called without its colon.
void add_text(std::set<std::string> &texts, std::string text) {
  for (std::string_view const colon : {":", "：", " :", " :"})
    if (text.ends_with(colon)) text.resize(text.size() - colon.size());
  texts.insert(text);
}

// The right side of every line of the bundle's string tables, and of the programs' catalogue (its keys for English).
std::set<std::string> screen_texts(std::string const &language) {
  std::set<std::string> texts;
  std::regex const line{"= \"((?:[^\"\\\\]|\\\\.)*)\";"};
  for (auto const &entry : fs::directory_iterator(fs::path{SOURCES} / "resources" / language)) {
    if (entry.path().extension() != ".strings") continue;
    auto const all = contents(entry.path());
    for (std::sregex_iterator at{all.begin(), all.end(), line}, end; at != end; ++at) add_text(texts, (*at)[1]);
  }
  static std::map<std::string, std::string> const catalogues{{"pt-BR", "pt_BR"}, {"zh-Hans", "zh_CN"}};
  auto const code = fs::path{language}.stem().string();
  bool const english = code == "English";
  auto const named = catalogues.find(code);
  auto const catalogue = english ? "directfax.pot" : (named != catalogues.end() ? named->second : code) + ".po";
  auto const all = contents(fs::path{SOURCES} / "po" / catalogue);
  std::regex const entry{english ? "\nmsgid \"(.+)\"" : "\nmsgstr \"(.+)\""};
  for (std::sregex_iterator at{all.begin(), all.end(), entry}, end; at != end; ++at) add_text(texts, (*at)[1]);
  return texts;
}

TEST_P(HelpBook, CallsThingsAsTheScreenDoes) {
  for (auto const &language : languages(GetParam())) {
    auto const texts = screen_texts(language);
    for (auto const &[name, page] : pages_of(folder(language))) {
      for (auto const &called : page.names)
        EXPECT_TRUE(texts.contains(called)) << language << ", " << name << ": " << called;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Of, HelpBook, testing::ValuesIn(kBooks), [](auto const &info) {
  return std::string{info.index == 0 ? "Fax" : "PrintDialog"};
});

}  // namespace
}  // namespace fax::host
