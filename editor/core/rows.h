// Which people a list shows, and in which order.
#pragma once

#include "editor/core/contents.h"

#include <memory>
#include <string>
#include <vector>

namespace fax::editor {

enum class Column { name, number, company, note };

struct Wish {
  std::string search;         // in name, number or company; letter case does not matter
  std::uint32_t group = 0;    // 0: everybody
  Column order = Column::name;
  bool descending = false;
};

class Rows {
public:
  Rows() = default;
  Rows(std::shared_ptr<Contents const> contents, Wish const &wish);

  std::size_t count() const { return places_.size(); }
  Person const &person(std::size_t row) const { return contents_->people()[places_[row]]; }
  std::string const &text(std::size_t row, Column column) const;

  // Rows of these ids (in any order), ascending; ids that are not shown are left out.
  std::vector<std::size_t> rows_of(std::vector<std::uint32_t> const &ids) const;

private:
  std::shared_ptr<Contents const> contents_;
  std::vector<std::uint32_t> places_;  // of contents_->people()
};

// Ids of groups by name.
std::vector<std::uint32_t> groups_by_name(Contents const &contents);

}  // namespace fax::editor
