#include "gad/listing.h"

#include "gad/files.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <nlohmann/json.hpp>
#include <unistd.h>

#include <algorithm>
#include <iostream>

namespace fax::tool {
namespace {

std::string joined(std::vector<std::string> const &items) {
  std::string text;
  for (std::string const &item : items) {
    if (!text.empty()) text += ';';
    for (char c : escaped(item)) text += c == ';' ? "\\;" : std::string(1, c);
  }
  return text;
}

std::string text_of(Listing::Cell const &cell) {
  if (auto const *number = std::get_if<std::uint32_t>(&cell)) return std::to_string(*number);
  if (auto const *text = std::get_if<std::string>(&cell)) return escaped(*text);
  return joined(std::get<std::vector<std::string>>(cell));
}

nlohmann::ordered_json json_of(Listing::Cell const &cell) {
  return std::visit([](auto const &value) { return nlohmann::ordered_json(value); }, cell);
}

}  // namespace

void print_note(std::string const &sentence) { std::cerr << "gad: " << tr("note: {0}", sentence) << '\n'; }

Listing::Listing(std::vector<ColumnTitle> columns, ListFormat format) : columns_(std::move(columns)), format_(format) {
  if (format_ == ListFormat::automatic) format_ = isatty(STDOUT_FILENO) == 1 ? ListFormat::table : ListFormat::tsv;
}

void Listing::print() const {
  switch (format_) {
    case ListFormat::json: print_json(); break;
    case ListFormat::table: print_table(); break;
    default: print_tsv(); break;
  }
  finish_output();
}

void Listing::print_tsv() const {
  for (auto const &row : rows_)
    for (std::size_t i = 0; i < row.size(); ++i) std::cout << text_of(row[i]) << (i + 1 < row.size() ? '\t' : '\n');
}

void Listing::print_json() const {
  auto array = nlohmann::ordered_json::array();
  for (auto const &row : rows_) {
    nlohmann::ordered_json object;
    for (std::size_t i = 0; i < row.size(); ++i) object[columns_[i].key] = json_of(row[i]);
    array.push_back(std::move(object));
  }
  // A stranger's file may hold bytes that are no UTF-8.
  std::cout << array.dump(1, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

void Listing::print_table() const {
  std::vector<std::vector<std::string>> lines(1);
  for (ColumnTitle const &column : columns_) lines.front().push_back(tr(column.title));
  for (auto const &row : rows_) {
    auto &line = lines.emplace_back();
    for (Cell const &cell : row) line.push_back(text_of(cell));
  }
  std::vector<std::size_t> widths(columns_.size());
  for (auto const &line : lines)
    for (std::size_t i = 0; i < line.size(); ++i) widths[i] = std::max(widths[i], columns_of(line[i]));
  for (auto const &line : lines) {
    std::string text;
    for (std::size_t i = 0; i < line.size(); ++i)
      text += line[i] + std::string(widths[i] - columns_of(line[i]) + 2, ' ');
    text.erase(text.find_last_not_of(' ') + 1);
    std::cout << text << '\n';
  }
}

}  // namespace fax::tool
