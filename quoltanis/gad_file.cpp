#include "quoltanis/gad_file.h"

#include "quoltanis/gad_schema.h"
#include "quoltanis/own_files.h"
#include "quoltanis/sqlite.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <utility>

namespace fax::gad {
namespace {

constexpr int patience_ms = 5000;
constexpr int longest_row = 1 << 24;

// SQLite gives meanings of their own to some names (":memory:", "file:..."), none of which begins with these.
std::string plain_path(std::string const &path) { return path.starts_with('/') ? path : "./" + path; }

bool usable(std::string const &path) { return !path.empty() && path.find('\0') == std::string::npos; }

// Only a regular file is opened at all: a pipe would wait for its other end, a device might do anything.
Status check_kind(std::string const &path) {
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) return status_of_errno(errno);
  return S_ISREG(found.st_mode) ? Status::success : Status::foreign_file;
}

// Read through SQLite's own descriptor: to close another one of the same file would drop the locks of this process.
Status check_file_header(sqlite3 *database) {
  sqlite3_file *file = nullptr;
  sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &file);
  if (file == nullptr || file->pMethods == nullptr) return Status::file_error;
  std::array<unsigned char, header_size> header{};
  int const code = file->pMethods->xRead(file, header.data(), header.size(), 0);
  if (code != SQLITE_OK && code != SQLITE_IOERR_SHORT_READ) return status_of(database, code);
  return check_header(header);
}

// The file may be a stranger's: nothing in its schema runs, and no number in it is believed unchecked.
void distrust(sqlite3 *database) {
  constexpr std::array<std::pair<int, int>, 6> settings{{{SQLITE_DBCONFIG_DEFENSIVE, 1},
                                                         {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
                                                         {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
                                                         {SQLITE_DBCONFIG_ENABLE_VIEW, 0},
                                                         {SQLITE_DBCONFIG_DQS_DML, 0},
                                                         {SQLITE_DBCONFIG_ENABLE_FKEY, 1}}};
  for (auto const &[setting, value] : settings) sqlite3_db_config(database, setting, value, nullptr);
  sqlite3_limit(database, SQLITE_LIMIT_LENGTH, longest_row);
  sqlite3_limit(database, SQLITE_LIMIT_ATTACHED, 0);
  sqlite3_busy_timeout(database, patience_ms);
}

// extra: with less, a power cut just after a commit could bring the journal back and undo it.
Status configure(sqlite3 *database) {
  distrust(database);
  return run(
      database,
      "PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0; PRAGMA temp_store = MEMORY; PRAGMA synchronous = EXTRA");
}

// Who reads looks at each page once: the same few in turn cost less than a fresh one for each.
Status keep_few_pages(sqlite3 *database) { return run(database, "PRAGMA cache_size = -256"); }

// Exactly the tables of an address book, so that every rule they carry holds in the file too.
Status check_schema(sqlite3 *database) {
  Statement objects(database, "SELECT sql FROM sqlite_schema WHERE name NOT LIKE 'sqlite\\_%' ESCAPE '\\'");
  auto const expected = schema_statements();
  std::size_t found = 0;
  int code;
  while ((code = objects.step()) == SQLITE_ROW) {
    std::string const sql = without_space(objects.text(0));
    bool known = false;
    for (auto const statement : expected) known = known || sql == without_space(statement);
    if (!known) return Status::foreign_file;
    ++found;
  }
  if (Status const status = status_of(database, code); status != Status::success) return status;
  return found == expected.size() ? Status::success : Status::foreign_file;
}

Status check_structure(sqlite3 *database) {
  Statement check(database, "PRAGMA integrity_check(1)");
  int const code = check.step();
  if (code != SQLITE_ROW) return status_of(database, code);
  if (check.text(0) == "ok") return Status::success;
  // The look itself can fail: it says so behind its last row.
  Status const status = status_of(database, check.step());
  return status == Status::success ? Status::damaged : status;
}

// Whether ids of a table come in order and its texts are no longer than the file: broken page links can give the same
// rows over and over.
class Plausible {
public:
  explicit Plausible(sqlite3 *database) {
    Statement size(database, "SELECT page_count * page_size FROM pragma_page_count, pragma_page_size");
    int const code = size.step();
    known_ = code == SQLITE_ROW ? Status::success : status_of(database, code);
    if (code == SQLITE_ROW) bytes_left_ = 2 * size.integer(0);  // UTF-16 in the file can be longer as UTF-8
  }
  // Other than success: the size of the file could not be read.
  Status known() const { return known_; }
  bool row(std::int64_t id, std::int64_t greatest, std::size_t bytes) {
    bytes_left_ -= static_cast<std::int64_t>(bytes);
    return id > std::exchange(last_, id) && id <= greatest && bytes_left_ >= 0;
  }

private:
  Status known_;
  std::int64_t last_ = 0;
  std::int64_t bytes_left_ = 0;
};

constexpr std::int64_t greatest_id = std::numeric_limits<std::uint32_t>::max();

// Ends a transaction for reading, whichever way the reading went.
class Moment {
public:
  explicit Moment(sqlite3 *database) : database_(sqlite3_get_autocommit(database) != 0 ? database : nullptr) {
    if (database_ != nullptr) began_ = run(database_, "BEGIN");
  }
  ~Moment() {
    if (database_ != nullptr) run(database_, "ROLLBACK");
  }
  Moment(Moment const &) = delete;
  Moment &operator=(Moment const &) = delete;
  Status began() const { return began_; }

private:
  sqlite3 *database_;  // nullptr inside a Change, which is a moment already
  Status began_ = Status::success;
};

// The index of a table has as many rows as the table: fewer that were seen are lost in a broken page.
Status check_count(sqlite3 *database, char const *count_index, std::int64_t seen) {
  Statement count(database, count_index);
  int const code = count.step();
  if (code != SQLITE_ROW) return status_of(database, code);
  return count.integer(0) == seen ? Status::success : Status::damaged;
}

constexpr std::int64_t not_all = -1;

// seen: how many rows there were, or not_all when the visitor wanted no more.
Status read_individuals(sqlite3 *database, Statement &rows, VisitIndividual const &visit, std::int64_t &seen) {
  Plausible plausible(database);
  if (plausible.known() != Status::success) return plausible.known();
  int code;
  while ((code = rows.step()) == SQLITE_ROW) {
    std::int64_t const id = rows.integer(0);
    IndividualView const view{.id = static_cast<std::uint32_t>(id),
                              .name = rows.text(1),
                              .number = rows.text(2),
                              .company = rows.text(3),
                              .note = rows.text(4),
                              .index_key = rows.text(6),
                              .registered = rows.integer(5)};
    std::size_t const bytes = view.name.size() + view.number.size() + view.company.size() + view.note.size();
    if (!plausible.row(id, greatest_id, bytes)) return Status::damaged;
    ++seen;
    if (visit(view)) continue;
    seen = not_all;
    return Status::success;
  }
  return status_of(database, code);
}

Status read_all_individuals(sqlite3 *database, VisitIndividual const &visit) {
  Statement rows(database,
                 "SELECT id, name, number, company, note, registered, index_key FROM individuals ORDER BY id");
  std::int64_t seen = 0;
  Status const status = read_individuals(database, rows, visit, seen);
  if (status != Status::success || seen == not_all) return status;
  return check_count(database, "SELECT count(*) FROM individuals INDEXED BY sqlite_autoindex_individuals_1", seen);
}

// The members of one group after the other, from one pass over all of them.
class Members {
public:
  explicit Members(sqlite3 *database)
      : rows_(database, "SELECT group_id, individual_id FROM members ORDER BY group_id, individual_id") {
    next();
  }

  // Groups must be asked for in ascending order.
  Status of(sqlite3 *database, std::uint32_t group, std::vector<std::uint32_t> &members) {
    members.clear();
    while (code_ == SQLITE_ROW && group_ < group) next();
    for (; code_ == SQLITE_ROW && group_ == group; next()) {
      bool const ascending = members.empty() || individual_ > members.back();
      if (!ascending || individual_ < 1 || individual_ > greatest_member_id) return Status::damaged;
      members.push_back(static_cast<std::uint32_t>(individual_));
    }
    return status_of(database, code_);
  }

  // After the last group.
  Status check(sqlite3 *database) {
    while (code_ == SQLITE_ROW) next();
    if (code_ != SQLITE_DONE) return status_of(database, code_);
    return check_count(database, "SELECT count(*) FROM members INDEXED BY members_of_individual", seen_);
  }

private:
  void next() {
    code_ = rows_.step();
    if (code_ == SQLITE_ROW) ++seen_;
    group_ = code_ == SQLITE_ROW ? rows_.integer(0) : 0;
    individual_ = code_ == SQLITE_ROW ? rows_.integer(1) : 0;
  }

  Statement rows_;
  int code_ = SQLITE_DONE;
  std::int64_t group_ = 0;
  std::int64_t individual_ = 0;
  std::int64_t seen_ = 0;
};

Status read_groups(sqlite3 *database, VisitGroup const &visit) {
  Statement rows(database, "SELECT id, name FROM groups ORDER BY id");
  Members all(database);
  Plausible plausible(database);
  if (plausible.known() != Status::success) return plausible.known();
  std::vector<std::uint32_t> members;
  std::int64_t seen = 0;
  int code;
  for (; (code = rows.step()) == SQLITE_ROW; ++seen) {
    auto const id = static_cast<std::uint32_t>(rows.integer(0));
    std::string_view const name = rows.text(1);
    if (!plausible.row(rows.integer(0), greatest_id, name.size())) return Status::damaged;
    if (Status const status = all.of(database, id, members); status != Status::success) return status;
    if (!visit({.id = id, .name = name, .members = members})) return Status::success;
  }
  if (code != SQLITE_DONE) return status_of(database, code);
  Status const status = check_count(database, "SELECT count(*) FROM groups INDEXED BY sqlite_autoindex_groups_1", seen);
  return status == Status::success ? all.check(database) : status;
}

// A file beside path that nobody else has, removed at the end unless it was moved to its place.
class Draft {
public:
  explicit Draft(std::string const &path) : path_(path + ".XXXXXX") {
    int const descriptor = mkstemp(path_.data());
    if (descriptor < 0) {
      error_ = errno;
      return;
    }
    close(descriptor);
  }
  ~Draft() {
    if (error_ == 0) unlink(path_.c_str());
  }
  Draft(Draft const &) = delete;
  Draft &operator=(Draft const &) = delete;

  int error() const { return error_; }
  std::string const &path() const { return path_; }

  // A link, as a rename would replace what is there; where the file system has no links, a rename that does not.
  Status move_to(std::string const &place) {
    bool const moved =
        link(path_.c_str(), place.c_str()) == 0 ||
        (errno == EPERM && renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, place.c_str(), RENAME_NOREPLACE) == 0);
    return moved ? Status::success : status_of_errno(errno);
  }

private:
  std::string path_;
  int error_ = 0;
};

// So that the name survives a power cut too.
void sync_folder_of(std::string const &path) {
  std::string const folder = path.substr(0, path.rfind('/') + 1);
  int const descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

template <typename Owner>
Status open_database(std::string const &path, Owner &database) {
  sqlite3 *opened = nullptr;
  // Read and write even for reading: what a killed program left half done can be undone only so. Where the file may not
  // be written SQLite opens it for reading.
  constexpr int mode = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
  int const code = sqlite3_open_v2(path.c_str(), &opened, mode, own_files_vfs());
  database.reset(opened);
  if (opened == nullptr) return Status::memory;
  return status_of(opened, code);
}

Status make_tables(sqlite3 *database) {
  std::string sql = "BEGIN;PRAGMA application_id = " + std::to_string(application_id) +
                    ";PRAGMA user_version = " + std::to_string(newest_version) + ";";
  for (auto const statement : schema_statements()) sql.append(statement).append(";");
  return run(database, sql.append("COMMIT").c_str());
}

Status first_failure(std::initializer_list<std::function<Status()>> steps) {
  for (auto const &step : steps)
    if (Status const status = step(); status != Status::success) return status;
  return Status::success;
}

}  // namespace

void File::Close::operator()(sqlite3 *database) const { sqlite3_close_v2(database); }

Status File::create(std::string const &given) {
  if (!usable(given)) return Status::argument;
  std::string const path = plain_path(given);
  struct stat found {};
  if (lstat(path.c_str(), &found) == 0) return Status::file_exists;
  Draft draft(path);
  if (draft.error() != 0) return draft.error() == EACCES ? Status::read_only : status_of_errno(draft.error());
  std::unique_ptr<sqlite3, Close> database;
  Status const status = first_failure({
      [&] { return open_database(draft.path(), database); },
      [&] { return configure(database.get()); },
      [&] { return make_tables(database.get()); },
  });
  database.reset();
  if (status != Status::success) return status;
  Status const moved = draft.move_to(path);
  if (moved == Status::success) sync_folder_of(path);
  return moved;
}

Status File::open(std::string const &given, Access access, File &file) {
  if (!usable(given)) return Status::argument;
  std::string const path = plain_path(given);
  File opened;
  auto &database = opened.database_;
  Status const status = first_failure({
      [&] { return check_kind(path); },
      [&] { return open_database(path, database); },
      [&] { return check_file_header(database.get()); },
      [&] { return configure(database.get()); },
      [&] { return check_schema(database.get()); },
      [&] {
        if (access == Access::read) return keep_few_pages(database.get());
        return sqlite3_db_readonly(database.get(), "main") != 0 ? Status::read_only : check_structure(database.get());
      },
  });
  if (status == Status::success) file = std::move(opened);
  return status;
}

Status File::read(VisitIndividual const &individual, VisitGroup const &group) const {
  if (database_ == nullptr) return Status::argument;
  Moment const moment(database_.get());
  if (moment.began() != Status::success) return moment.began();
  if (individual)
    if (Status const status = read_all_individuals(database_.get(), individual); status != Status::success)
      return status;
  return group ? read_groups(database_.get(), group) : Status::success;
}

Status File::search(std::string_view part, VisitIndividual const &individual) const {
  if (database_ == nullptr || !individual) return Status::argument;
  std::string const folded = fold(part.substr(0, longest_row / 2));
  Statement rows(database_.get(),
                 "SELECT id, name, number, company, note, registered, index_key FROM individuals"
                 " WHERE instr(coalesce(folded, lower(name)), ?) > 0 ORDER BY id");
  rows.bind(std::string_view(folded));
  std::int64_t found = 0;
  return read_individuals(database_.get(), rows, individual, found);
}

Status File::find(std::string_view name, std::string_view number, std::uint32_t &id) const {
  if (database_ == nullptr) return Status::argument;
  if (name.size() + number.size() > longest_row / 2) return Status::no_entry;
  Statement row(database_.get(), "SELECT id FROM individuals WHERE name = ? AND number = ?");
  int const code = row.bind(name, number).step();
  if (code == SQLITE_ROW) id = static_cast<std::uint32_t>(row.integer(0));
  return code == SQLITE_DONE ? Status::no_entry : status_of(database_.get(), code);
}

Status File::find_group(std::string_view name, std::uint32_t &id) const {
  if (database_ == nullptr) return Status::argument;
  if (name.size() > longest_row / 2) return Status::no_entry;
  Statement row(database_.get(), "SELECT id FROM groups WHERE name = ?");
  int const code = row.bind(name).step();
  if (code == SQLITE_ROW) id = static_cast<std::uint32_t>(row.integer(0));
  return code == SQLITE_DONE ? Status::no_entry : status_of(database_.get(), code);
}

Status File::count(std::size_t &individuals, std::size_t &groups) const {
  if (database_ == nullptr) return Status::argument;
  Statement row(database_.get(), "SELECT (SELECT count(*) FROM individuals), (SELECT count(*) FROM groups)");
  int const code = row.step();
  if (code != SQLITE_ROW) return status_of(database_.get(), code);
  individuals = static_cast<std::size_t>(row.integer(0));
  groups = static_cast<std::size_t>(row.integer(1));
  return Status::success;
}

Status File::version(std::int64_t &version) const {
  if (database_ == nullptr) return Status::argument;
  Statement row(database_.get(), "PRAGMA data_version");
  int const code = row.step();
  if (code != SQLITE_ROW) return status_of(database_.get(), code);
  version = row.integer(0);
  return Status::success;
}

Status add(std::string const &path, std::span<Individual const> individuals) {
  File file;
  Change change;
  Status const opened =
      first_failure({[&] { return File::open(path, Access::change, file); }, [&] { return file.begin(change); }});
  if (opened != Status::success) return opened;
  for (auto const &individual : individuals)
    if (Status const status = change.add(individual); status != Status::success) return status;
  return change.commit();
}

}  // namespace fax::gad
