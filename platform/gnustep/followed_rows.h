// Which rows of a rearranged list stand for the rows that were chosen before. Rows are told apart by the identity of
// their objects, and rows that show one object twice by their turn among each other.
#pragma once

#include <cstddef>
#include <vector>

namespace fax {

using RowObject = void *;

// Positions in now, ascending, of the rows that stood at the positions chosen in before ({A,B,A} chosen 2 -> {A,A,B}:
// 1). A row whose object has gone is left out; when its object shows fewer times than before, its last row counts.
// Positions past the end of before are ignored.
std::vector<std::size_t> follow_rows(std::vector<RowObject> const &before, std::vector<std::size_t> const &chosen,
                                     std::vector<RowObject> const &now);

// Positions in now, ascending, of the last rows that show the objects added, one row for each time an object is added.
std::vector<std::size_t> rows_added(std::vector<RowObject> const &added, std::vector<RowObject> const &now);

}  // namespace fax
