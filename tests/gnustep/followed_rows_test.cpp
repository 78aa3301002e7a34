#include "platform/gnustep/followed_rows.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using testing::ElementsAre;

char letters[128];

// "ABA" -> three rows, the first and the last of the same object.
std::vector<fax::RowObject> rows(std::string const &text) {
  std::vector<fax::RowObject> list;
  for (char const letter : text) list.push_back(&letters[static_cast<unsigned char>(letter)]);
  return list;
}

struct FollowCase {
  char const *name;
  char const *before;
  std::vector<std::size_t> chosen;
  char const *now;
  std::vector<std::size_t> expected;
};

class FollowRows : public testing::TestWithParam<FollowCase> {};

TEST_P(FollowRows, FindsTheSameObjects) {
  FollowCase const &test = GetParam();
  EXPECT_EQ(fax::follow_rows(rows(test.before), test.chosen, rows(test.now)), test.expected);
}

INSTANTIATE_TEST_SUITE_P(Table, FollowRows,
                         testing::Values(FollowCase{"moved", "ABC", {0, 2}, "CAB", {0, 1}},
                                         FollowCase{"gone", "ABC", {1}, "AC", {}},
                                         FollowCase{"second_of_two", "ABA", {2}, "AAB", {1}},
                                         FollowCase{"first_of_two", "ABA", {0}, "BAA", {1}},
                                         FollowCase{"both_of_two_one_left", "ABA", {0, 2}, "BA", {1}},
                                         FollowCase{"past_the_end", "AB", {7}, "AB", {}},
                                         FollowCase{"nothing_chosen", "AB", {}, "BA", {}}),
                         [](auto const &info) { return std::string{info.param.name}; });

TEST(RowsAdded, AreTheLastOfTheirObject) {
  EXPECT_THAT(fax::rows_added(rows("A"), rows("AAB")), ElementsAre(1u));
  EXPECT_THAT(fax::rows_added(rows("AA"), rows("AAB")), ElementsAre(0u, 1u));
  EXPECT_THAT(fax::rows_added(rows("BC"), rows("CAAB")), ElementsAre(0u, 3u));
  EXPECT_THAT(fax::rows_added(rows("Z"), rows("AB")), ElementsAre());
}

}  // namespace
