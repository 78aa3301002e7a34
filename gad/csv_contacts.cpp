#include "gad/csv_contacts.h"

#include "gad/columns.h"
#include "gad/csv_table.h"
#include "gad/failure.h"
#include "gad/names.h"
#include "gad/numbers.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <algorithm>

namespace fax::tool {
namespace {

constexpr std::string_view many_in_a_cell = " ::: ";
constexpr std::string_view escapable = ";:\\ ";  // characters that a backslash makes part of a group's name

std::string const &cell_of(CsvRow const &row, std::size_t column) {
  static std::string const none;
  return column < row.cells.size() ? row.cells[column] : none;
}

std::vector<std::string> cells_of(CsvRow const &row, Columns const &columns, Field field) {
  std::vector<std::string> cells;
  auto const found = columns.find(field);
  if (found == columns.end()) return cells;
  for (std::size_t column : found->second)
    if (std::string const &cell = cell_of(row, column); !trimmed(cell).empty()) cells.push_back(cell);
  return cells;
}

std::string first_of(CsvRow const &row, Columns const &columns, Field field) {
  auto cells = cells_of(row, columns, field);
  return cells.empty() ? std::string() : std::move(cells.front());
}

std::string name_of(CsvRow const &row, Columns const &columns) {
  std::string name = first_of(row, columns, Field::name);
  if (!name.empty()) return name;
  std::string const given = first_of(row, columns, Field::given), middle = first_of(row, columns, Field::middle),
                    family = first_of(row, columns, Field::family);
  name = joined_name({"", given, middle, family, ""});
  return name.empty() ? first_of(row, columns, Field::company) : name;
}

Rank rank_of(Field field) {
  switch (field) {
    case Field::fax: return Rank::fax;
    case Field::fax_work: return Rank::fax_work;
    case Field::fax_other: return Rank::fax_other;
    case Field::voice: return Rank::voice;
    default: return Rank::voice_other;
  }
}

// One label can stand for several numbers.
void add_labelled(Numbers &numbers, std::string_view cell, Rank rank) {
  while (!cell.empty()) {
    std::size_t const end = std::min(cell.find(many_in_a_cell), cell.size());
    numbers.add(std::string(cell.substr(0, end)), rank);
    cell.remove_prefix(std::min(end + many_in_a_cell.size(), cell.size()));
  }
}

Numbers numbers_of(CsvRow const &row, Columns const &columns) {
  Numbers numbers;
  for (Field field : {Field::fax, Field::fax_work, Field::fax_other, Field::voice, Field::voice_other})
    for (std::string const &cell : cells_of(row, columns, field)) numbers.add(cell, rank_of(field));
  auto const labelled = columns.find(Field::labelled), labels = columns.find(Field::label);
  if (labelled == columns.end()) return numbers;
  for (std::size_t i = 0; i < labelled->second.size(); ++i) {
    std::string const label =
        labels != columns.end() && i < labels->second.size() ? cell_of(row, labels->second[i]) : std::string();
    add_labelled(numbers, cell_of(row, labelled->second[i]), rank_of(labelled_number(label)));
  }
  return numbers;
}

// Groups that a program made, not a person.
bool is_system_group(std::string const &name) { return name == "* myContacts" || name == "* starred"; }

std::vector<std::string> groups_in(std::string_view cell) {
  std::vector<std::string> groups;
  auto const add = [&](std::string const &name) {
    if (!trimmed(name).empty() && !is_system_group(name)) groups.push_back(name);
  };
  std::string_view const mark = cell.find(many_in_a_cell) != std::string_view::npos ? many_in_a_cell : ";";
  std::string name;
  for (std::size_t i = 0; i < cell.size(); ++i) {
    if (cell[i] == '\\' && i + 1 < cell.size() && escapable.find(cell[i + 1]) != std::string_view::npos) {
      name += cell[++i];
    } else if (cell.substr(i).starts_with(mark)) {
      add(name);
      name.clear();
      i += mark.size() - 1;
    } else if (!name.empty() || cell[i] != ' ') {
      name += cell[i];
    }
  }
  add(name);
  return groups;
}

// The other way round: groups_in reads it as this one name.
std::string group_in_cell(std::string_view name) {
  std::string text;
  for (char c : name) {
    bool const mistaken = c == ';' || c == '\\' || c == ':' || (c == ' ' && text.empty());
    if (mistaken) text += '\\';
    text += c;
  }
  return text;
}

class Importer {
public:
  explicit Importer(CsvChoices const &choices) : choices_(choices) {}

  void row(CsvRow &row) {
    //: {1} is a sentence about that line of a file.
    if (row.fault != nullptr) throw Failure(tr("Line {0}: {1}", row.line, tr(row.fault)));
    if (!columns_known_)
      learn_columns(row);
    else
      contact(row);
  }

  bool columns_known() const { return columns_known_; }
  Contacts take() { return std::move(contacts_); }

private:
  void learn_columns(CsvRow &row) {
    std::vector<std::string> header = row.cells;
    if (choices_.no_header)
      for (std::size_t i = 0; i < header.size(); ++i) header[i] = std::to_string(i + 1);
    columns_ = choices_.no_header ? Columns() : map_columns(header);
    override_columns(columns_, choices_.columns, header);
    require(row.line, header, {Field::name, Field::given, Field::family, Field::company},
            mark("Line {0}: No column is known to hold names. Say which with 'gad import --map name=COLUMN'. The columns "
                 "are {1}."));
    require(row.line, header,
            {Field::fax, Field::fax_work, Field::fax_other, Field::voice, Field::voice_other, Field::labelled},
            mark("Line {0}: No column is known to hold numbers. Say which with 'gad import --map number=COLUMN'. The "
                 "columns are {1}."));
    columns_known_ = true;
    if (choices_.no_header) contact(row);
  }

  void require(std::size_t line, std::vector<std::string> const &header, std::initializer_list<Field> fields,
               char const *missing) const {
    if (std::any_of(fields.begin(), fields.end(), [this](Field one) { return columns_.contains(one); })) return;
    std::string names;
    for (std::string const &name : header) names += (names.empty() ? "" : ", ") + in_quotes(name);
    throw Failure(tr(missing, line, names));
  }

  void contact(CsvRow const &row) {
    Contact contact;
    contact.line = row.line;
    contact.name = name_of(row, columns_);
    contact.company = first_of(row, columns_, Field::company);
    contact.note = first_of(row, columns_, Field::note);
    for (std::string const &cell : cells_of(row, columns_, Field::groups))
      for (std::string &group : groups_in(cell)) contact.groups.push_back(std::move(group));
    numbers_of(row, columns_).choose(contact, choices_.fax_only, contacts_);
  }

  CsvChoices const &choices_;
  Columns columns_;
  bool columns_known_ = false;
  Contacts contacts_;
};

}  // namespace

Contacts read_csv_contacts(std::string_view text, CsvChoices const &choices,
                           std::function<void(double)> const &progress) {
  auto const recognised = [](std::string_view cell) { return known_column(cell).has_value(); };
  char const delimiter = choices.delimiter != 0 ? choices.delimiter : detect_delimiter(text, recognised);
  Importer importer(choices);
  std::size_t rows = 0, read = 0;
  read_csv(text, delimiter, [&](CsvRow &row) {
    bool const note_for_spreadsheets = ++rows == 1 && is_delimiter_line(text.substr(0, text.find_first_of("\r\n")));
    if (!note_for_spreadsheets) importer.row(row);
    for (std::string const &cell : row.cells) read += cell.size() + 1;
    progress(std::min(1.0, double(read) / double(text.size())));
    return true;
  });
  if (!importer.columns_known()) throw Failure(tr("There is no table in it: the file is empty."));
  return importer.take();
}

std::string csv_header(char delimiter) {
  return csv_row({"Name", "Fax Number", "Company", "Notes", "Categories"}, delimiter);
}

std::string csv_contact(Contact const &contact, char delimiter) {
  std::string groups;
  for (std::string const &group : contact.groups) groups += (groups.empty() ? "" : ";") + group_in_cell(group);
  return csv_row({contact.name, contact.number, contact.company, contact.note, groups}, delimiter);
}

}  // namespace fax::tool
