// Users and groups by name, and who belongs to a group.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

namespace fax {

struct UserRecord {
  std::string name;
  gid_t group;  // primary group
};

struct GroupRecord {
  std::string name;
  gid_t number;
  std::vector<std::string> members;  // names, as the database lists them
};

// Where users and groups are looked up.
class Accounts {
public:
  virtual ~Accounts() = default;
  virtual std::optional<UserRecord> user(std::string const &name) const = 0;
  virtual std::optional<GroupRecord> group(std::string const &name) const = 0;
  virtual std::vector<UserRecord> users() const = 0;
  virtual std::vector<GroupRecord> groups() const = 0;
};

// The system's database (NSS). Reading all users or groups takes the process-wide cursors of getpwent and getgrent.
// Entries without a name and those that begin with + or - (directions to read another directory) are left out.
Accounts const &system_accounts();

struct Identity {
  enum class Kind { User, Group };
  Kind kind;
  std::string name;
  bool operator==(Identity const &) const = default;
};

enum class NameMatch { Equals, BeginsWith };

// Identities of a kind by name, case-sensitively, each once; a name that begins with "" is every name.
std::vector<Identity> find_identities(Accounts const &accounts, std::string const &name, NameMatch match,
                                      Identity::Kind kind);

// Members of a group, each once: first what its member list names, in its order, then the users whose primary group it
// is. A listed name is a user or, when no user has it, a group nested in this one: then that group comes first and its
// members follow. (Nesting is what directories mean by it; "@name" and "%name" are no names of groups.) A name that is
// neither is passed over, and so is a group that contains itself. Empty for a group that is not there.
// Reads the users once, and the groups once when one is nested: thousands of either take milliseconds. A name that is
// not among them costs a look-up of its own.
std::vector<Identity> group_members(Accounts const &accounts, std::string const &group);

}  // namespace fax
