// Address lists as tables, from and for other programs.
#pragma once

#include "gad/contacts.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fax::tool {

struct CsvChoices {
  char delimiter = 0;                // 0: found out
  bool no_header = false;            // the first row is a contact
  std::vector<std::string> columns;  // see override_columns
  bool fax_only = false;             // a row without a fax number is skipped, whatever other numbers it has
};

// Of several numbers the first there is of: fax, work fax, other fax, work telephone, other telephone; what else there
// is goes into a remark. A row that has no name is called by its company. Groups of a cell are parted by ";" or " :::
// "; a backslash makes the ";", ":", blank or backslash after it part of a name. progress gets the share that is read,
// 0 to 1.
//
// Failure: no column for names or for numbers is known, a choice does not fit, quotes never end.
Contacts read_csv_contacts(std::string_view text, CsvChoices const &choices,
                           std::function<void(double)> const &progress);

std::string csv_header(char delimiter);
std::string csv_contact(Contact const &contact, char delimiter);

}  // namespace fax::tool
