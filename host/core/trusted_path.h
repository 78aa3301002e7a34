// Whether code at a path can be loaded: nobody else may have put it there.
#pragma once

#include <filesystem>
#include <optional>

namespace fax::host {

struct TrustedPath {
  std::filesystem::path resolved;  // without symbolic links; what is to be loaded
  // What somebody else may change: the thing itself, something in it, or a folder above. nullopt: nothing.
  std::optional<std::filesystem::path> weak;
};

// Looks at a folder, all that it holds, what links in it lead to, and every folder above. Each must
// - belong to root, to the user, or to the owner of the running program, who could as well change that;
// - be writable by no group but root's and the user's own (of the user's name, nobody else in it, no access list), and
//   not by everybody. Only a folder above may be, with the sticky bit, as /tmp is: what is in it is its owner's.
// What cannot be looked at counts as weak, and so does a folder that holds more than 10,000 things.
TrustedPath trusted_path(std::filesystem::path const &folder);

}  // namespace fax::host
