// Contacts into an address book.
#pragma once

#include "gad/contacts.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace fax::tool {

struct ImportResult {
  std::size_t added = 0, present = 0;  // entries; those that were there already
  std::size_t groups = 0;              // groups that were made
};

// All of it is one change: it is in the book, and safe there, when this returns; else (Failure) none of it is. What the
// book cannot hold is skipped, with a remark in contacts. An entry that is in the book already joins its groups all the
// same. dry_run does everything but keep it. progress gets the share that is done, 0 to 1.
ImportResult import_into(std::string const &path, Contacts &contacts, bool dry_run,
                         std::function<void(double)> const &progress);

}  // namespace fax::tool
