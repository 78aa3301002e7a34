// Where a page of a help book is, for the languages of the user.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fax {

struct HelpBook {
  std::filesystem::path resources;  // of the bundle that registered the book
  std::string folder;               // CFBundleHelpBookFolder
};

// The page's file, absolute and without symbolic links. The book's folder for a language LANG is, in this order,
//   resources/folder/LANG.lproj, resources/LANG.lproj/folder, resources/folder/Contents/Resources/LANG.lproj
// and without a language resources/folder, resources/folder/Contents/Resources. The user's languages are tried in
// their order, by name and by code ("Japanese", "ja", "ja_JP", "ja-JP"), then English, then no language; the first
// folder that holds the page as a file counts. page is relative to that folder; empty means index.htm or index.html.
// nullopt when no such file exists, and for a page or a folder that would lead out of its place.
std::optional<std::filesystem::path> find_help_page(HelpBook const &book, std::string const &page,
                                                    std::vector<std::string> const &languages);

// The names that a language's .lproj folder may have: the given one first, then its language without the region, then
// the other of name and code.
//   "ja_JP" -> "ja_JP", "ja", "Japanese"
std::vector<std::string> language_names(std::string const &language);

}  // namespace fax
