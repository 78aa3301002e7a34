// What an import would do to a book: shown first, then made as one step, which can be undone like any other.
#pragma once

#include "editor/core/step.h"
#include "gad/contacts.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace fax::editor {

struct PlanRemark {
  bool skipped = false;  // left out, or else worth knowing
  std::string text;      // "Line 7: ..."
};

struct ImportPlan {
  Step step;
  std::size_t added = 0, present = 0;  // entries; those that are in the book already
  std::size_t skipped = 0, groups = 0;  // records that the book cannot hold; new groups
  std::vector<PlanRemark> remarks;      // what is skipped first, each part by line

  // "3 entries will be added. 1 group will be added. 2 are in the book already. 1 is skipped."
  std::string summary() const;
};

// now in seconds since 1970-01-01 UTC. An entry that is in the book already joins the list's groups all the same.
ImportPlan plan_import(Contents const &contents, tool::Contacts contacts, std::int64_t now, std::string const &title);

// The contacts of a file: vCards, or else a table. progress gets the share that is read, 0 to 1, and may throw.
// Throws a tool::Failure.
tool::Contacts read_contacts(std::string const &path, std::function<void(double)> const &progress);

}  // namespace fax::editor
