// What the xibs and the sources of the bundle show to a person: keys of its string tables, found by reading the files.
#pragma once

#include <set>
#include <string>

namespace test {

std::string contents_of(std::string const &path);

// Paths are those of the source tree ("resources/MainPanel.xib", "addressbook").
std::set<std::string> texts_of_xib(std::string const &xib);
std::set<std::string> texts_of_alerts(std::string const &folder);
// What a view says in the line below its fields.
std::set<std::string> hints_of(std::string const &source);

}  // namespace test
