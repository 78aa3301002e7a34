#include "editor/core/messages.h"

#include "gad/status_text.h"
#include "texts/texts.h"

namespace fax::editor {
namespace {

// nullptr when the sentence says it all.
char const *advice(Status status) {
  switch (status) {
    case Status::no_file: return mark("It was moved or deleted.");
    case Status::foreign_file: return mark("The addresses of another program can be imported.");
    case Status::newer_file: return mark("Use the newer version of this program.");
    case Status::damaged: return mark("Use a copy of it.");
    case Status::no_permission: return mark("Ask the owner of the file.");
    case Status::read_only: return mark("The file and its folder must be writable.");
    case Status::busy: return mark("Try again when it is done.");
    case Status::full: return mark("Make room and try again.");
    case Status::file_exists: return mark("Choose another name.");
    default: return nullptr;
  }
}

}  // namespace

std::string sentence_about(Status status) {
  char const *const hint = advice(status);
  return tool::sentence_about(status) + (hint != nullptr ? " " + tr(hint) : "");
}

std::string problem_with(Outcome const &outcome) {
  std::string problem = outcome.conflict;
  if (problem.empty())
    problem = outcome.status == Status::present
                  ? tr("There is an entry with this name and number, or a group of this name, already.")
                  : sentence_about(outcome.status);
  return problem + " " + tr("Nothing was changed.");
}

}  // namespace fax::editor
