#include "platform/identity.h"

#include <algorithm>
#include <cerrno>
#include <grp.h>
#include <mutex>
#include <pwd.h>

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

class SystemAccounts final : public Accounts {
public:
  std::optional<UserRecord> user(std::string const &name) const override {
    return looked_up<passwd>([&](passwd *entry, char *buffer, std::size_t size, passwd **result) {
      return getpwnam_r(name.c_str(), entry, buffer, size, result);
    });
  }

  std::optional<GroupRecord> group(std::string const &name) const override {
    return looked_up<::group>([&](::group *entry, char *buffer, std::size_t size, ::group **result) {
      return getgrnam_r(name.c_str(), entry, buffer, size, result);
    });
  }

  std::vector<UserRecord> users() const override {
    std::lock_guard const lock(cursor_);
    std::vector<UserRecord> all;
    setpwent();
    while (auto record = looked_up<passwd>(getpwent_r)) all.push_back(std::move(*record));
    endpwent();
    return all;
  }

  std::vector<GroupRecord> groups() const override {
    std::lock_guard const lock(cursor_);
    std::vector<GroupRecord> all;
    setgrent();
    while (auto record = looked_up<::group>(getgrent_r)) all.push_back(std::move(*record));
    endgrent();
    return all;
  }

private:
  mutable std::mutex cursor_;
};

class MemberWalk {
public:
  explicit MemberWalk(Accounts const &accounts) : accounts_(accounts), users_(accounts.users()) {}

  void enter(GroupRecord const &group) {
    if (std::find(entered_.begin(), entered_.end(), group.name) != entered_.end()) return;
    entered_.push_back(group.name);
    for (auto const &name : group.members) {
      if (accounts_.user(name)) {
        add({Identity::Kind::User, name});
      } else if (auto const nested = accounts_.group(name)) {
        if (nested->name != entered_.front()) add({Identity::Kind::Group, nested->name});
        enter(*nested);
      }
    }
    for (auto const &user : users_)
      if (user.group == group.number) add({Identity::Kind::User, user.name});
  }

  std::vector<Identity> found;

private:
  void add(Identity identity) {
    if (std::find(found.begin(), found.end(), identity) == found.end()) found.push_back(std::move(identity));
  }

  Accounts const &accounts_;
  std::vector<UserRecord> const users_;
  std::vector<std::string> entered_;
};

template <typename Record>
std::vector<Identity> named(std::vector<Record> const &records, std::string const &start, Identity::Kind kind) {
  std::vector<Identity> all;
  for (auto const &record : records)
    if (record.name.starts_with(start)) all.push_back({kind, record.name});
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
  MemberWalk walk(accounts);
  walk.enter(*record);
  return std::move(walk.found);
}

}  // namespace fax
