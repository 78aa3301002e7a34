#include "platform/application_folders.h"

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace fs = std::filesystem;

namespace fax {

namespace {

constexpr std::string_view kSuffix = ".app";
// A folder that somebody linked to a whole disk by mistake must not hold up a click.
constexpr std::size_t kMostFolders = 500;

bool is_wrapper_name(std::string_view name) { return name.size() > kSuffix.size() && name.ends_with(kSuffix); }

class Search {
public:
  void folder(fs::path const &path, int levels) {
    struct stat status;
    bool const enter = visited_.size() < kMostFolders && stat(path.c_str(), &status) == 0 &&
                       visited_.emplace(status.st_dev, status.st_ino).second;
    if (!enter) return;
    std::vector<fs::path> subfolders;
    for (fs::directory_entry const &entry : sorted_entries(path)) {
      std::string const name = entry.path().filename().native();
      std::error_code error;
      if (name.starts_with('.') || !entry.is_directory(error)) continue;
      if (is_wrapper_name(name))
        found_.push_back(entry.path().native());
      else
        subfolders.push_back(entry.path());
    }
    if (levels == 0) return;
    for (fs::path const &each : subfolders) folder(each, levels - 1);
  }

  std::vector<std::string> take() { return std::move(found_); }

private:
  static std::vector<fs::directory_entry> sorted_entries(fs::path const &path) {
    std::vector<fs::directory_entry> entries;
    std::error_code error;
    for (fs::directory_iterator at(path, error); !error && at != fs::directory_iterator(); at.increment(error))
      entries.push_back(*at);
    std::sort(entries.begin(), entries.end());
    return entries;
  }

  std::set<std::pair<dev_t, ino_t>> visited_;
  std::vector<std::string> found_;
};

}  // namespace

std::vector<std::string> application_wrappers(std::vector<std::string> const &folders, int levels) {
  Search search;
  for (std::string const &each : folders)
    if (each.starts_with('/')) search.folder(each, levels);
  return search.take();
}

std::string wrapper_of(std::string_view path) {
  for (std::size_t end = path.rfind('/'); end != 0 && end != std::string_view::npos; end = path.rfind('/', end - 1)) {
    std::string_view const folder = path.substr(0, end);
    if (is_wrapper_name(folder.substr(folder.rfind('/') + 1))) return std::string(folder);
  }
  return "";
}

std::string wrapper_name(std::string_view wrapper) {
  std::string_view const name = wrapper.substr(wrapper.rfind('/') + 1);
  return std::string(is_wrapper_name(name) ? name.substr(0, name.size() - kSuffix.size()) : name);
}

std::optional<InformationFile> information_file(std::string const &wrapper) {
  for (char const *name : {"/Resources/Info-gnustep.plist", "/Resources/Info.plist",
                           "/Contents/Resources/Info-gnustep.plist", "/Contents/Info.plist"}) {
    std::string path = wrapper + name;
    struct stat status;
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
    FileStamp const stamp{status.st_dev, status.st_ino, std::uint64_t(status.st_size), status.st_mtim.tv_sec,
                          status.st_mtim.tv_nsec};
    return InformationFile{std::move(path), stamp};
  }
  return std::nullopt;
}

std::optional<std::string> file_bytes(std::string const &path, std::size_t most) {
  int const file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) return std::nullopt;
  std::string bytes(most + 1, '\0');
  std::size_t length = 0;
  struct stat status;
  ssize_t got = fstat(file, &status) == 0 && S_ISREG(status.st_mode) ? 1 : -1;
  while (got > 0 && length < bytes.size()) {
    got = read(file, bytes.data() + length, bytes.size() - length);
    if (got > 0) length += std::size_t(got);
  }
  close(file);
  if (got < 0 || length > most) return std::nullopt;
  bytes.resize(length);
  return bytes;
}

}  // namespace fax
