#include "quoltanis/gad_file.h"
#include "quoltanis/sqlite.h"
#include "quoltanis/unicode.h"

#include <limits>
#include <optional>

namespace fax::gad {
namespace {

// Gives out ids: upwards, and when the ones that a group can hold are used up, first those of them that are free.
class Ids {
public:
  explicit Ids(sqlite3 *database) : database_(database) {}

  Status next(std::int64_t &id) {
    if (Status const status = learn(); status != Status::success) return status;
    if (last_ >= greatest_member_id) {
      if (Status const status = find_free(); status != Status::success) return status;
      if (free_ <= greatest_member_id) {
        id = free_;
        return Status::success;
      }
    }
    if (last_ >= std::numeric_limits<std::uint32_t>::max()) return Status::full;
    id = last_ + 1;
    return Status::success;
  }

  void taken(std::int64_t id) {
    if (last_ >= 0 && id > last_) last_ = id;  // before that nothing is known yet
    if (!used_.empty() && id <= greatest_member_id) used_[static_cast<std::size_t>(id)] = true;
  }

  void freed() { used_.clear(); }

private:
  Status learn() {
    if (last_ >= 0) return Status::success;
    Statement row(database_,
                  "SELECT max(coalesce((SELECT max(seq) FROM sqlite_sequence WHERE name = 'individuals'), 0),"
                  " coalesce((SELECT max(id) FROM individuals), 0))");
    int const code = row.step();
    if (code != SQLITE_ROW) return status_of(database_, code);
    last_ = row.integer(0);
    return Status::success;
  }

  // Steps on to the first id that is free, looking at the table only once.
  Status find_free() {
    if (used_.empty()) {
      std::vector<bool> used(greatest_member_id + 1);
      Statement rows(database_, "SELECT id FROM individuals WHERE id BETWEEN 1 AND 65535");
      int code;
      while ((code = rows.step()) == SQLITE_ROW) used[static_cast<std::size_t>(rows.integer(0)) & 0xFFFF] = true;
      if (code != SQLITE_DONE) return status_of(database_, code);
      used_ = std::move(used);
      free_ = 1;
    }
    while (free_ <= greatest_member_id && used_[static_cast<std::size_t>(free_)]) ++free_;
    return Status::success;
  }

  sqlite3 *database_;
  std::int64_t last_ = -1;
  std::int64_t free_ = 1;
  std::vector<bool> used_;
};

bool fits(std::string_view text, std::size_t limit) {
  auto const units = units_in(text);
  return units && *units <= limit && text.find('\0') == std::string_view::npos;
}

Status check(Individual const &individual) {
  if (individual.name.empty()) return Status::empty_name;
  if (individual.number.empty()) return Status::empty_number;
  bool const fit = fits(individual.name, Limits::name) && fits(individual.number, Limits::number) &&
                   fits(individual.company, Limits::company) && fits(individual.note, Limits::note) &&
                   fits(individual.index_key, Limits::index_key);
  return fit ? Status::success : Status::text_unfit;
}

Status check_group_name(std::string_view name) {
  if (name.empty()) return Status::empty_name;
  return fits(name, Limits::name) ? Status::success : Status::text_unfit;
}

std::string key_of(Individual const &individual) {
  return individual.index_key.empty() ? index_key(individual.name) : individual.index_key;
}

}  // namespace

struct Change::State {
  explicit State(sqlite3 *opened) : database(opened), ids(opened) {}
  ~State() {
    if (database != nullptr) run(database, "ROLLBACK");
  }
  State(State const &) = delete;
  State &operator=(State const &) = delete;

  // Of a statement that ran to its end: what a rule of the tables refused undid itself, anything else ends the change.
  Status outcome(int code) {
    if (code == SQLITE_CONSTRAINT_UNIQUE || code == SQLITE_CONSTRAINT_PRIMARYKEY) return Status::present;
    if (code == SQLITE_CONSTRAINT_CHECK) return Status::text_unfit;
    if (code == SQLITE_CONSTRAINT_FOREIGNKEY) return Status::no_entry;
    return keep(status_of(database, code));
  }

  Status keep(Status status) {
    if (status != Status::success) failure = status;
    return status;
  }

  sqlite3 *database;  // nullptr once committed
  Ids ids;
  std::optional<Statement> insert, insert_member;
  Status failure = Status::success;
};

Change::Change() = default;
Change::~Change() = default;

Status File::begin(Change &change) {
  if (database_ == nullptr || sqlite3_get_autocommit(database_.get()) == 0) return Status::argument;
  change.state_.reset();
  auto state = std::make_unique<Change::State>(nullptr);
  if (Status const status = run(database_.get(), "BEGIN IMMEDIATE"); status != Status::success) return status;
  state->database = database_.get();
  state->ids = Ids(database_.get());
  change.state_ = std::move(state);
  return Status::success;
}

namespace {

// work's status, unless the change has failed before or was never begun.
template <typename State, typename Work>
Status attempt(State const &state, Work work) {
  if (state == nullptr || state->database == nullptr) return Status::argument;
  return state->failure != Status::success ? state->failure : work(*state);
}

// Runs a statement that must find a row.
template <typename State, typename... Arguments>
Status affect(State &state, char const *sql, Arguments... arguments) {
  Status const status = state.outcome(Statement(state.database, sql).bind(arguments...).step());
  if (status != Status::success) return status;
  return sqlite3_changes(state.database) == 0 ? Status::no_entry : Status::success;
}

}  // namespace

namespace {

template <typename State>
Status insert(State &state, Individual const &individual, std::int64_t id) {
  if (!state.insert)
    state.insert.emplace(state.database,
                         "INSERT INTO individuals"
                         " (id, name, number, company, note, registered, index_key, folded)"
                         " VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
  std::string const key = key_of(individual), folded = fold(individual.name);
  int const code = state.insert
                       ->bind(id, std::string_view(individual.name), std::string_view(individual.number),
                              std::string_view(individual.company), std::string_view(individual.note),
                              individual.registered, std::string_view(key), std::string_view(folded))
                       .step();
  state.insert->reset();
  Status const status = state.outcome(code);
  if (status == Status::success) state.ids.taken(id);
  return status;
}

}  // namespace

Status Change::add(Individual const &individual, std::uint32_t *id) {
  return attempt(state_, [&](State &state) {
    if (Status const status = check(individual); status != Status::success) return status;
    std::int64_t next = 0;
    if (Status const status = state.ids.next(next); status != Status::success) return state.keep(status);
    Status const status = insert(state, individual, next);
    if (status == Status::success && id != nullptr) *id = static_cast<std::uint32_t>(next);
    return status;
  });
}

Status Change::restore(Individual const &individual) {
  return attempt(state_, [&](State &state) {
    if (Status const status = check(individual); status != Status::success) return status;
    return insert(state, individual, std::int64_t{individual.id});
  });
}

Status Change::replace(Individual const &individual) {
  return attempt(state_, [&](State &state) {
    if (Status const status = check(individual); status != Status::success) return status;
    std::string const key = key_of(individual), folded = fold(individual.name);
    return affect(state,
                  "UPDATE individuals SET name = ?, number = ?, company = ?, note = ?, registered = ?, index_key = ?,"
                  " folded = ? WHERE id = ?",
                  std::string_view(individual.name), std::string_view(individual.number),
                  std::string_view(individual.company), std::string_view(individual.note), individual.registered,
                  std::string_view(key), std::string_view(folded), std::int64_t{individual.id});
  });
}

Status Change::remove(std::uint32_t individual) {
  return attempt(state_, [&](State &state) {
    Status const status = affect(state, "DELETE FROM individuals WHERE id = ?", std::int64_t{individual});
    if (status == Status::success) state.ids.freed();
    return status;
  });
}

Status Change::add_group(std::string_view name, std::uint32_t *id) {
  return attempt(state_, [&](State &state) {
    if (Status const status = check_group_name(name); status != Status::success) return status;
    Status const status = affect(state, "INSERT INTO groups (name) VALUES (?)", name);
    if (status == Status::success && id != nullptr)
      *id = static_cast<std::uint32_t>(sqlite3_last_insert_rowid(state.database));
    return status;
  });
}

Status Change::restore_group(std::uint32_t group, std::string_view name) {
  return attempt(state_, [&](State &state) {
    if (Status const status = check_group_name(name); status != Status::success) return status;
    return affect(state, "INSERT INTO groups (id, name) VALUES (?, ?)", std::int64_t{group}, name);
  });
}

Status Change::rename_group(std::uint32_t group, std::string_view name) {
  return attempt(state_, [&](State &state) {
    if (Status const status = check_group_name(name); status != Status::success) return status;
    return affect(state, "UPDATE groups SET name = ? WHERE id = ?", name, std::int64_t{group});
  });
}

Status Change::remove_group(std::uint32_t group) {
  return attempt(state_,
                 [&](State &state) { return affect(state, "DELETE FROM groups WHERE id = ?", std::int64_t{group}); });
}

Status Change::add_member(std::uint32_t group, std::uint32_t individual) {
  return attempt(state_, [&](State &state) {
    if (individual > greatest_member_id) return Status::no_member;
    if (!state.insert_member)
      state.insert_member.emplace(state.database,
                                  "INSERT INTO members (group_id, individual_id) VALUES (?, ?) ON CONFLICT DO NOTHING");
    int const code = state.insert_member->bind(std::int64_t{group}, std::int64_t{individual}).step();
    state.insert_member->reset();
    return code == SQLITE_CONSTRAINT_CHECK ? Status::no_entry : state.outcome(code);
  });
}

Status Change::remove_member(std::uint32_t group, std::uint32_t individual) {
  return attempt(state_, [&](State &state) {
    return affect(state, "DELETE FROM members WHERE group_id = ? AND individual_id = ?", std::int64_t{group},
                  std::int64_t{individual});
  });
}

Status Change::commit() {
  return attempt(state_, [&](State &state) {
    if (Status const status = state.keep(run(state.database, "COMMIT")); status != Status::success) return status;
    state.database = nullptr;
    return Status::success;
  });
}

}  // namespace fax::gad
