#include "quoltanis/gad_file.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <system_error>

namespace fax::gad {
namespace {

std::string absolute_path_in(char const *variable) {
  char const *value = std::getenv(variable);
  return value != nullptr && value[0] == '/' ? value : "";
}

bool is_book(std::filesystem::directory_entry const &entry) {
  std::error_code error;
  std::string const name = entry.path().filename().string();
  return name.ends_with(".gad") && !name.starts_with('.') && entry.is_regular_file(error) && !error;
}

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

std::vector<std::string> files(std::string const &folder) {
  std::vector<std::string> names;
  std::error_code error;
  std::filesystem::directory_iterator entries(folder, error);
  for (; !error && entries != std::filesystem::directory_iterator(); entries.increment(error))
    if (is_book(*entries)) names.push_back(entries->path().filename().string());
  std::ranges::sort(names);
  return names;
}

}  // namespace fax::gad
