// Tables in text: RFC 4180 with any delimiter, read and written.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fax::tool {

struct CsvRow {
  std::vector<std::string> cells;
  std::size_t line = 0;         // where it begins, from 1
  char const *fault = nullptr;  // why it is no row, for tr(): quotes that never end, more cells than a table has
};

// Calls visit with each row in turn while it answers true; blank lines are none. White space around a cell outside
// quotes is not part of it. A line may end in LF, CR LF or CR. text is UTF-8, delimiter an ASCII character.
void read_csv(std::string_view text, char delimiter, std::function<bool(CsvRow &)> const &visit);

// The delimiter (comma, semicolon, tab, bar or colon) with which text is most like a table: a line "sep=;" at its start
// decides; else how many cells of the first row recognised knows; else how many rows have as many cells as the first.
char detect_delimiter(std::string_view text, std::function<bool(std::string_view)> const &recognised);

// Skips a first line "sep=;", which spreadsheets read.
bool is_delimiter_line(std::string_view line);

// One row, every cell in quotes, with CR LF.
std::string csv_row(std::vector<std::string_view> const &cells, char delimiter);

}  // namespace fax::tool
