// An address book of invented people, in a file of the address-book library's own kind.
#pragma once

#include <cstddef>
#include <string>

namespace fax::bench {

// Makes the file, which must not be there. The same people for the same seed. std::runtime_error when it cannot be made.
void write_book(std::string const &path, std::size_t people, unsigned seed);

// Opens the file, steps through all people and touches the seven columns that the fields of a record come from; closes
// it. The sum of what was touched. std::runtime_error when it cannot be read.
std::size_t step_through(std::string const &path);

}  // namespace fax::bench
