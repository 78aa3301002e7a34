#include "gad/csv_table.h"

#include "texts/texts.h"

#include <csv.h>

#include <algorithm>
#include <new>
#include <tuple>

namespace fax::tool {
namespace {

constexpr std::string_view delimiters = ",;\t|:";
constexpr std::size_t sample_rows = 50;
constexpr std::size_t growth = 256 << 10;  // of a cell's buffer, which may be copied each time
constexpr std::size_t most_cells = 10000;
constexpr int in_cell = 2;  // csv_parser::pstate before the closing quote

class Reader {
public:
  Reader(char delimiter, std::function<bool(CsvRow &)> const &visit) : visit_(visit) {
    if (csv_init(&parser_, 0) != 0) throw std::bad_alloc();
    csv_set_delim(&parser_, static_cast<unsigned char>(delimiter));
    csv_set_blk_size(&parser_, growth);
  }
  ~Reader() { csv_free(&parser_); }
  Reader(Reader const &) = delete;
  Reader &operator=(Reader const &) = delete;

  // Line by line, for the parser does not tell where it is. So no more than one row ends in each call of it.
  void read(std::string_view text) {
    while (!text.empty() && wanted_) {
      ++line_;
      std::size_t const end = line_end(text);
      if (csv_parse(&parser_, text.data(), end, on_cell, on_row, this) != end) throw std::bad_alloc();
      hand_over();
      text.remove_prefix(end);
    }
    if (!wanted_) return;
    if (within_quotes()) row_.fault = mark("Quotes open and never close. Is the file cut off?");
    if (csv_fini(&parser_, on_cell, on_row, this) != 0) throw std::bad_alloc();
    hand_over();
  }

private:
  static std::size_t line_end(std::string_view text) {
    std::size_t const end = text.find_first_of("\r\n");
    if (end == std::string_view::npos) return text.size();
    return text.substr(end).starts_with("\r\n") ? end + 2 : end + 1;
  }

  void hand_over() {
    if (no_memory_) throw std::bad_alloc();
    if (ended_) {
      wanted_ = visit_(row_);
      row_ = {};
      ended_ = false;
    }
    // Nothing is open: the next line begins a row.
    if (row_.cells.empty() && !within_quotes()) row_.line = line_ + 1;
  }

  // After a whole line the parser is in the middle of a cell only if that one is quoted.
  bool within_quotes() const { return parser_.quoted != 0 && parser_.pstate == in_cell; }

  // The parser is C: nothing is thrown through it.
  static void on_cell(void *cell, std::size_t size, void *self) noexcept {
    auto *reader = static_cast<Reader *>(self);
    if (reader->row_.cells.size() == most_cells) {
      reader->row_.fault = mark("There are more than 10000 cells. Is the delimiter right?");
      return;
    }
    try {
      reader->row_.cells.emplace_back(static_cast<char const *>(cell), size);
    } catch (std::bad_alloc const &) {
      reader->no_memory_ = true;
    }
  }

  static void on_row(int, void *self) noexcept { static_cast<Reader *>(self)->ended_ = true; }

  std::function<bool(CsvRow &)> const &visit_;
  csv_parser parser_{};
  CsvRow row_{{}, 1, nullptr};
  std::size_t line_ = 0;
  bool wanted_ = true, ended_ = false, no_memory_ = false;
};

// Better is greater.
using Likeness = std::tuple<std::size_t, std::size_t>;

Likeness likeness(std::string_view text, char delimiter, std::function<bool(std::string_view)> const &recognised) {
  std::size_t known = 0, columns = 0, alike = 0, rows = 0;
  read_csv(text, delimiter, [&](CsvRow &row) {
    if (rows == 0) {
      columns = row.cells.size();
      known = std::size_t(std::count_if(row.cells.begin(), row.cells.end(), recognised));
    }
    if (row.cells.size() == columns) ++alike;
    return ++rows < sample_rows;
  });
  return {columns > 1 ? known : 0, columns > 1 ? alike * columns : 0};
}

}  // namespace

void read_csv(std::string_view text, char delimiter, std::function<bool(CsvRow &)> const &visit) {
  Reader(delimiter, visit).read(text);
}

bool is_delimiter_line(std::string_view line) { return line.size() == 5 && line.starts_with("sep="); }

char detect_delimiter(std::string_view text, std::function<bool(std::string_view)> const &recognised) {
  std::string_view const first = text.substr(0, text.find_first_of("\r\n"));
  if (is_delimiter_line(first)) return first.back();
  return *std::max_element(delimiters.begin(), delimiters.end(), [&](char a, char b) {
    return likeness(text, a, recognised) < likeness(text, b, recognised);
  });
}

std::string csv_row(std::vector<std::string_view> const &cells, char delimiter) {
  std::string row;
  for (std::string_view cell : cells) {
    if (!row.empty()) row += delimiter;
    std::size_t const size = csv_write(nullptr, 0, cell.data(), cell.size());
    std::size_t const start = row.size();
    row.resize(start + size);
    csv_write(row.data() + start, size, cell.data(), cell.size());
  }
  return row + "\r\n";
}

}  // namespace fax::tool
