// Application wrappers: folders named NAME.app that hold a program and the file that describes it.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fax {

// The wrappers below the folders, as absolute paths: folder by folder in their order, in each one by name, those of its
// subfolders (to a depth of levels, 0 for none) after its own. A wrapper is not searched itself. Folders that are not
// there or cannot be read are left out, and no folder is searched twice, whatever links lead to it.
std::vector<std::string> application_wrappers(std::vector<std::string> const &folders, int levels);

// The innermost wrapper that a path lies in: "/a/B.app/C" -> "/a/B.app"; "" for none, also for the wrapper itself.
std::string wrapper_of(std::string_view path);

// "/a/B.app" -> "B"
std::string wrapper_name(std::string_view wrapper);

// What tells one state of a file from another.
struct FileStamp {
  std::uint64_t device = 0, file = 0, size = 0;
  std::int64_t seconds = 0, nanoseconds = 0;
  auto operator<=>(FileStamp const &) const = default;
};

struct InformationFile {
  std::string path;
  FileStamp stamp;
};

// The file with a wrapper's information dictionary: Info-gnustep.plist before Info.plist, in Resources before Contents.
// nullopt when it has none that is a plain file.
std::optional<InformationFile> information_file(std::string const &wrapper);

// A plain file's bytes; nullopt when it cannot be read, or is longer than most bytes. Never waits for a writer.
std::optional<std::string> file_bytes(std::string const &path, std::size_t most);

}  // namespace fax
