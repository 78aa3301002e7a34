// Whole files, read and written. "-" is standard input or standard output.
#pragma once

#include <string>
#include <string_view>

namespace fax::tool {

// Failure: it cannot be read, or is larger than 1 GiB.
std::string read_whole(std::string const &path);

// The file is there complete, or as it was before (Failure). replace false: Failure when anything is at the path.
void write_whole(std::string const &path, std::string_view content, bool replace);

// What was written to standard output has arrived (Failure).
void finish_output();

}  // namespace fax::tool
