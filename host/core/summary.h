// The rows of the dialog's Summary pane.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace fax::host {

// All text is UTF-8.
struct SummaryRow {
  std::string label;
  std::string value;

  bool operator==(SummaryRow const &) const = default;
};

struct SummarySection {
  std::string title;
  std::vector<SummaryRow> rows;
};

// A panel's summary is a dictionary (labels to values, in no order) and a list of labels. Rows come in the list's
// order, a label once; a label without a value gives no row; values whose label the list lacks follow, sorted by label.
std::vector<SummaryRow> summary_rows(std::vector<std::pair<std::string, std::string>> const &values,
                                     std::vector<std::string> const &order);

}  // namespace fax::host
