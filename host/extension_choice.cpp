#include "host/extension_choice.h"

#include <system_error>

namespace fax::host {

std::optional<std::filesystem::path> choose_extension(std::vector<std::string> const &of_ppd,
                                                      std::optional<std::string> const &of_command_line,
                                                      bool can_fax, std::filesystem::path const &application) {
  std::error_code ignored;
  for (auto const &path : of_ppd) {
    if (std::filesystem::is_directory(path, ignored)) return path;
  }
  if (of_command_line) return std::filesystem::absolute(*of_command_line, ignored);
  auto const own = application.parent_path() / "DirectFax.bundle";
  if (can_fax && std::filesystem::is_directory(own, ignored)) return own;
  return std::nullopt;
}

}  // namespace fax::host
