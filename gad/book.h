// The address book that a command works on.
#pragma once

#include "gad/contacts.h"
#include "quoltanis/gad_file.h"

#include <cstdint>
#include <string>
#include <vector>

namespace fax::tool {

// All of a book, as the exports and lists show it.
struct BookEntry {
  std::uint32_t id = 0;
  Contact contact;  // with the names of its groups, in the order of the groups
};
struct BookGroup {
  std::uint32_t id = 0;
  std::string name;
  std::vector<std::size_t> members;  // indices of entries, ascending
};
struct BookContents {
  std::vector<BookEntry> entries;  // by id
  std::vector<BookGroup> groups;   // by id
};

// Throws a Failure that names the book, what happened to it and what to do, unless status is success.
void require(Status status, std::string const &path);

gad::File open_book(std::string const &path, gad::Access access);
BookContents read_book(std::string const &path);

// "042" and "7" are ids, anything else is a name. Failure: there is none, or the name has several entries.
BookEntry const &entry_named(BookContents const &book, std::string const &word);
BookGroup const &group_named(BookContents const &book, std::string const &name);

}  // namespace fax::tool
