#include "quoltanis/sqlite.h"

#include <cerrno>
#include <new>

namespace fax::gad {

Status status_of_errno(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ELOOP: return Status::no_file;
    case EACCES:
    case EPERM: return Status::no_permission;
    case EROFS: return Status::read_only;
    case ENOSPC:
    case EDQUOT:
    case EFBIG: return Status::full;
    case EEXIST: return Status::file_exists;
    case EISDIR: return Status::foreign_file;
    case ENAMETOOLONG: return Status::argument;
    case ENOMEM: return Status::memory;
    default: return Status::file_error;
  }
}

Status status_of(sqlite3 *database, int code) {
  switch (code & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE: return Status::success;
    case SQLITE_BUSY:
    case SQLITE_LOCKED: return Status::busy;
    case SQLITE_READONLY: return Status::read_only;
    case SQLITE_FULL: return Status::full;
    case SQLITE_NOMEM: return Status::memory;
    case SQLITE_PERM:
    case SQLITE_AUTH: return Status::no_permission;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_TOOBIG: return Status::damaged;
    case SQLITE_CANTOPEN: return status_of_errno(sqlite3_system_errno(database));
    case SQLITE_IOERR: break;
    default: return Status::unexpected;
  }
  if (code == SQLITE_IOERR_NOMEM) return Status::memory;
  if (code == SQLITE_IOERR_SHORT_READ || code == SQLITE_IOERR_CORRUPTFS) return Status::damaged;
  Status const status = status_of_errno(sqlite3_system_errno(database));
  return status == Status::full ? status : Status::file_error;
}

Status run(sqlite3 *database, char const *sql) {
  return status_of(database, sqlite3_exec(database, sql, nullptr, nullptr, nullptr));
}

Statement::Statement(sqlite3 *database, char const *sql) {
  sqlite3_stmt *statement = nullptr;
  failure_ = sqlite3_prepare_v3(database, sql, -1, SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
  statement_.reset(statement);
}

int Statement::step() { return failure_ != SQLITE_OK ? failure_ : sqlite3_step(statement_.get()); }

std::string_view Statement::text(int column) {
  sqlite3_stmt *const row = statement_.get();
  auto const *bytes = reinterpret_cast<char const *>(sqlite3_column_text(row, column));
  if (bytes != nullptr) return {bytes, static_cast<std::size_t>(sqlite3_column_bytes(row, column))};
  // An absent text looks the same as one that there is no room for.
  if ((sqlite3_errcode(sqlite3_db_handle(row)) & 0xFF) == SQLITE_NOMEM) throw std::bad_alloc();
  return {};
}

void Statement::bind_at(int at, std::int64_t value) {
  if (failure_ == SQLITE_OK) failure_ = sqlite3_bind_int64(statement_.get(), at, value);
}

void Statement::bind_at(int at, std::string_view text) {
  char const *bytes = text.data() == nullptr ? "" : text.data();  // a null pointer would bind NULL
  if (failure_ == SQLITE_OK)
    failure_ = sqlite3_bind_text64(statement_.get(), at, bytes, text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

}  // namespace fax::gad
