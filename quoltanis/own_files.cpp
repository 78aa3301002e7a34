#include "quoltanis/own_files.h"

#include <sqlite3.h>

#include <array>
#include <string_view>

namespace fax::gad {
namespace {

constexpr char kName[] = "directfax-own-files";

sqlite3_vfs *system_vfs() {
  static sqlite3_vfs *const found = sqlite3_vfs_find(nullptr);
  return found;
}

// The name of a shared file stands at the end of a journal, with this behind it.
constexpr std::array<unsigned char, 8> kMark{0xd9, 0xd5, 0x05, 0xf9, 0x20, 0xa1, 0x63, 0xd7};

// SQLITE_OK unless the open journal names a file.
int check_journal(sqlite3_file *file) {
  sqlite3_int64 size = 0;
  std::array<unsigned char, kMark.size()> end{};
  int code = file->pMethods->xFileSize(file, &size);
  if (code != SQLITE_OK || size < static_cast<sqlite3_int64>(end.size())) return code;
  code = file->pMethods->xRead(file, end.data(), static_cast<int>(end.size()), size - static_cast<int>(end.size()));
  return code == SQLITE_OK && end == kMark ? SQLITE_CORRUPT : code;
}

int open_own(sqlite3_vfs *, char const *name, sqlite3_file *file, int flags, int *out_flags) {
  int const code = system_vfs()->xOpen(system_vfs(), name, file, flags, out_flags);
  if (code != SQLITE_OK || (flags & SQLITE_OPEN_MAIN_JOURNAL) == 0) return code;
  int const sound = check_journal(file);
  if (sound == SQLITE_OK) return SQLITE_OK;
  file->pMethods->xClose(file);
  file->pMethods = nullptr;
  return sound;
}

int delete_own(sqlite3_vfs *, char const *name, int sync_folder) {
  std::string_view const path(name);
  if (!path.ends_with("-journal") && !path.ends_with("-wal")) return SQLITE_IOERR_DELETE;
  return system_vfs()->xDelete(system_vfs(), name, sync_folder);
}

// Gone from SQLite's list before this code is.
class Registered {
public:
  Registered() {
    if (system_vfs() == nullptr) return;
    vfs_ = *system_vfs();
    vfs_.zName = kName;
    vfs_.pNext = nullptr;
    vfs_.xOpen = open_own;
    vfs_.xDelete = delete_own;
    sqlite3_vfs_register(&vfs_, 0);
  }
  ~Registered() { sqlite3_vfs_unregister(&vfs_); }
  Registered(Registered const &) = delete;
  Registered &operator=(Registered const &) = delete;

private:
  sqlite3_vfs vfs_{};
};

}  // namespace

char const *own_files_vfs() {
  static Registered const registered;
  return kName;
}

}  // namespace fax::gad
