#include "platform/identity.h"

#include <cerrno>
#include <grp.h>
#include <mutex>
#include <pwd.h>
#include <unordered_map>
#include <unordered_set>

namespace fax {

namespace {

constexpr std::size_t kMostBytes = 64 << 20;  // a larger record is taken as unreadable

UserRecord to_record(passwd const &entry) { return {entry.pw_name, entry.pw_gid}; }

GroupRecord to_record(::group const &entry) {
  GroupRecord record{entry.gr_name, entry.gr_gid, {}};
  for (char **member = entry.gr_mem; member != nullptr && *member != nullptr; ++member)
    record.members.emplace_back(*member);
  return record;
}

// An empty name is nobody's, and "+name" and "-name" are directions to read another directory.
bool is_account(std::string_view name) { return !name.empty() && name[0] != '+' && name[0] != '-'; }

// Calls a re-entrant look-up with more and more room: call(entry, buffer, size, result) answers an errno value.
template <typename Entry, typename Call>
auto looked_up(Call call) -> std::optional<decltype(to_record(std::declval<Entry const &>()))> {
  std::vector<char> buffer(4096);
  for (;;) {
    Entry entry;
    Entry *result = nullptr;
    int const error = call(&entry, buffer.data(), buffer.size(), &result);
    if (error == ERANGE && buffer.size() < kMostBytes) {
      buffer.resize(buffer.size() * 4);
      continue;
    }
    if (error == EINTR) continue;
    if (error != 0 || result == nullptr) return std::nullopt;
    return to_record(*result);
  }
}

// Every entry behind the cursor that next moves.
template <typename Entry, typename Record, typename Next>
std::vector<Record> read_all(Next next) {
  std::vector<Record> all;
  while (auto record = looked_up<Entry>(next))
    if (is_account(record->name)) all.push_back(std::move(*record));
  return all;
}

class SystemAccounts final : public Accounts {
public:
  std::optional<UserRecord> user(std::string const &name) const override {
    if (!is_account(name)) return std::nullopt;
    return looked_up<passwd>([&](passwd *entry, char *buffer, std::size_t size, passwd **result) {
      return getpwnam_r(name.c_str(), entry, buffer, size, result);
    });
  }

  std::optional<GroupRecord> group(std::string const &name) const override {
    if (!is_account(name)) return std::nullopt;
    return looked_up<::group>([&](::group *entry, char *buffer, std::size_t size, ::group **result) {
      return getgrnam_r(name.c_str(), entry, buffer, size, result);
    });
  }

  std::vector<UserRecord> users() const override {
    std::lock_guard const lock(cursor_);
    setpwent();
    auto all = read_all<passwd, UserRecord>(getpwent_r);
    endpwent();
    return all;
  }

  std::vector<GroupRecord> groups() const override {
    std::lock_guard const lock(cursor_);
    setgrent();
    auto all = read_all<::group, GroupRecord>(getgrent_r);
    endgrent();
    return all;
  }

private:
  mutable std::mutex cursor_;
};

// What a look-up by name would find, from one reading of everybody: a directory of thousands is not searched once for
// each member. A name that the reading lacks is still looked up, for some directories answer by name only.
class Directory {
public:
  explicit Directory(Accounts const &accounts) : accounts_(accounts), users_(accounts.users()) {
    for (auto const &user : users_) {
      if (user_names_.insert(user.name).second) by_primary_group_[user.group].push_back(user.name);
    }
  }

  bool has_user(std::string const &name) const {
    return user_names_.contains(name) || accounts_.user(name).has_value();
  }

  std::optional<GroupRecord> group(std::string const &name) {
    if (!groups_) {
      groups_.emplace();
      for (auto &group : accounts_.groups()) groups_->try_emplace(group.name, group);
    }
    auto const found = groups_->find(name);
    return found != groups_->end() ? found->second : accounts_.group(name);
  }

  std::vector<std::string> const &with_primary_group(gid_t number) const {
    static std::vector<std::string> const none;
    auto const found = by_primary_group_.find(number);
    return found != by_primary_group_.end() ? found->second : none;
  }

private:
  Accounts const &accounts_;
  std::vector<UserRecord> const users_;
  std::unordered_set<std::string> user_names_;
  std::unordered_map<gid_t, std::vector<std::string>> by_primary_group_;
  std::optional<std::unordered_map<std::string, GroupRecord>> groups_;  // read when a nested group is first met
};

class MemberWalk {
public:
  explicit MemberWalk(Accounts const &accounts) : directory_(accounts) {}

  // Groups may lie in one another thousands deep, so the way back is kept in a vector and not on the stack.
  std::vector<Identity> from(GroupRecord start) {
    enter(std::move(start));
    while (!open_.empty()) {
      Visit &visit = open_.back();
      if (visit.next < visit.group.members.size()) {
        std::string const name = visit.group.members[visit.next++];
        take(name);
      } else {
        for (auto const &user : directory_.with_primary_group(visit.group.number)) add_user(user);
        open_.pop_back();
      }
    }
    return std::move(found_);
  }

private:
  struct Visit {
    GroupRecord group;
    std::size_t next;
  };

  void enter(GroupRecord group) {
    if (entered_.insert(group.name).second) open_.push_back({std::move(group), 0});
  }

  void take(std::string const &name) {
    if (directory_.has_user(name)) {
      add_user(name);
    } else if (auto nested = directory_.group(name); nested && !entered_.contains(nested->name)) {
      found_.push_back({Identity::Kind::Group, nested->name});
      enter(std::move(*nested));
    }
  }

  void add_user(std::string const &name) {
    if (found_users_.insert(name).second) found_.push_back({Identity::Kind::User, name});
  }

  Directory directory_;
  std::vector<Visit> open_;
  std::unordered_set<std::string> entered_, found_users_;
  std::vector<Identity> found_;
};

template <typename Record>
std::vector<Identity> named(std::vector<Record> const &records, std::string const &start, Identity::Kind kind) {
  std::vector<Identity> all;
  std::unordered_set<std::string> seen;
  for (auto const &record : records)
    if (record.name.starts_with(start) && seen.insert(record.name).second) all.push_back({kind, record.name});
  return all;
}

}  // namespace

Accounts const &system_accounts() {
  static SystemAccounts const accounts;
  return accounts;
}

std::vector<Identity> find_identities(Accounts const &accounts, std::string const &name, NameMatch match,
                                      Identity::Kind kind) {
  bool const users = kind == Identity::Kind::User;
  if (match == NameMatch::BeginsWith)
    return users ? named(accounts.users(), name, kind) : named(accounts.groups(), name, kind);
  bool const known = users ? accounts.user(name).has_value() : accounts.group(name).has_value();
  return known ? std::vector<Identity>{{kind, name}} : std::vector<Identity>{};
}

std::vector<Identity> group_members(Accounts const &accounts, std::string const &group) {
  auto const record = accounts.group(group);
  if (!record) return {};
  return MemberWalk(accounts).from(*record);
}

}  // namespace fax
