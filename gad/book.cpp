#include "gad/book.h"

#include "gad/failure.h"
#include "gad/status_text.h"
#include "gad/text.h"
#include "texts/texts.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <unordered_map>

namespace fax::tool {
namespace {

// What a person can do about it; nullptr when the sentence says it all.
char const *advice(Status status) {
  switch (status) {
    case Status::no_file: return mark("Make one with 'gad create'.");
    case Status::foreign_file: return mark("To take over another program's addresses use 'gad import'.");
    case Status::newer_file: return mark("Use the newer version of this program.");
    case Status::damaged: return mark("Use a copy of it. Nothing was changed.");
    case Status::no_permission: return mark("Ask the owner of the file.");
    case Status::read_only: return mark("The file and its folder must be writable.");
    case Status::busy: return mark("Try again when it is done. Nothing was changed.");
    case Status::full: return mark("Make room and try again. Nothing was changed.");
    case Status::file_exists: return mark("Choose another name, or remove it first.");
    default: return nullptr;
  }
}

std::string absolute(std::string const &path) { return std::filesystem::absolute(path).string(); }

std::string ids_of(std::vector<BookEntry const *> const &entries) {
  std::string ids;
  for (BookEntry const *entry : entries) ids += (ids.empty() ? "" : ", ") + std::to_string(entry->id);
  return ids;
}

}  // namespace

void require(Status status, std::string const &path) {
  if (status == Status::success) return;
  char const *const hint = advice(status);
  throw Failure(path + ": " + sentence_about(status) + (hint != nullptr ? " " + tr(hint) : ""));
}

gad::File open_book(std::string const &path, gad::Access access) {
  gad::File file;
  require(gad::File::open(absolute(path), access, file), path);
  return file;
}

BookContents read_book(std::string const &path) {
  gad::File const file = open_book(path, gad::Access::read);
  BookContents book;
  std::unordered_map<std::uint32_t, std::size_t> places;
  auto const individual = [&](gad::IndividualView const &view) {
    places.emplace(view.id, book.entries.size());
    book.entries.push_back(
        {view.id,
         {std::string(view.name), std::string(view.number), std::string(view.company), std::string(view.note), {}, 0}});
    return true;
  };
  auto const group = [&](gad::GroupView const &view) {
    BookGroup one{view.id, std::string(view.name), {}};
    for (std::uint32_t id : view.members) {
      auto const place = places.find(id);
      if (place == places.end()) continue;
      one.members.push_back(place->second);
      book.entries[place->second].contact.groups.push_back(one.name);
    }
    book.groups.push_back(std::move(one));
    return true;
  };
  require(file.read(individual, group), path);
  return book;
}

BookEntry const &entry_named(BookContents const &book, std::string const &word) {
  bool const number = !word.empty() && word.find_first_not_of("0123456789") == std::string::npos;
  std::uint32_t id = 0;
  if (number) std::from_chars(word.data(), word.data() + word.size(), id);
  std::vector<BookEntry const *> found;
  for (BookEntry const &entry : book.entries)
    if (number ? entry.id == id : entry.contact.name == word) found.push_back(&entry);
  if (found.empty()) throw Failure(tr("There is no entry {0}. 'gad list' shows ids and names.", in_quotes(word)));
  if (found.size() > 1)
    throw Failure(tr("There are several entries {0}. Name one of the ids {1}.", in_quotes(word), ids_of(found)));
  return *found.front();
}

BookGroup const &group_named(BookContents const &book, std::string const &name) {
  auto const found =
      std::find_if(book.groups.begin(), book.groups.end(), [&](BookGroup const &group) { return group.name == name; });
  if (found == book.groups.end())
    throw Failure(tr("There is no group {0}. 'gad group FILE' shows them.", in_quotes(name)));
  return *found;
}

}  // namespace fax::tool
