// What each command of gad does. Every function answers an exit code or throws a Failure; results go to standard
// output, remarks to standard error.
#pragma once

#include "gad/csv_contacts.h"

#include <string>
#include <vector>

namespace fax::tool {

int create_book(std::string const &book);

enum class ListFormat { automatic, table, tsv, json };  // automatic: a table on a terminal, else tsv

struct ListChoices {
  std::string book, search, group;
  ListFormat format = ListFormat::automatic;
};
int list_entries(ListChoices const &choices);

// Not in a list of its own: line 0.
int add_entry(std::string const &book, Contact const &contact);
int remove_entries(std::string const &book, std::vector<std::string> const &entries);

struct GroupChoices {
  std::string book, name, new_name;
  std::vector<std::string> add, remove;
  bool create = false, erase = false;
  ListFormat format = ListFormat::automatic;
};
int work_on_group(GroupChoices const &choices);

enum class ImportFormat { automatic, vcard, csv };

struct ImportChoices {
  std::string book, source, encoding, group;
  ImportFormat format = ImportFormat::automatic;
  CsvChoices csv;
  bool dry_run = false, quiet = false, verbose = false;
};
int import_list(ImportChoices const &choices);

enum class ExportFormat { automatic, vcard4, vcard3, csv };

struct ExportChoices {
  std::string book, target = "-";
  ExportFormat format = ExportFormat::automatic;
  char delimiter = ',';
  bool byte_order_mark = false, replace = false, quiet = false;
};
int export_book(ExportChoices const &choices);

}  // namespace fax::tool
