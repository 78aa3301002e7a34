// The store alone, with a fold of ASCII letters and of one accent.
#include "addressbook/address_book.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <random>

namespace {

using fax::AddressBook;
using fax::RowNumber;
using testing::ElementsAre;

fax::CaseFold plain_fold() {
  return fax::CaseFold(
      [](char16_t unit) {
        fax::FoldedUnit folded;
        char16_t const small = unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 32) : unit;
        folded.units = {small == u'é' ? u'e' : small, u'\u0301'};
        folded.count = small == u'é' ? 2 : 1;
        return folded;
      },
      [](char16_t unit) { return unit == u'\u0301'; });
}

std::string ascii(std::u16string_view text) { return std::string(text.begin(), text.end()); }

class AddressBookTest : public testing::Test {
 protected:
  void add(std::uint16_t id, std::u16string_view name, std::u16string_view number = u"1") {
    book.add_individual(id, name, number, u"", u"");
  }
  std::vector<std::string> names(std::vector<RowNumber> const &rows) {
    std::vector<std::string> list;
    for (RowNumber const row : rows) list.push_back(ascii(book.entry(row).name));
    return list;
  }
  std::vector<std::string> named(std::u16string_view text) { return names(book.rows_named(text, fold)); }
  std::vector<std::uint16_t> ids_of(fax::GroupMembers const &members) {
    std::vector<std::uint16_t> ids;
    for (RowNumber const row : members.rows) ids.push_back(book.entry(row).id);
    return ids;
  }

  fax::CaseFold fold = plain_fold();
  AddressBook book;
};

TEST_F(AddressBookTest, KeepsWhatTheRecordsSay) {
  char16_t field[] = u"Ann\0stale";
  book.add_individual(65535, fax::field_text(field, 9), u"12", u"Works", u"");
  book.add_individual(0, u"Bob", u"Group");
  std::uint16_t const members[] = {3, 1, 3};
  book.add_group(u"All", members);
  fax::AddressEntry const ann = book.entry(0);
  EXPECT_EQ(ascii(ann.name), "Ann");
  EXPECT_EQ(ascii(ann.number), "12");
  EXPECT_EQ(ascii(ann.company), "Works");
  EXPECT_TRUE(ann.has_details && ann.note.empty() && !ann.is_group());
  EXPECT_EQ(ann.id, 65535);
  fax::AddressEntry const bob = book.entry(1);
  EXPECT_TRUE(bob.is_group() && !bob.group_record && !bob.has_details);
  fax::AddressEntry const all = book.entry(2);
  EXPECT_TRUE(all.is_group() && all.group_record);
  EXPECT_THAT(all.members, ElementsAre(3, 1, 3));
}

TEST_F(AddressBookTest, RefusesATextThatNoRecordCanHoldAndStaysAsItWas) {
  add(1, u"Ann");
  EXPECT_THROW(add(2, std::u16string(65536, u'x')), std::length_error);
  EXPECT_THROW(book.add_group(std::u16string(65536, u'x'), {}), std::length_error);
  std::uint16_t const member[] = {1};
  book.add_group(u"G", member);
  book.sort(fold);
  ASSERT_EQ(book.size(), 2u);
  EXPECT_THAT(book.entry(0).members, ElementsAre(1));
}

TEST_F(AddressBookTest, SortsFromZToAWithoutCaseAndKeepsEqualOnesAsAdded) {
  add(1, u"bob", u"2");
  add(2, u"Ann", u"5");
  add(3, u"BOB", u"10");
  add(4, u"Bob", u"2");
  add(5, u"Anna", u"1");
  add(6, u"Caf\u00e9", u"1");
  add(7, u"Cafez", u"1");
  add(8, u"CAFE\u0301", u"1");
  book.sort(fold);
  std::vector<std::uint16_t> ids;
  for (RowNumber row = 0; row < book.size(); ++row) ids.push_back(book.entry(row).id);
  EXPECT_THAT(ids, ElementsAre(6, 8, 7, 1, 4, 3, 5, 2));
}

TEST_F(AddressBookTest, FindsNamesThatContainTheText) {
  EXPECT_TRUE(named(u"x").empty()) << "before the first sort";
  for (char16_t const *name : {u"Dana", u"Anne", u"Bob", u"ANDAN", u"Cafe\u0301", u"eel"}) add(1, name);
  std::uint16_t const nobody[] = {1};
  book.add_group(u"Santa", nobody);
  book.sort(fold);
  EXPECT_THAT(named(u"AN"), ElementsAre("Santa", "Dana", "Anne", "ANDAN"));
  EXPECT_EQ(named(u"").size(), 7u);
  EXPECT_THAT(named(u"e"), ElementsAre("eel", "Anne")) << "not the letter below an accent";
  EXPECT_EQ(named(u"\u00e9").size(), 1u);
  EXPECT_TRUE(named(u"BobA").empty()) << "across two names";
  EXPECT_TRUE(named(u"group").empty()) << "the number is not searched";
}

struct MembersCase {
  char const *name;
  std::vector<std::uint16_t> ids;
  std::vector<RowNumber> shown;
  std::vector<std::uint16_t> expected;
  bool complete;
};

class AddressMembersTest : public AddressBookTest, public testing::WithParamInterface<MembersCase> {};

// Rows 0 to 5: Eve 5, Dan 7, Cy 7, a group named C, Bob whose number says that he is a group, Ann 0.
TEST_P(AddressMembersTest, AreTakenInTheShownOrder) {
  add(5, u"Eve");
  add(7, u"Dan");
  add(7, u"Cy");
  book.add_group(u"C", {});
  add(9, u"Bob", u"Group");
  add(0, u"Ann");
  book.sort(fold);
  MembersCase const &test = GetParam();
  fax::GroupMembers const found = book.members(test.ids, test.shown);
  EXPECT_EQ(ids_of(found), test.expected);
  EXPECT_EQ(found.complete, test.complete);
  std::vector<RowNumber> all(book.size());
  std::iota(all.begin(), all.end(), 0u);
  if (test.shown == all) {
    EXPECT_EQ(book.members(test.ids).rows, found.rows);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Groups, AddressMembersTest,
    testing::Values(MembersCase{"order", {0, 5}, {0, 1, 2, 3, 4, 5}, {5, 0}, true},
                    MembersCase{"hidden", {0, 5}, {1, 5}, {0}, false},
                    MembersCase{"twins_listed_once", {7}, {0, 1, 2, 3, 4, 5}, {7}, true},
                    MembersCase{"twins_listed_twice", {7, 7}, {0, 1, 2, 3, 4, 5}, {7, 7}, true},
                    MembersCase{"listed_twice", {5, 5}, {0, 1, 2, 3, 4, 5}, {5}, false},
                    MembersCase{"groups_are_skipped", {9}, {0, 1, 2, 3, 4, 5}, {}, false},
                    MembersCase{"none", {}, {0, 1, 2, 3, 4, 5}, {}, true}),
    [](auto const &info) { return std::string(info.param.name); });

TEST_F(AddressBookTest, SortsAndFindsManyRowsAsPlainWaysWould) {
  std::mt19937 random(4);
  std::vector<std::pair<std::u16string, std::uint16_t>> plain;
  for (std::uint16_t at = 0; at < 3000; ++at) {
    std::u16string name;
    for (unsigned length = random() % 14; length-- > 0;) name += static_cast<char16_t>(u'a' + random() % 2);
    add(at, name);
    plain.emplace_back(name, at);
  }
  std::stable_sort(plain.begin(), plain.end(), [](auto const &l, auto const &r) { return l.first > r.first; });
  book.sort(fold);
  for (RowNumber row = 0; row < book.size(); ++row) ASSERT_EQ(book.entry(row).id, plain[row].second) << row;
  for (std::u16string_view const text : {u"a", u"ab", u"aba", u"bbbb", u"abbabaab", u"abbabaabb", u"abbabaabba",
                                       u"bababababababa"}) {
    std::vector<RowNumber> expected;
    for (RowNumber row = 0; row < plain.size(); ++row) {
      if (plain[row].first.find(text) != text.npos) expected.push_back(row);
    }
    EXPECT_EQ(book.rows_named(text, fold), expected) << ascii(text);
  }
}

}  // namespace
