// Rows on standard output, for people or for programs.
#pragma once

#include "gad/commands.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace fax::tool {

// On standard error, beside what a command prints: a sentence worth knowing.
void print_note(std::string const &sentence);

struct ColumnTitle {
  char const *key;    // in JSON, the same in every language
  char const *title;  // in a table, for tr()
};

class Listing {
public:
  using Cell = std::variant<std::uint32_t, std::string, std::vector<std::string>>;

  Listing(std::vector<ColumnTitle> columns, ListFormat format);

  // As many cells as there are columns.
  void add(std::vector<Cell> row) { rows_.push_back(std::move(row)); }

  // A table has the names of the columns on top; tsv has none, tabs between the cells and escaped() texts, the items of
  // a list separated by ";" (one within an item has a backslash before it); json is one array of objects.
  void print() const;

private:
  void print_table() const;
  void print_tsv() const;
  void print_json() const;

  std::vector<ColumnTitle> columns_;
  ListFormat format_;
  std::vector<std::vector<Cell>> rows_;
};

}  // namespace fax::tool
