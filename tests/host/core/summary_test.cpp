#include "host/core/summary.h"

#include <gtest/gtest.h>

namespace fax::host {
namespace {

using Rows = std::vector<SummaryRow>;

TEST(SummaryRows, OrderThenTheRestByLabel) {
  EXPECT_EQ(summary_rows({{"Sender Name", ""}, {"Quality", "Fine"}, {"Zeta", "z"}, {"Alpha", "a"}},
                         {"Quality", "Sender Name", "Unknown", "Quality"}),
            (Rows{{"Quality", "Fine"}, {"Sender Name", ""}, {"Alpha", "a"}, {"Zeta", "z"}}));
  EXPECT_EQ(summary_rows({}, {"Quality"}), Rows{});
}

}  // namespace
}  // namespace fax::host
