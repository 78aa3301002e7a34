// A thin cover of SQLite: statements that finalize themselves, and statuses for its result codes.
#pragma once

#include "quoltanis/status.h"

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string_view>

namespace fax::gad {

// What an extended result code of database means here. success for SQLITE_OK, SQLITE_ROW and SQLITE_DONE.
Status status_of(sqlite3 *database, int code);

// The same for the errno value of a file operation.
Status status_of_errno(int error);

// Runs one or more statements whose rows do not matter.
Status run(sqlite3 *database, char const *sql);

// One prepared statement. Texts are bound without a copy: they must live until the next reset.
class Statement {
public:
  Statement(sqlite3 *database, char const *sql);

  // Binds the arguments in order; anew after each reset.
  template <typename... Arguments>
  Statement &bind(Arguments... arguments) {
    sqlite3_reset(statement_.get());
    int at = 0;
    (bind_at(++at, arguments), ...);
    return *this;
  }

  // SQLITE_ROW, SQLITE_DONE or the failure, that of preparing or binding included.
  int step();
  void reset() { sqlite3_reset(statement_.get()); }

  std::int64_t integer(int column) { return sqlite3_column_int64(statement_.get(), column); }
  // Lives until the next step or reset. std::bad_alloc when there is no room for it.
  std::string_view text(int column);

private:
  void bind_at(int at, std::int64_t value);
  void bind_at(int at, std::string_view text);

  struct Finalize {
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
  };
  std::unique_ptr<sqlite3_stmt, Finalize> statement_;
  int failure_;
};

}  // namespace fax::gad
