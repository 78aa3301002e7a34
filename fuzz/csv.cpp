// Foreign address lists as tables. Input: the delimiter (0: found out), a byte whose bits are the choices, then the file.
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "fuzz/lists.h"
#include "gad/csv_contacts.h"
#include "gad/csv_table.h"

#include <vector>

namespace {

using namespace fax::tool;

std::vector<std::vector<std::string>> rows_of(std::string_view text, char delimiter, bool &sound) {
  std::vector<std::vector<std::string>> rows;
  read_csv(text, delimiter, [&](CsvRow &row) {
    if (row.fault != nullptr) sound = false;
    rows.push_back(row.cells);
    return row.fault == nullptr;
  });
  return rows;
}

// A table that was read and written is the same table.
void check_table(std::string_view text, char delimiter) {
  bool sound = true;
  auto const rows = rows_of(text, delimiter, sound);
  if (!sound) return;
  std::string written;
  for (auto const &row : rows) written += csv_row({row.begin(), row.end()}, delimiter);
  FUZZ_CHECK(rows_of(written, delimiter, sound) == rows && sound);
}

void check_contacts(std::string const &text, CsvChoices const &choices) {
  Contacts const contacts = read_csv_contacts(text, choices, fuzz::no_progress);
  fuzz::check_list(contacts);
  for (auto const &person : contacts.people)
    if (!fault_of(person))
      fuzz::check_same(person, read_csv_contacts(csv_header(';') + csv_contact(person, ';'), {}, fuzz::no_progress));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  char const delimiter = ",;\t|:"[input.byte() % 6];
  std::uint8_t const bits = input.byte();
  CsvChoices choices;
  choices.delimiter = delimiter;
  choices.no_header = (bits & 1) != 0;
  choices.fax_only = (bits & 2) != 0;
  if (bits & 4) choices.columns = {"name=1", "number=2"};
  try {
    DecodedText const list = decode_text_file(input.rest(), bits & 8 ? "windows-1252" : "");
    FUZZ_CHECK(is_utf8(list.text));
    check_table(list.text, delimiter == 0 ? ',' : delimiter);
    check_contacts(list.text, choices);
  } catch (Failure const &failure) {
    fuzz::check_message(failure.what());
  }
  return 0;
}
