// The address books that there are to choose from.
#pragma once

#include "quoltanis/status.h"

#include <string>
#include <vector>

namespace fax::editor {

struct BookPlace {
  std::string title;  // the file's name without ".gad"; with its folder where two have the same
  std::string path;   // absolute
};

// The books of the folder, and those of elsewhere (absolute paths) behind them.
std::vector<BookPlace> known_books(std::string const &folder, std::vector<std::string> const &elsewhere);

// Why no book can have this name; empty when it can.
std::string fault_of_book_name(std::string const &name);

// Makes an empty book of that name, and the folder when it is missing; path is where it is. folder empty: no_file.
Status create_book(std::string const &folder, std::string const &name, std::string &path);

}  // namespace fax::editor
