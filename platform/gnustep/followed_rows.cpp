#include "platform/gnustep/followed_rows.h"

#include <algorithm>
#include <unordered_map>

namespace fax {

std::vector<std::size_t> follow_rows(std::vector<RowObject> const &before, std::vector<std::size_t> const &chosen,
                                     std::vector<RowObject> const &now) {
  std::vector<bool> is_chosen(before.size());
  for (std::size_t const at : chosen) {
    if (at < before.size()) is_chosen[at] = true;
  }
  std::unordered_map<RowObject, std::vector<std::size_t>> turns;
  for (std::size_t at = 0; at < before.size(); ++at) {
    if (is_chosen[at]) turns[before[at]];
  }
  if (turns.empty()) return {};
  for (std::size_t at = 0; at < now.size(); ++at) {
    if (auto const found = turns.find(now[at]); found != turns.end()) found->second.push_back(at);
  }
  std::unordered_map<RowObject, std::size_t> turn;
  std::vector<std::size_t> rows;
  for (std::size_t at = 0; at < before.size(); ++at) {
    auto const found = turns.find(before[at]);
    if (found == turns.end()) continue;
    std::size_t const mine = turn[before[at]]++;
    if (!is_chosen[at] || found->second.empty()) continue;
    rows.push_back(found->second[std::min(mine, found->second.size() - 1)]);
  }
  std::sort(rows.begin(), rows.end());
  rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
  return rows;
}

std::vector<std::size_t> rows_added(std::vector<RowObject> const &added, std::vector<RowObject> const &now) {
  std::unordered_map<RowObject, std::size_t> wanted;
  for (RowObject const object : added) ++wanted[object];
  std::vector<std::size_t> rows;
  for (std::size_t at = now.size(); at-- > 0;) {
    auto const found = wanted.find(now[at]);
    if (found == wanted.end() || found->second == 0) continue;
    --found->second;
    rows.push_back(at);
  }
  std::reverse(rows.begin(), rows.end());
  return rows;
}

}  // namespace fax
