// What went wrong, in sentences for a person.
#pragma once

#include "editor/core/open_book.h"

#include <string>

namespace fax::editor {

// What happened, and what can be done about it.
std::string sentence_about(Status status);

// Of a step that was not made.
std::string problem_with(Outcome const &outcome);

}  // namespace fax::editor
