// What is asked for: arguments, rows, names.
#include "../quoltanis/books.h"
#include "editor/core/book_list.h"
#include "editor/core/command_line.h"
#include "editor/core/entry_rules.h"
#include "editor/core/open_book.h"
#include "editor/core/rows.h"

#include <gmock/gmock.h>

namespace fax::editor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(CommandLineTest, TakesWhatThePanelGivesAndFiles) {
  struct {
    std::vector<std::string> arguments;
    Connection connection;
    char const *address;
    std::vector<std::string> books;
    char const *fault;
  } const cases[] = {
      {{}, Connection::unknown, "", {}, ""},
      {{"-DFAXConnectionType USB"}, Connection::usb, "", {}, ""},
      {{"-DFAXConnectionType NET", "-DFAXAddress 192.168.1.20"}, Connection::network, "192.168.1.20", {}, ""},
      {{"-DFAXConnectionType NET", "-DFAXAddress fe80::1%eth0"}, Connection::network, "fe80::1%eth0", {}, ""},
      {{"-DFAXConnectionType", "NET", "-DFAXAddress", "::1"}, Connection::network, "::1", {}, ""},
      {{"-DFAXAddress 192.168.1.20", "-DFAXConnectionType USB"}, Connection::usb, "", {}, ""},
      {{"a.gad", "../b c.gad", "/d.gad", "--", "-e.gad"},
       Connection::unknown, "", {"/f/a.gad", "/b c.gad", "/d.gad", "/f/-e.gad"}, ""},
      {{"-DFAXConnectionType LPT"}, Connection::unknown, "", {}, "LPT"},
      {{"-DFAXConnectionType NET", "-DFAXAddress printer"}, Connection::network, "", {}, "no IP address"},
      {{"-DFAXConnectionType NET", "-DFAXAddress"}, Connection::network, "", {}, "no IP address"},
      {{"--wrong"}, Connection::unknown, "", {}, "--wrong"},
      {{"--theme", "dark", "a.gad"}, Connection::unknown, "", {"/f/a.gad"}, ""},
      {{"--theme", "pink"}, Connection::unknown, "", {}, "not \"pink\""},
  };
  for (auto const &row : cases) {
    SCOPED_TRACE(testing::PrintToString(row.arguments));
    CommandLine const line = parse_command_line(row.arguments, "/f");
    EXPECT_EQ(line.connection, row.connection);
    EXPECT_EQ(line.address, row.address);
    EXPECT_EQ(line.books, row.books);
    EXPECT_THAT(line.lists, IsEmpty());
    EXPECT_THAT(line.fault, HasSubstr(row.fault));
    EXPECT_EQ(line.fault.empty(), row.fault[0] == '\0');
  }
}

TEST(CommandLineTest, ListsAreNoBooks) {
  CommandLine const line = parse_command_line({"a.gad", "b.VCF", "/c.csv"}, "/f");
  EXPECT_THAT(line.books, ElementsAre("/f/a.gad"));
  EXPECT_THAT(line.lists, ElementsAre("/f/b.VCF", "/c.csv"));
}

TEST(EntryRulesTest, NamesTheFieldAtFault) {
  struct {
    Person person;
    std::optional<EntryField> field;
  } const cases[] = {
      {{.name = "A", .number = "1"}, {}},
      {{.name = " ", .number = ""}, EntryField::name},
      {{.name = "A", .number = " "}, EntryField::number},
      {{.name = "A", .number = "Group"}, EntryField::number},
      {{.name = std::string(64, 'n'), .number = std::string(50, '1'), .company = std::string(64, 'c'),
        .note = std::string(254, 'n')}, {}},
      {{.name = std::string(65, 'n'), .number = "1"}, EntryField::name},
      {{.name = "A", .number = std::string(51, '1')}, EntryField::number},
      {{.name = "A", .number = "1", .company = std::string(65, 'c')}, EntryField::company},
      {{.name = "A", .number = "1", .note = std::string(255, 'n')}, EntryField::note},
  };
  for (auto const &row : cases) {
    auto const fault = fault_of(row.person);
    EXPECT_EQ(fault ? std::optional(fault->field) : std::nullopt, row.field) << row.person.name;
  }
  EXPECT_EQ(hint_about("0812"), "");
  EXPECT_THAT(hint_about("12x"), HasSubstr("x"));
  EXPECT_EQ(one_line(" a\nb\t "), "a b");
}

class RowsTest : public gad::BookTest {};

TEST_F(RowsTest, SearchesAndSorts) {
  ASSERT_EQ(gad::File::create(path), Status::success);
  std::vector<Person> const people{{.name = "berg", .number = "+46 (08) 12-3", .company = "Z"},
                                   {.name = "Åsa", .number = "1", .company = "norvalt"},
                                   {.name = "Anna", .number = "2", .note = "n"}};
  ASSERT_EQ(gad::add(path, people), Status::success);
  sql(path, "INSERT INTO groups VALUES (1, 'G'); INSERT INTO members VALUES (1, 1), (1, 3)");
  std::unique_ptr<OpenBook> book;
  ASSERT_EQ(OpenBook::open(path, book), Status::success);
  struct {
    Wish wish;
    std::vector<std::string> names;
  } const cases[] = {
      {{}, {"Anna", "berg", "Åsa"}},
      {{.search = "", .descending = true}, {"Åsa", "berg", "Anna"}},
      {{.search = "BER"}, {"berg"}},
      {{.search = "åSA"}, {"Åsa"}},
      {{.search = "norv"}, {"Åsa"}},
      {{.search = "0812"}, {"berg"}},
      {{.search = "nothing"}, {}},
      {{.search = "", .group = 1}, {"Anna", "berg"}},
      {{.search = "an", .group = 1}, {"Anna"}},
      {{.search = "", .group = 9}, {}},
      {{.search = "", .order = Column::number}, {"berg", "Åsa", "Anna"}},
      {{.search = "", .order = Column::company}, {"Anna", "Åsa", "berg"}},
  };
  for (auto const &row : cases) {
    Rows const rows(book->contents(), row.wish);
    std::vector<std::string> names;
    for (std::size_t at = 0; at < rows.count(); ++at) names.push_back(rows.text(at, Column::name));
    EXPECT_EQ(names, row.names) << row.wish.search << row.wish.group;
  }
  EXPECT_THAT(Rows(book->contents(), {}).rows_of({1, 3, 77}), ElementsAre(0u, 1u));
}

TEST_F(RowsTest, BooksAreListedAndMade) {
  EXPECT_THAT(known_books(folder, {}), IsEmpty());
  std::string const inner = folder + "/new/folder";
  std::string made;
  EXPECT_EQ(create_book(inner, "Büro", made), Status::success);
  EXPECT_EQ(made, inner + "/Büro.gad");
  EXPECT_EQ(std::filesystem::status(inner).permissions(), std::filesystem::perms::owner_all);
  EXPECT_EQ(create_book(inner, "Büro.gad", made), Status::file_exists);
  EXPECT_EQ(create_book("", "x", made), Status::no_file);
  ASSERT_EQ(gad::File::create(folder + "/Büro.gad"), Status::success);
  auto const books = known_books(inner, {folder + "/Büro.gad", inner + "/Büro.gad"});
  ASSERT_EQ(books.size(), 2u);
  EXPECT_EQ(books[0].title, "Büro (" + inner + ")");
  EXPECT_EQ(books[1].path, folder + "/Büro.gad");
  for (char const *name : {"", " ", "a/b", ".hidden"}) EXPECT_NE(fault_of_book_name(name), "") << name;
  EXPECT_EQ(fault_of_book_name("Büro 2"), "");
}

}  // namespace
}  // namespace fax::editor
