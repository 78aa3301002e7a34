// An address book of invented people, in a file of the address-book library's own kind.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace fax::bench {

// Makes the file, which must not be there. The same people for the same seed. std::runtime_error when it cannot be made.
void write_book(std::string const &path, std::size_t people, unsigned seed);

// Opens the file, steps through all people and touches the seven columns that the fields of a record come from; closes
// it. The sum of what was touched. std::runtime_error when it cannot be read.
std::size_t step_through(std::string const &path);
// The same through a connection that does without SQLite's mutexes.
std::size_t step_through_alone(std::string const &path);

// Name, number, company, note, as UTF-8; lives as long as the call that it is given to.
using PersonView = std::array<std::string_view, 4>;

// Gives each person of the file to take. std::runtime_error when the file cannot be read.
void for_each_person(std::string const &path, std::function<void(PersonView const &)> const &take);

}  // namespace fax::bench
