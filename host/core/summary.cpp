#include "host/core/summary.h"

#include <map>

namespace fax::host {

std::vector<SummaryRow> summary_rows(std::vector<std::pair<std::string, std::string>> const &values,
                                     std::vector<std::string> const &order) {
  std::map<std::string, std::string> left(values.begin(), values.end());
  std::vector<SummaryRow> rows;
  for (auto const &label : order)
    if (auto const found = left.extract(label)) rows.push_back({found.key(), found.mapped()});
  for (auto const &[label, value] : left) rows.push_back({label, value});
  return rows;
}

}  // namespace fax::host
