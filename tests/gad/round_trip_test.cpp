// What is exported and imported into a new book is the same book.

#include "gad/book.h"
#include "gad/commands.h"
#include "gad/failure.h"
#include "tool.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

namespace fax::tool::testing {
namespace {

class Random {
public:
  explicit Random(unsigned seed) : engine_(seed) {}
  std::size_t below(std::size_t end) { return std::uniform_int_distribution<std::size_t>(0, end - 1)(engine_); }

  // Of all that could be taken for syntax, and letters of one to four bytes. Never blank.
  std::string text(std::size_t longest) {
    static std::vector<std::string> const letters = {
        "a",     "Z",  "7",   " ",  ",",     ";",   ":",        "\\",           "\"",           "'",
        "\n",    "\t", "=",   "|",  " ::: ", "\\n", "\\,",      "BEGIN:VCARD",  "\x01",         "\x7f",
        "ä",     "ß",  "é",   "日", "本",    "ﾀ",   "\xC2\xA0", "\xE2\x80\xA8", "\xEF\xBB\xBF", "😀",
        "sep=;", "* ", "tel:"};
    std::string text;
    for (std::size_t count = below(longest) + 1; count > 0; --count) text += letters[below(letters.size())];
    std::size_t const blank = text.find_first_not_of(" \t\n");
    return blank == std::string::npos ? text + "x" : text;
  }

  std::string number() {
    static constexpr char characters[] = "0123456789#*-:=+() ;,.";
    std::string number = std::to_string(below(10));
    for (std::size_t count = below(40); count > 0; --count) number += characters[below(sizeof characters - 1)];
    return number;
  }

private:
  std::mt19937 engine_;
};

using Entry = std::vector<std::string>;
using Groups = std::map<std::string, std::set<std::pair<std::string, std::string>>>;

std::pair<std::vector<Entry>, Groups> all_of(std::string const &path) {
  std::vector<Entry> entries;
  Groups groups;
  BookContents const book = read_book(path);
  for (BookEntry const &entry : book.entries)
    entries.push_back({entry.contact.name, entry.contact.number, entry.contact.company, entry.contact.note});
  for (BookGroup const &group : book.groups)
    for (std::size_t member : group.members)
      groups[group.name].emplace(book.entries[member].contact.name, book.entries[member].contact.number);
  return {entries, groups};
}

void fill(std::string const &path, Random &random) {
  gad::File file = open_book(path, gad::Access::change);
  gad::Change change;
  ASSERT_EQ(file.begin(change), Status::success);
  std::vector<std::uint32_t> groups(5);
  for (std::uint32_t &group : groups) ASSERT_EQ(change.add_group(random.text(4), &group), Status::success);
  for (int i = 0; i < 40; ++i) {
    std::uint32_t id = 0;
    std::string const company = random.below(2) != 0 ? random.text(4) : "",
                      note = random.below(2) != 0 ? random.text(12) : "";
    ASSERT_EQ(change.add({0, random.text(4), random.number(), company, note, 0, ""}, &id), Status::success);
    // Every group has a member: CSV knows no other.
    for (std::uint32_t group : groups) {
      if (i > 0 && random.below(4) != 0) continue;
      ASSERT_EQ(change.add_member(group, id), Status::success);
    }
  }
  ASSERT_EQ(change.commit(), Status::success);
}

TEST(RoundTrip, KeepsEveryEntryAndGroup) {
  struct Way {
    ExportFormat format;
    char delimiter;
    bool mark;
  };
  for (unsigned seed = 1; seed <= 12; ++seed) {
    Random random(seed);
    Folder const folder;
    std::string const book = folder.book();
    ASSERT_NO_FATAL_FAILURE(fill(book, random));
    for (Way const way :
         {Way{ExportFormat::vcard4, ',', false}, Way{ExportFormat::vcard3, ',', false},
          Way{ExportFormat::csv, ',', true}, Way{ExportFormat::csv, ';', false}, Way{ExportFormat::csv, '\t', false}}) {
      SCOPED_TRACE("seed " + std::to_string(seed) + ", format " + std::to_string(int(way.format)) + way.delimiter);
      ExportChoices exported{book, folder / "list", way.format, way.delimiter, way.mark, true, true};
      ASSERT_EQ(export_book(exported), exit_success);
      Folder const other;
      ImportChoices imported;
      imported.book = other.book();
      imported.source = folder / "list";
      imported.quiet = true;
      ASSERT_EQ(import_list(imported), exit_success);
      ASSERT_EQ(all_of(imported.book), all_of(book));
    }
  }
}

}  // namespace
}  // namespace fax::tool::testing
