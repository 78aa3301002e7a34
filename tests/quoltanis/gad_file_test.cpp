#include "books.h"

#include <gmock/gmock.h>

namespace fax::gad {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(BookTest, KeepsEveryTextAsItCame) {
  std::string longest(254, 'n');
  std::vector<Individual> const people{
      {.name = "Åsa Öberg",
       .number = "+46 8 123",
       .company = "Företaget",
       .note = longest,
       .registered = 1'700'000'000},
      {.name = "日本 太郎", .number = "03-1234", .registered = -5, .index_key = "にほん"},
      {.name = "😀 smile", .number = "*#1,2"},
      {.name = " '\"); DROP TABLE individuals; --", .number = "1"},
      {.name = "Åsa Öberg", .number = "+46 8 124"},
  };
  ASSERT_EQ(File::create(path), Status::success);
  ASSERT_EQ(add(path, people), Status::success);
  Book const book = read_book(path);
  ASSERT_EQ(book.status, Status::success);
  ASSERT_EQ(book.people.size(), people.size());
  for (std::size_t i = 0; i < people.size(); ++i) {
    EXPECT_EQ(book.people[i].id, i + 1);
    EXPECT_EQ(book.people[i].name, people[i].name);
    EXPECT_EQ(book.people[i].number, people[i].number);
    EXPECT_EQ(book.people[i].company, people[i].company);
    EXPECT_EQ(book.people[i].note, people[i].note);
    EXPECT_EQ(book.people[i].registered, people[i].registered);
  }
  EXPECT_EQ(book.people[1].index_key, "にほん");
  EXPECT_EQ(book.people[3].index_key, " '\"); DROP TABLE ind");
}

TEST_F(BookTest, RefusesWhatARecordCannotCarry) {
  make(1);
  struct Case {
    char const *what;
    Individual individual;
    Status status;
  };
  std::string const half_pair = "\xED\xA0\x80";
  Case const cases[] = {
      {"no name", {.name = "", .number = "1"}, Status::empty_name},
      {"no number", {.name = "A", .number = ""}, Status::empty_number},
      {"there already", {.name = "Person 1", .number = "+46 1"}, Status::present},
      {"other number", {.name = "Person 1", .number = "+46 2"}, Status::success},
      {"longest name", {.name = std::string(64, 'a'), .number = "1"}, Status::success},
      {"longer name", {.name = std::string(65, 'a'), .number = "1"}, Status::text_unfit},
      {"longer number", {.name = "B", .number = std::string(51, '1')}, Status::text_unfit},
      {"longer company", {.name = "B", .number = "1", .company = std::string(65, 'c')}, Status::text_unfit},
      {"longer note", {.name = "B", .number = "1", .note = std::string(255, 'c')}, Status::text_unfit},
      {"a pair counts twice", {.name = "B", .number = "1", .index_key = "1234567890123456789😀"}, Status::text_unfit},
      {"U+0000", {.name = std::string("B\0C", 3), .number = "1"}, Status::text_unfit},
      {"half a pair", {.name = "B", .number = half_pair}, Status::text_unfit},
      {"Latin-1", {.name = "\xC5sa", .number = "1"}, Status::text_unfit},
      {"overlong", {.name = "\xC0\xAF", .number = "1"}, Status::text_unfit},
  };
  for (auto const &row : cases) {
    std::string const before = contents(path);
    EXPECT_EQ(add(path, {&row.individual, 1}), row.status) << row.what;
    EXPECT_EQ(contents(path) != before, row.status == Status::success) << row.what;
  }
}

TEST_F(BookTest, AChangeIsAllOrNothing) {
  make(3);
  std::string const before = contents(path);
  std::vector<Individual> const again{{.name = "New", .number = "1"}, {.name = "New", .number = "1"}};
  EXPECT_EQ(add(path, again), Status::present) << "twice in one call";
  EXPECT_EQ(contents(path), before);
  File file;
  ASSERT_EQ(File::open(path, Access::change, file), Status::success);
  {
    Change change, second;
    ASSERT_EQ(file.begin(change), Status::success);
    EXPECT_EQ(file.begin(second), Status::argument);
    EXPECT_EQ(change.add(again[0]), Status::success);
    EXPECT_EQ(change.add(again[1]), Status::present);
    std::size_t people = 0, groups = 0;
    EXPECT_EQ(file.count(people, groups), Status::success);
    EXPECT_EQ(people, 4u) << "goes on after a refusal, seen by its own file";
    EXPECT_EQ(read_book(path).people.size(), 3u) << "but by nobody else";
  }
  EXPECT_EQ(contents(path), before) << "dropped without commit";
  Change change;
  EXPECT_EQ(change.commit(), Status::argument);
  ASSERT_EQ(file.begin(change), Status::success);
  EXPECT_EQ(change.add(again[0]), Status::success);
  EXPECT_EQ(change.commit(), Status::success);
  EXPECT_EQ(change.add(again[0]), Status::argument) << "it is over";
  EXPECT_EQ(read_book(path).people.size(), 4u);
}

TEST_F(BookTest, ChangesEntriesAndGroups) {
  make(12);
  File file;
  Change change;
  ASSERT_EQ(File::open(path, Access::change, file), Status::success);
  ASSERT_EQ(file.begin(change), Status::success);
  std::uint32_t group = 0, first = 0;
  EXPECT_EQ(change.add_group("First"), Status::present);
  EXPECT_EQ(change.add_group(""), Status::empty_name);
  EXPECT_EQ(change.add_group(std::string(65, 'g')), Status::text_unfit);
  EXPECT_EQ(change.add_group("Second", &group), Status::success);
  EXPECT_EQ(file.find_group("First", first), Status::success);
  EXPECT_EQ(change.rename_group(group, "First"), Status::present);
  EXPECT_EQ(change.rename_group(group, "Zweite"), Status::success);
  EXPECT_EQ(change.add_member(group, 12), Status::success);
  EXPECT_EQ(change.add_member(group, 2), Status::success);
  EXPECT_EQ(change.add_member(group, 2), Status::success) << "again";
  EXPECT_EQ(change.add_member(group, 99), Status::no_entry);
  EXPECT_EQ(change.add_member(99, 2), Status::no_entry);
  EXPECT_EQ(change.add_member(group, 65536), Status::no_member);
  EXPECT_EQ(change.remove_member(first, 1), Status::success);
  EXPECT_EQ(change.remove_member(first, 1), Status::no_entry);
  EXPECT_EQ(change.remove(2), Status::success);
  EXPECT_EQ(change.remove(2), Status::no_entry);
  EXPECT_EQ(change.replace({.id = 3, .name = "Person 4", .number = "+46 4"}), Status::present);
  EXPECT_EQ(change.replace({.id = 3, .name = "Third", .number = "3", .note = "new"}), Status::success);
  EXPECT_EQ(change.commit(), Status::success);

  Book const book = read_book(path);
  EXPECT_THAT(book.groups, ElementsAre(Group{"First", {3, 4, 5, 6, 7, 8, 9, 10}}, Group{"Zweite", {12}}));
  EXPECT_EQ(book.people[1].name, "Third");
  std::uint32_t id = 0;
  EXPECT_EQ(file.find("Third", "3", id), Status::success);
  EXPECT_EQ(id, 3u);
  EXPECT_EQ(file.find("Third", "4", id), Status::no_entry);
  ASSERT_EQ(file.begin(change), Status::success);
  EXPECT_EQ(change.remove_group(first), Status::success);
  EXPECT_EQ(change.commit(), Status::success);
  EXPECT_THAT(read_book(path).groups, ElementsAre(Group{"Zweite", {12}}));
}

TEST_F(BookTest, SearchesWithoutRegardToCase) {
  ASSERT_EQ(File::create(path), Status::success);
  std::vector<Individual> const people{{.name = "Åsa ÖBERG", .number = "1"},
                                       {.name = "ΣΊΣΥΦΟΣ", .number = "1"},
                                       {.name = "100% _x_", .number = "1"},
                                       {.name = "Strauß", .number = "1"}};
  ASSERT_EQ(add(path, people), Status::success);
  sql(path, "INSERT INTO individuals (name, number) VALUES ('BY HAND', '1')");
  File file;
  ASSERT_EQ(File::open(path, Access::read, file), Status::success);
  struct Case {
    char const *part;
    std::vector<std::uint32_t> ids;
  };
  for (auto const &row : {Case{"öberg", {1}}, Case{"åSA", {1}}, Case{"σίσυφος", {2}}, Case{"%", {3}}, Case{"_", {3}},
                          Case{"by h", {5}}, Case{"s", {1, 4}}, Case{"nobody", {}}, Case{"", {1, 2, 3, 4, 5}}}) {
    std::vector<std::uint32_t> ids;
    EXPECT_EQ(file.search(row.part,
                          [&](IndividualView const &view) {
                            ids.push_back(view.id);
                            return true;
                          }),
              Status::success);
    EXPECT_EQ(ids, row.ids) << row.part;
  }
}

TEST_F(BookTest, IdsStayAndAreGivenAgainOnlyWhenTheyRunOut) {
  make(3);
  File file;
  Change change;
  ASSERT_EQ(File::open(path, Access::change, file), Status::success);
  auto const id_of_new = [&](std::string const &name) {
    std::uint32_t id = 0;
    EXPECT_EQ(change.add({.name = name, .number = "1"}, &id), Status::success);
    return id;
  };
  ASSERT_EQ(file.begin(change), Status::success);
  EXPECT_EQ(change.remove(3), Status::success);
  EXPECT_EQ(id_of_new("Fourth"), 4u);
  EXPECT_EQ(change.remove(4), Status::success);
  EXPECT_EQ(change.commit(), Status::success);
  ASSERT_EQ(file.begin(change), Status::success);
  EXPECT_EQ(id_of_new("Fifth"), 5u) << "also over the end of a change";
  EXPECT_EQ(change.commit(), Status::success);
  file = File();

  sql(path,
      "WITH RECURSIVE n(i) AS (SELECT 6 UNION ALL SELECT i + 1 FROM n WHERE i < 65535)"
      " INSERT INTO individuals (id, name, number) SELECT i, 'Many ' || i, '1' FROM n WHERE i <> 700");
  ASSERT_EQ(File::open(path, Access::change, file), Status::success);
  ASSERT_EQ(file.begin(change), Status::success);
  std::vector<std::uint32_t> ids;
  for (char const *name : {"a", "b", "c", "d", "e"}) ids.push_back(id_of_new(name));
  EXPECT_THAT(ids, ElementsAre(3, 4, 700, 65536, 65537));
  EXPECT_EQ(change.remove(9), Status::success);
  EXPECT_EQ(id_of_new("f"), 9u);
  EXPECT_EQ(id_of_new("g"), 65538u);
  std::uint32_t everyone = 0;
  EXPECT_EQ(change.add_group("Everyone", &everyone), Status::success);
  for (std::uint32_t id = 1; id <= 65535; ++id) ASSERT_EQ(change.add_member(everyone, id), Status::success);
  EXPECT_EQ(change.add_member(everyone, 65536), Status::no_member);
  EXPECT_EQ(change.commit(), Status::success);
  EXPECT_EQ(read_book(path).groups.back().members.size(), 65535u);
}

TEST_F(BookTest, WhatWasRemovedComesBackUnderItsId) {
  make(5);
  File file;
  Change change;
  ASSERT_EQ(File::open(path, Access::change, file), Status::success);
  Individual const third{.id = 3, .name = "Person 3", .number = "+46 3"};
  Individual const same_text{.id = 9, .name = "Person 4", .number = "+46 4"};
  ASSERT_EQ(file.begin(change), Status::success);
  ASSERT_EQ(change.remove(3), Status::success);
  ASSERT_EQ(change.remove_group(1), Status::success);
  ASSERT_EQ(change.commit(), Status::success);
  ASSERT_EQ(file.begin(change), Status::success);
  EXPECT_EQ(change.restore(third), Status::success);
  EXPECT_EQ(change.restore(third), Status::present);
  EXPECT_EQ(change.restore(same_text), Status::present);
  EXPECT_EQ(change.restore_group(1, "First"), Status::success);
  EXPECT_EQ(change.restore_group(1, "Other"), Status::present);
  std::uint32_t id = 0;
  EXPECT_EQ(change.add({.name = "New", .number = "1"}, &id), Status::success);
  EXPECT_EQ(id, 6u) << "an id that came back does not make the next one";
  ASSERT_EQ(change.commit(), Status::success);
  Book const book = read_book(path);
  ASSERT_EQ(book.people.size(), 6u);
  EXPECT_EQ(book.people[2].name, "Person 3");
  EXPECT_THAT(book.groups, ElementsAre(Group{"First", {}}));
}

TEST_F(BookTest, TheVersionTellsOfOthersChangesOnly) {
  make(1);
  File own;
  Change change;
  ASSERT_EQ(File::open(path, Access::change, own), Status::success);
  auto const version = [&] {
    std::int64_t now = 0;
    EXPECT_EQ(own.version(now), Status::success);
    return now;
  };
  std::int64_t const first = version();
  ASSERT_EQ(own.begin(change), Status::success);
  ASSERT_EQ(change.add({.name = "Own", .number = "1"}), Status::success);
  ASSERT_EQ(change.commit(), Status::success);
  EXPECT_EQ(version(), first);
  Individual const other{.name = "Other", .number = "1"};
  ASSERT_EQ(add(path, {&other, 1}), Status::success);
  EXPECT_NE(version(), first);
}

TEST_F(BookTest, TheShellReadsOursAndWeReadTheShells) {
  make(2);
  auto const shell = [&](std::string const &file, std::string const &statements) {
    std::string const output = folder + "/output";
    std::string const command = "sqlite3 '" + file + "' \"" + statements + "\" >'" + output + "' 2>&1";
    EXPECT_EQ(std::system(command.c_str()), 0) << contents(output);
    return contents(output);
  };
  EXPECT_EQ(shell(path,
                  "SELECT i.name, i.number FROM groups g JOIN members m ON m.group_id = g.id JOIN individuals i"
                  " ON i.id = m.individual_id WHERE g.name = 'First'; PRAGMA integrity_check"),
            "Person 1|+46 1\nPerson 2|+46 2\nok\n");

  // As docs/address-books.md shows it.
  std::string const document = contents(SOURCE "/docs/address-books.md");
  auto const start = document.find("```sql\n"), end = document.find("```", start + 7);
  ASSERT_NE(start, std::string::npos);
  std::string const foreign = folder + "/foreign.gad";
  put(folder + "/schema.sql", document.substr(start + 7, end - start - 7));
  shell(foreign, ".read '" + folder + "/schema.sql'");
  shell(foreign,
        "INSERT INTO individuals (name, number) VALUES ('Ann', '1'), ('Bo', '2');"
        "INSERT INTO groups (name) VALUES ('Both'); INSERT INTO members VALUES (1, 1), (1, 2)");
  Book const book = read_book(foreign);
  EXPECT_EQ(book.status, Status::success);
  ASSERT_EQ(book.people.size(), 2u);
  EXPECT_EQ(book.people[1].name, "Bo");
  EXPECT_THAT(book.groups, ElementsAre(Group{"Both", {1, 2}}));
  EXPECT_EQ(add(foreign, book.people), Status::present);
}

TEST_F(BookTest, ListsTheBooksOfAFolder) {
  for (char const *name : {"/b.gad", "/A.gad", "/ä.gad", "/.hidden.gad", "/c.gad.bak", "/d.txt", "/line\nfeed.gad"})
    put(folder + name, "");
  std::filesystem::create_directory(folder + "/folder.gad");
  std::filesystem::create_symlink("b.gad", folder + "/link.gad");
  std::filesystem::create_symlink("gone", folder + "/dangling.gad");
  EXPECT_THAT(files(folder), ElementsAre("A.gad", "b.gad", "line\nfeed.gad", "link.gad", "ä.gad"));
  EXPECT_THAT(files(folder + "/none"), IsEmpty());
  EXPECT_THAT(files(folder + "/b.gad"), IsEmpty());

  struct Case {
    char const *own, *data, *home, *folder;
  };
  for (auto const &row :
       {Case{"/own", "/data", "/home", "/own"}, Case{"", "/data", "/home", "/data/directfax/addressbooks"},
        Case{"relative", "also", "/home", "/home/.local/share/directfax/addressbooks"}, Case{"", "", "", ""}}) {
    setenv("DIRECTFAX_ADDRESSBOOKS", row.own, 1);
    setenv("XDG_DATA_HOME", row.data, 1);
    std::string const home = getenv("HOME");
    setenv("HOME", row.home, 1);
    EXPECT_EQ(gad::folder(), row.folder);
    setenv("HOME", home.c_str(), 1);
    unsetenv("DIRECTFAX_ADDRESSBOOKS");
    unsetenv("XDG_DATA_HOME");
  }
}

}  // namespace
}  // namespace fax::gad
