#include "quoltanis/gad_file.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <utility>

namespace fax::gad {
namespace {

std::string absolute_path_in(char const *variable) {
  char const *value = std::getenv(variable);
  return value != nullptr && value[0] == '/' ? value : "";
}

bool is_book(std::string const &folder, std::string const &name) {
  struct stat about {};
  return name.ends_with(".gad") && !name.starts_with('.') && stat((folder + "/" + name).c_str(), &about) == 0 &&
         S_ISREG(about.st_mode);
}

struct CloseFolder {
  void operator()(DIR *folder) const { closedir(folder); }
};

}  // namespace

std::string folder() {
  if (std::string own = absolute_path_in("DIRECTFAX_ADDRESSBOOKS"); !own.empty()) return own;
  std::string data = absolute_path_in("XDG_DATA_HOME");
  if (data.empty()) {
    data = absolute_path_in("HOME");
    if (data.empty()) return {};
    data += "/.local/share";
  }
  return data + "/directfax/addressbooks";
}

// By the system's own calls: the C++ library's walk over a folder ends the program when memory runs out in its midst.
std::vector<std::string> files(std::string const &folder) {
  std::vector<std::string> names;
  std::unique_ptr<DIR, CloseFolder> const entries(opendir(folder.c_str()));
  if (!entries) return names;
  while (dirent const *const entry = readdir(entries.get()))
    if (std::string name = entry->d_name; is_book(folder, name)) names.push_back(std::move(name));
  std::ranges::sort(names);
  return names;
}

}  // namespace fax::gad
