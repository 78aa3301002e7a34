// Steps, undo, and other programs that write meanwhile.
#include "../quoltanis/books.h"
#include "editor/core/open_book.h"

#include <gmock/gmock.h>

namespace fax::editor {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class OpenBookTest : public gad::BookTest {
protected:
  void SetUp() override {
    make(5);
    ASSERT_EQ(OpenBook::open(path, book_), Status::success);
  }

  // What is in the file, as another program reads it: "id name number" of people, "name: members" of groups.
  std::vector<std::string> stored() const {
    gad::Book const book = gad::read_book(path);
    EXPECT_EQ(book.status, Status::success);
    std::vector<std::string> lines;
    for (Person const &person : book.people)
      lines.push_back(std::to_string(person.id) + " " + person.name + " " + person.number);
    for (gad::Group const &group : book.groups) {
      std::string line = group.name + ":";
      for (std::uint32_t member : group.members) line += " " + std::to_string(member);
      lines.push_back(line);
    }
    return lines;
  }
  // The same of contents(): what is shown is what is stored.
  std::vector<std::string> shown() const {
    std::vector<std::string> lines;
    for (Person const &person : book_->contents()->people())
      lines.push_back(std::to_string(person.id) + " " + person.name + " " + person.number);
    for (Group const &group : book_->contents()->groups()) {
      std::string line = group.name + ":";
      for (std::uint32_t member : group.members) line += " " + std::to_string(member);
      lines.push_back(line);
    }
    return lines;
  }

  Contents const &contents() const { return *book_->contents(); }
  Person renamed(std::uint32_t id, std::string const &name) const {
    Person person = *contents().person(id);
    person.name = name;
    return person;
  }

  std::unique_ptr<OpenBook> book_;
};

TEST_F(OpenBookTest, EveryStepIsStoredAtOnceAndCanBeUndoneAndRedone) {
  struct {
    char const *name;
    std::function<Step()> step;
  } const cases[] = {
      {"add", [&] { return add_person({.name = "New", .number = "9", .company = "C", .note = "N"}); }},
      {"edit", [&] { return edit_person(*contents().person(2), renamed(2, "Åsa")); }},
      {"remove members of a group", [&] { return remove_people(contents(), {1, 3}); }},
      {"add group", [&] { return add_group("Second", {2, 4}); }},
      {"edit group", [&] { return edit_group(contents().groups().front(), "Renamed", {2, 4}); }},
      {"remove group", [&] { return remove_group(contents().groups().front()); }},
  };
  std::vector<std::vector<std::string>> history{stored()};
  for (auto const &row : cases) {
    SCOPED_TRACE(row.name);
    EXPECT_TRUE(book_->make(row.step()).made());
    history.push_back(stored());
    EXPECT_EQ(shown(), history.back());
    EXPECT_NE(history[history.size() - 2], history.back());
  }
  for (int round = 0; round < 2; ++round) {
    for (std::size_t at = history.size() - 1; at-- > 0;) {
      EXPECT_TRUE(book_->undo().made());
      EXPECT_EQ(stored(), history[at]) << "undone to " << at;
    }
    EXPECT_EQ(book_->steps().to_undo(), nullptr);
    for (std::size_t at = 1; at < history.size(); ++at) {
      EXPECT_TRUE(book_->redo().made());
      EXPECT_EQ(stored(), history[at]) << "redone to " << at;
    }
    EXPECT_EQ(book_->steps().to_redo(), nullptr);
  }
}

TEST_F(OpenBookTest, WhatCannotBeStoredChangesNothing) {
  auto const before = stored();
  Person const twin{.name = "Person 2", .number = "+46 2"};
  EXPECT_EQ(book_->make(add_person(twin)).status, Status::present);
  EXPECT_EQ(book_->make(add_person({.name = "", .number = "1"})).status, Status::empty_name);
  EXPECT_EQ(book_->make(add_group("First", {1})).status, Status::present);
  Step half = add_person({.name = "New", .number = "1"});
  half.append(PersonChange{{}, twin});
  EXPECT_EQ(book_->make(half).status, Status::present);
  EXPECT_EQ(stored(), before);
  EXPECT_EQ(shown(), before);
  EXPECT_EQ(book_->steps().to_undo(), nullptr);
}

TEST_F(OpenBookTest, WhatAnotherProgramChangedIsNotWrittenOver) {
  struct {
    char const *name, *meanwhile;
    std::function<Step()> step;
    char const *conflict;  // "" when both changes can stand
  } const cases[] = {
      {"edited there", "UPDATE individuals SET number = '77' WHERE id = 2",
       [&] { return edit_person(*contents().person(2), renamed(2, "Own")); }, "number 77"},
      {"deleted there", "DELETE FROM individuals WHERE id = 5",
       [&] { return edit_person(*contents().person(5), renamed(5, "Own")); }, "deleted by another"},
      {"edited there, deleted here", "UPDATE individuals SET note = 'new' WHERE id = 3",
       [&] { return remove_people(contents(), {3}); }, "changed by another"},
      {"put into a group there, deleted here",
       "INSERT INTO groups (name) VALUES ('Theirs'); INSERT INTO members SELECT id, 4 FROM groups WHERE name = 'Theirs'",
       [&] { return remove_people(contents(), {4}); }, "groups of"},
      {"renamed there", "UPDATE groups SET name = 'Other' WHERE id = 1",
       [&] { return edit_group(*contents().group(1), "Own", {1}); }, "renamed to"},
      {"members there, deleted here", "DELETE FROM members WHERE individual_id = 1",
       [&] { return remove_group(*contents().group(1)); }, "members of"},
      {"another entry there", "UPDATE individuals SET number = '78' WHERE id = 2",
       [&] { return edit_person(*contents().person(3), renamed(3, "Own")); }, ""},
  };
  for (auto const &row : cases) {
    SCOPED_TRACE(row.name);
    Step const step = row.step();
    sql(path, row.meanwhile);
    auto const theirs = stored();
    Outcome const outcome = book_->make(step);
    EXPECT_EQ(outcome.made(), row.conflict[0] == '\0');
    EXPECT_THAT(outcome.conflict, HasSubstr(row.conflict));
    if (!outcome.made()) {
      EXPECT_EQ(stored(), theirs);
    }
    EXPECT_EQ(shown(), stored()) << "what is there now is shown";
  }
}

TEST_F(OpenBookTest, AnUndoThatWouldWriteOverAnotherProgramIsRefused) {
  ASSERT_TRUE(book_->make(edit_person(*contents().person(1), renamed(1, "First own"))).made());
  ASSERT_TRUE(book_->make(edit_person(*contents().person(2), renamed(2, "Own"))).made());
  sql(path, "UPDATE individuals SET name = 'Theirs' WHERE id = 2");
  EXPECT_THAT(book_->undo().conflict, HasSubstr("Theirs"));
  EXPECT_EQ(contents().person(2)->name, "Theirs");
  EXPECT_EQ(book_->steps().to_undo(), nullptr);
}

TEST_F(OpenBookTest, ChangesOfOtherProgramsAreNoticed) {
  bool changed = true;
  EXPECT_EQ(book_->refresh(changed), Status::success);
  EXPECT_FALSE(changed);
  ASSERT_TRUE(book_->make(add_person({.name = "Own", .number = "1"})).made());
  EXPECT_EQ(book_->refresh(changed), Status::success);
  EXPECT_FALSE(changed) << "own changes are known";
  sql(path, "DELETE FROM individuals WHERE id = 1");
  EXPECT_EQ(book_->refresh(changed), Status::success);
  EXPECT_TRUE(changed);
  EXPECT_EQ(shown(), stored());
}

TEST_F(OpenBookTest, NothingIsWrittenIntoAFileThatIsNoLongerThere) {
  std::string const other = folder + "/other.gad";
  std::filesystem::rename(path, other);
  EXPECT_EQ(book_->make(add_person({.name = "Lost", .number = "1"})).status, Status::no_file);
  ASSERT_EQ(gad::File::create(path), Status::success);
  Outcome const outcome = book_->make(add_person({.name = "Astray", .number = "1"}));
  EXPECT_THAT(outcome.conflict, HasSubstr("Another file"));
  EXPECT_THAT(shown(), IsEmpty());
  EXPECT_TRUE(book_->make(add_person({.name = "Kept", .number = "1"})).made());
  EXPECT_THAT(stored(), testing::ElementsAre("1 Kept 1"));
}

TEST_F(OpenBookTest, WhatCannotBeOpenedLeavesTheOpenBook) {
  gad::put(folder + "/text.gad", "no book");
  OpenBook const *const before = book_.get();
  EXPECT_EQ(OpenBook::open(folder + "/text.gad", book_), Status::foreign_file);
  EXPECT_EQ(OpenBook::open(folder + "/none.gad", book_), Status::no_file);
  EXPECT_EQ(book_.get(), before);
}

}  // namespace
}  // namespace fax::editor
