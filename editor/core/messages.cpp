#include "editor/core/messages.h"

namespace fax::editor {
namespace {

char const *advice(Status status) {
  switch (status) {
    case Status::no_file: return " It was moved or deleted.";
    case Status::foreign_file: return " The addresses of another program can be imported.";
    case Status::newer_file: return " Use the newer version of this program.";
    case Status::damaged: return " Use a copy of it.";
    case Status::no_permission: return " Ask the owner of the file.";
    case Status::read_only: return " The file and its folder must be writable.";
    case Status::busy: return " Try again when it is done.";
    case Status::full: return " Make room and try again.";
    case Status::file_exists: return " Choose another name.";
    default: return "";
  }
}

}  // namespace

std::string sentence_about(Status status) { return std::string(describe(status)) + "." + advice(status); }

std::string problem_with(Outcome const &outcome) {
  if (!outcome.conflict.empty()) return outcome.conflict + " Nothing was changed.";
  if (outcome.status == Status::present)
    return "There is an entry with this name and number, or a group of this name, already. Nothing was changed.";
  return sentence_about(outcome.status) + " Nothing was changed.";
}

}  // namespace fax::editor
