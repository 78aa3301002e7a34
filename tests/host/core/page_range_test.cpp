#include <gmock/gmock.h>

#include "host/core/page_range.h"

namespace fax::host {
namespace {

struct RangeCase {
  char const *typed;
  int pages;
  char const *says;  // the range, or what the failure and its advice hold
  bool good = true;
};

class PageRange : public testing::TestWithParam<RangeCase> {};

TEST_P(PageRange, IsReadAsCupsReadsIt) {
  auto const &[typed, pages, says, good] = GetParam();
  auto const spans = parse_page_range(typed, pages);
  ASSERT_EQ(spans.ok(), good);
  if (good) {
    EXPECT_EQ(page_range_text(spans.value()), says);
  } else {
    EXPECT_EQ(spans.failure().code, ExitCode::usage);
    EXPECT_THAT(spans.failure().text(), testing::HasSubstr(says));
  }
}

INSTANTIATE_TEST_SUITE_P(Table, PageRange,
                         testing::Values(RangeCase{"", 8, "1-8"}, RangeCase{" \t", 1, "1"},                     //
                                         RangeCase{"1-3,5", 8, "1-3,5"}, RangeCase{" 1 - 3 , 5 ", 8, "1-3,5"},  //
                                         RangeCase{"5,1-3", 8, "1-3,5"}, RangeCase{"1-3,4,3-5", 8, "1-5"},      //
                                         RangeCase{"3-", 8, "3-8"}, RangeCase{"8-", 8, "8"},                    //
                                         RangeCase{"007", 8, "7"},                                              //
                                         RangeCase{"0", 8, "no page 0. Choose from pages 1 to 8", false},       //
                                         RangeCase{"2-9", 8, "no page 9", false},                               //
                                         RangeCase{"9-", 8, "no page 9", false},                                //
                                         RangeCase{"99999999999999999999", 8, "no page 9999", false},           //
                                         RangeCase{"3-1", 8, "1-3", false},                                     //
                                         RangeCase{"2", 1, "one page", false},                                  //
                                         RangeCase{"-3", 8, "\"-3\"", false}, RangeCase{",", 8, "\"\"", false},  //
                                         RangeCase{"1,", 8, "\"\"", false}, RangeCase{"1-2-3", 8, "1-2-3", false},
                                         RangeCase{"a", 8, "1-8", false}, RangeCase{"+1", 8, "+1", false}));

TEST(PageRange, CountsItsPages) {
  std::vector<PageSpan> const spans{{1, 3}, {5, 5}};
  EXPECT_EQ(pages_in(spans), 4);
  EXPECT_TRUE(holds_page(spans, 3) && holds_page(spans, 5));
  EXPECT_FALSE(holds_page(spans, 4) || holds_page(spans, 6));
}

}  // namespace
}  // namespace fax::host
