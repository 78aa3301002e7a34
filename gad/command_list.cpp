#include "gad/book.h"
#include "gad/commands.h"
#include "gad/files.h"
#include "gad/listing.h"
#include "texts/texts.h"

#include <algorithm>

namespace fax::tool {
namespace {

bool is_wanted(BookEntry const &entry, ListChoices const &choices, std::string const &search) {
  auto const &groups = entry.contact.groups;
  if (!choices.group.empty() && std::find(groups.begin(), groups.end(), choices.group) == groups.end()) return false;
  return search.empty() || gad::fold(entry.contact.name).find(search) != std::string::npos;
}

}  // namespace

int list_entries(ListChoices const &choices) {
  BookContents const book = read_book(choices.book);
  if (!choices.group.empty()) group_named(book, choices.group);
  std::string const search = gad::fold(choices.search);
  Listing listing({{"id", mark("Id")},
                   {"name", mark("Name")},
                   {"number", mark("Fax number")},
                   {"company", mark("Company")},
                   {"note", mark("Note")},
                   {"groups", mark("Groups")}},
                  choices.format);
  for (BookEntry const &entry : book.entries)
    if (is_wanted(entry, choices, search))
      listing.add({entry.id, entry.contact.name, entry.contact.number, entry.contact.company, entry.contact.note,
                   entry.contact.groups});
  listing.print();
  return 0;
}

}  // namespace fax::tool
