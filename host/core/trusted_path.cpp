#include "host/core/trusted_path.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <grp.h>
#include <pwd.h>
#include <set>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace fax::host {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kMostThings = 10000;

// The group that carries the user's name and has no other member; nullopt where there is none.
std::optional<gid_t> private_group() {
  std::array<char, 16384> room;
  passwd user_entry, *user = nullptr;
  if (getpwuid_r(geteuid(), &user_entry, room.data(), room.size(), &user) != 0 || user == nullptr) return std::nullopt;
  std::array<char, 16384> group_room;
  group group_entry, *own = nullptr;
  if (getgrgid_r(user->pw_gid, &group_entry, group_room.data(), group_room.size(), &own) != 0 || own == nullptr)
    return std::nullopt;
  if (std::strcmp(own->gr_name, user->pw_name) != 0) return std::nullopt;
  for (char **member = own->gr_mem; *member != nullptr; ++member)
    if (std::strcmp(*member, user->pw_name) != 0) return std::nullopt;
  return own->gr_gid;
}

// An access list gives the group's rights to others, whoever the group is.
bool has_access_list(fs::path const &path) {
  return getxattr(path.c_str(), "system.posix_acl_access", nullptr, 0) > 0;
}

class Inspection {
public:
  Inspection() {
    struct stat program;
    if (stat("/proc/self/exe", &program) == 0) owners_.insert(program.st_uid);
    if (auto const group = private_group()) groups_.insert(*group);
  }

  // The first weak place of a folder, of what it holds and of the folders above.
  std::optional<fs::path> weak_place(fs::path const &folder) {
    waiting_.push_back(folder);
    while (!waiting_.empty()) {
      fs::path const next = waiting_.back();
      waiting_.pop_back();
      if (auto weak = inspect(next)) return weak;
    }
    return std::nullopt;
  }

private:
  // One thing, by its path without links.
  std::optional<fs::path> inspect(fs::path const &path) {
    if (!seen_.insert(path).second) return std::nullopt;
    if (seen_.size() > kMostThings) return path;
    if (auto weak = weak_above(path)) return weak;
    struct stat status;
    if (lstat(path.c_str(), &status) != 0 || !is_ours(path, status)) return path;
    if (!S_ISDIR(status.st_mode)) return std::nullopt;
    std::error_code failed;
    for (fs::directory_iterator entry(path, failed), end; !failed && entry != end; entry.increment(failed)) {
      if (!entry->is_symlink(failed)) {
        waiting_.push_back(entry->path());
        continue;
      }
      // A link into nothing is nothing.
      fs::path target = fs::canonical(entry->path(), failed);
      if (!failed) waiting_.push_back(std::move(target));
      failed.clear();
    }
    return failed ? std::optional(path) : std::nullopt;
  }

  std::optional<fs::path> weak_above(fs::path const &path) {
    for (fs::path above = path.parent_path(); above_.insert(above).second; above = above.parent_path()) {
      struct stat status;
      if (lstat(above.c_str(), &status) != 0) return above;
      bool const sticky = (status.st_mode & S_ISVTX) != 0 && is_owner(status.st_uid);
      if (!sticky && !is_ours(above, status)) return above;
    }
    return std::nullopt;
  }

  bool is_owner(uid_t user) const { return owners_.contains(user); }

  bool is_ours(fs::path const &path, struct stat const &status) const {
    bool const by_group = (status.st_mode & S_IWGRP) != 0;
    bool const by_all = (status.st_mode & S_IWOTH) != 0;
    bool const by_others = by_group && (!groups_.contains(status.st_gid) || has_access_list(path));
    return is_owner(status.st_uid) && !by_all && !by_others;
  }

  std::set<uid_t> owners_{0, geteuid()};
  std::set<gid_t> groups_{0};
  std::set<fs::path> seen_, above_;
  std::vector<fs::path> waiting_;
};

}  // namespace

TrustedPath trusted_path(fs::path const &folder) {
  std::error_code failed;
  fs::path const resolved = fs::canonical(folder, failed);
  if (failed) return {folder, folder};
  return {resolved, Inspection().weak_place(resolved)};
}

}  // namespace fax::host
