// An address book of invented people, in an SQLite file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fax::bench {

struct Person {
  std::uint32_t id;  // 1, 2, ...
  std::string name, number, company, note;  // UTF-8
};

// The same people for the same seed; no two have one name and one number.
std::vector<Person> invented_people(std::size_t count, unsigned seed);

// Creates the file. std::runtime_error where it cannot be made.
void write_book(std::string const &path, std::vector<Person> const &people);

// Opens the file, steps through all people and touches their five columns; closes it. The sum of what was touched.
// std::runtime_error where it cannot be read.
std::size_t step_through(std::string const &path);

}  // namespace fax::bench
