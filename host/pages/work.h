// What faxpages can do, one function a command. Each answers the program's exit code.
#pragma once

#include <string>
#include <vector>

namespace fax::pages {

// The codes mean the same in host/core/page_tool.cpp.
enum Code : int { kWell = 0, kUsage = 2, kLocked = 3, kBroken = 4, kNoSuchPage = 5, kNotWritten = 6 };

// The path by which a descriptor that we were given is opened anew.
inline std::string path_of(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

// Prints the number of pages of descriptor 3.
int count();

// Prints one page (from 1) of descriptor 3 as "WIDTH HEIGHT\n" and three bytes a pixel (red, green, blue), row by row
// from the top; as large as fits into width x height pixels.
int picture(int page, int width, int height);

// Writes the pages of the descriptors 3, 4, ... one behind the other to the descriptor behind the last of them, and
// prints how many there are. ranges: one list of pages a document, such as "1-3,5", in the order of the pages.
int join(std::vector<std::string> const &ranges);

}  // namespace fax::pages
