// Which print dialog extension belongs to a printer.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace fax::host {

// The first of the PPD's paths that is a folder on this machine, else the one of the command line, else, for a printer
// that can fax, the one that came with the program: DirectFax.bundle beside the application wrapper. Nothing when none
// applies; the one of the command line is answered even when it is not there, so that its absence can be told.
std::optional<std::filesystem::path> choose_extension(std::vector<std::string> const &of_ppd,
                                                      std::optional<std::string> const &of_command_line,
                                                      bool can_fax, std::filesystem::path const &application);

}  // namespace fax::host
