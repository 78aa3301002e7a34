#include "editor/core/book_list.h"

#include "gad/text.h"
#include "quoltanis/gad_file.h"
#include "texts/texts.h"

#include <algorithm>
#include <filesystem>

namespace fs = std::filesystem;

namespace fax::editor {
namespace {

constexpr std::string_view suffix = ".gad";
constexpr std::size_t longest_name = 240;  // bytes; file systems have 255, and a journal's name is longer

std::string title_of(std::string const &path) {
  std::string const name = fs::path(path).filename().string();
  return name.ends_with(suffix) ? name.substr(0, name.size() - suffix.size()) : name;
}

}  // namespace

std::vector<BookPlace> known_books(std::string const &folder, std::vector<std::string> const &elsewhere) {
  std::vector<BookPlace> books;
  if (!folder.empty())
    for (std::string const &name : gad::files(folder)) books.push_back({"", (fs::path(folder) / name).string()});
  for (std::string const &path : elsewhere) {
    bool const is_there =
        std::any_of(books.begin(), books.end(), [&](BookPlace const &book) { return book.path == path; });
    if (!is_there) books.push_back({"", path});
  }
  for (BookPlace &book : books) book.title = title_of(book.path);
  std::vector<BookPlace> const all = books;
  for (BookPlace &book : books) {
    auto const alike =
        std::count_if(all.begin(), all.end(), [&](BookPlace const &other) { return other.title == book.title; });
    if (alike > 1) book.title += " (" + fs::path(book.path).parent_path().string() + ")";
  }
  return books;
}

std::string fault_of_book_name(std::string const &name) {
  if (tool::trimmed(name).empty()) return tr("The name is empty.");
  if (name.find('/') != std::string::npos) return tr("The name holds a \"/\".");
  if (name.front() == '.') return tr("The name begins with a full stop, which would hide it.");
  if (name.size() > longest_name) return tr("The name is too long.");
  return "";
}

Status create_book(std::string const &folder, std::string const &name, std::string &path) {
  if (folder.empty()) return Status::no_file;
  std::error_code error;
  if (!fs::exists(folder, error)) {
    fs::create_directories(folder, error);
    if (error) return Status::read_only;
    fs::permissions(folder, fs::perms::owner_all, error);  // addresses are nobody else's business
  }
  path = (fs::path(folder) / (name.ends_with(suffix) ? name : name + std::string(suffix))).string();
  return gad::File::create(path);
}

}  // namespace fax::editor
