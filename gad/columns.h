// Which column of a table holds what: by the names that programs give their columns, or as the user says.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fax::tool {

enum class Field {
  name,
  given,
  middle,
  family,
  company,
  note,
  fax,  // the one to take first
  fax_work,
  fax_other,
  voice,  // taken when there is no fax number
  voice_other,
  groups,
  label,     // says what the next number column holds
  labelled,  // a number whose kind the column before it says
};

// What a column of this name holds, in any letter case and with any punctuation; none for a name that is not known.
// English, German, French, Spanish, Italian, Dutch, Portuguese, Swedish, Polish and Japanese names of common programs.
std::optional<Field> known_column(std::string_view name);

// What a label in a cell ("Work Fax") says of the number beside it; voice_other unless it says more.
Field labelled_number(std::string_view label);

// Columns by field, from 0, in the order they are taken.
using Columns = std::map<Field, std::vector<std::size_t>>;

Columns map_columns(std::vector<std::string> const &header);

// The user's own, such as "name=Full Name" and "number=3": fields name, given, middle, family, number, company, note,
// group; columns by name, or by number from 1. A field that is said replaces what the header gave for it. Failure
// (exit_usage) names the part at fault and lists the columns that there are.
void override_columns(Columns &columns, std::vector<std::string> const &choices,
                      std::vector<std::string> const &header);

}  // namespace fax::tool
