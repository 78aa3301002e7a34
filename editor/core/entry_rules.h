// What can be typed into an entry.
#pragma once

#include "editor/core/contents.h"

#include <optional>
#include <string>

namespace fax::editor {

enum class EntryField { name, number, company, note };

struct EntryFault {
  EntryField field;
  std::string text;  // a sentence: "The name is empty."
};

// The first thing that keeps the entry from being stored; none when it can be.
std::optional<EntryFault> fault_of(Person const &person);

// A hint about a number that can be stored but not typed in the fax dialog; empty for none.
std::string hint_about(std::string const &number);

// Without white space at both ends, and with none but blanks inside.
std::string one_line(std::string_view text);

}  // namespace fax::editor
