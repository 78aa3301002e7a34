#include "gad/book.h"

#include "gad/failure.h"
#include "gad/text.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <unordered_map>

namespace fax::tool {
namespace {

// What a person can do about it; empty when the sentence says it all.
char const *advice(Status status) {
  switch (status) {
    case Status::no_file: return "make one with 'gad create'";
    case Status::foreign_file: return "to take over another program's addresses use 'gad import'";
    case Status::newer_file: return "use the newer version of this program";
    case Status::damaged: return "use a copy; nothing was changed";
    case Status::no_permission: return "ask the owner of the file";
    case Status::read_only: return "the file and its folder must be writable";
    case Status::busy: return "try again when it is done; nothing was changed";
    case Status::full: return "make room and try again; nothing was changed";
    case Status::file_exists: return "choose another name or remove it first";
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
  std::string sentence(describe(status));
  sentence.front() = char(std::tolower(static_cast<unsigned char>(sentence.front())));
  char const *hint = advice(status);
  throw Failure(path + ": " + sentence + (hint != nullptr ? std::string("; ") + hint : std::string()));
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
  if (found.empty()) throw Failure("there is no entry " + in_quotes(word) + "; 'gad list' shows ids and names");
  if (found.size() > 1)
    throw Failure("there are several entries " + in_quotes(word) + "; name one of the ids " + ids_of(found));
  return *found.front();
}

BookGroup const &group_named(BookContents const &book, std::string const &name) {
  auto const found =
      std::find_if(book.groups.begin(), book.groups.end(), [&](BookGroup const &group) { return group.name == name; });
  if (found == book.groups.end())
    throw Failure("there is no group " + in_quotes(name) + "; 'gad group FILE' shows them");
  return *found;
}

}  // namespace fax::tool
