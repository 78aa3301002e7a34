// Imports as plans, shown before they are made and undone like any step.
#include "../quoltanis/books.h"
#include "editor/core/import_plan.h"
#include "editor/core/open_book.h"
#include "editor/core/printer_contacts.h"
#include "gad/failure.h"

#include <gmock/gmock.h>

namespace fax::editor {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class ImportTest : public gad::BookTest {
protected:
  void SetUp() override {
    make(3);
    ASSERT_EQ(OpenBook::open(path, book_), Status::success);
  }
  ImportPlan plan(std::string const &text) {
    gad::put(folder + "/list", text);
    return plan_import(*book_->contents(), read_contacts(folder + "/list", [](double) {}), 1'700'000'000, "Import");
  }

  std::unique_ptr<OpenBook> book_;
};

TEST_F(ImportTest, APlanSaysWhatItDoesAndDoesIt) {
  ImportPlan const made = plan("Name,Fax,Groups\r\n"
                               "Anna,123,First;New\r\n"
                               "Person 2,+46 2,New\r\n"
                               "Person 1,+46 1,First\r\n"
                               "Anna,123,First\r\n"
                               "Odd,12x3,\r\n"
                               "None,,\r\n" +
                               std::string(70, 'n') + ",5,\r\n");
  EXPECT_EQ(made.summary(), "2 entries will be added. 1 group will be added. 3 are in the book already. 2 are skipped.");
  ASSERT_GE(made.remarks.size(), 3u);
  EXPECT_TRUE(made.remarks[0].skipped);
  EXPECT_THAT(made.remarks[0].text, HasSubstr("Line 7"));
  EXPECT_THAT(made.remarks[1].text, HasSubstr("too long"));
  EXPECT_FALSE(made.remarks[2].skipped);

  gad::Book const before = gad::read_book(path);
  ASSERT_TRUE(book_->make(made.step).made());
  gad::Book const after = gad::read_book(path);
  ASSERT_EQ(after.people.size(), 5u);
  EXPECT_EQ(after.people[3].name, "Anna");
  EXPECT_EQ(after.people[3].registered, 1'700'000'000);
  EXPECT_THAT(after.groups, ElementsAre(gad::Group{"First", {1, 2, 3, 4}}, gad::Group{"New", {2, 4}}));
  ASSERT_TRUE(book_->undo().made());
  EXPECT_EQ(gad::read_book(path).people.size(), 3u);
  EXPECT_EQ(gad::read_book(path).groups, before.groups);
  ASSERT_TRUE(book_->redo().made());
  EXPECT_EQ(gad::read_book(path).groups, after.groups);
  EXPECT_EQ(plan("Name,Fax\r\nAnna,123\r\n").summary(), "Nothing is to be added. 1 is in the book already.");
}

TEST_F(ImportTest, AFileThatIsNoListIsRefused) {
  EXPECT_THROW(plan("nothing"), tool::Failure);
  EXPECT_THROW(plan(std::string("\0\1\2", 3)), tool::Failure);
}

TEST_F(ImportTest, EntriesBeyondTheLastMemberNumberStayOutOfGroupsOnly) {
  sql(path, "WITH RECURSIVE n(i) AS (SELECT 4 UNION ALL SELECT i + 1 FROM n WHERE i < 65534)"
            " INSERT INTO individuals (id, name, number) SELECT i, 'Filler ' || i, i FROM n");
  bool changed = false;
  ASSERT_EQ(book_->refresh(changed), Status::success);
  ASSERT_TRUE(book_->make(plan("Name,Fax,Groups\r\nA,1,New\r\nB,2,New\r\n").step).made());
  gad::Book const after = gad::read_book(path);
  EXPECT_EQ(after.people.size(), 65536u);
  EXPECT_THAT(after.groups.back(), (gad::Group{"New", {65535}}));
  EXPECT_TRUE(book_->undo().made());
  EXPECT_EQ(gad::read_book(path).people.size(), 65534u);
}

TEST_F(ImportTest, ThePrintersRecordsKeepTheirGroups) {
  AddressData data;
  for (std::uint32_t id : {7u, 3u})
    ASSERT_EQ(data.append(Source::printer, gad::IndividualView{.id = id, .name = "日本", .number = std::to_string(id)}),
              Status::success);
  std::vector<std::uint32_t> const members{3, 7};
  ASSERT_EQ(data.append(Source::printer, gad::GroupView{.id = 1, .name = "Büro", .members = members}), Status::success);
  tool::Contacts const contacts = contacts_of(data);
  ASSERT_EQ(contacts.people.size(), 2u);
  EXPECT_EQ(contacts.people[0].name, "日本");
  EXPECT_EQ(contacts.people[0].number, "7");
  EXPECT_THAT(contacts.people[1].groups, ElementsAre("Büro"));
  ASSERT_TRUE(book_->make(plan_import(*book_->contents(), contacts, 0, "Copy").step).made());
  EXPECT_THAT(gad::read_book(path).groups.back(), (gad::Group{"Büro", {4, 5}}));
}

}  // namespace
}  // namespace fax::editor
