#include "platform/identity.h"

#include <gmock/gmock.h>

#include <grp.h>
#include <unistd.h>

using fax::GroupRecord;
using fax::Identity;
using fax::UserRecord;

namespace {

Identity user(std::string name) { return {Identity::Kind::User, std::move(name)}; }
Identity group(std::string name) { return {Identity::Kind::Group, std::move(name)}; }

class Town final : public fax::Accounts {
public:
  std::optional<UserRecord> user(std::string const &name) const override { return find(people, name); }
  std::optional<GroupRecord> group(std::string const &name) const override { return find(clubs, name); }
  std::vector<UserRecord> users() const override { return people; }
  std::vector<GroupRecord> groups() const override { return clubs; }

  std::vector<UserRecord> people{{"ann", 100}, {"bob", 200}, {"cleo", 100}, {"dan", 300}, {"staff", 900}};
  std::vector<GroupRecord> clubs{
      {"admin", 100, {"bob", "ann", "gone", "helpers"}},  // ann is in twice, helpers is a group
      {"helpers", 101, {"dan", "bob"}},
      {"empty", 102, {}},
      {"loop1", 103, {"loop2", "ann"}},
      {"loop2", 104, {"loop1", "loop2", "dan"}},
      {"staff", 300, {"ann"}},
      {"named", 105, {"staff"}},  // a user and a group bear this name: the user is meant
  };

private:
  template <typename Record>
  static std::optional<Record> find(std::vector<Record> const &records, std::string const &name) {
    for (auto const &record : records)
      if (record.name == name) return record;
    return std::nullopt;
  }
};

struct Row {
  char const *group;
  std::vector<Identity> members;
};

class GroupMembers : public testing::TestWithParam<Row> {};

TEST_P(GroupMembers, EachOnceInOrder) {
  EXPECT_EQ(fax::group_members(Town(), GetParam().group), GetParam().members);
}

INSTANTIATE_TEST_SUITE_P(Table, GroupMembers, testing::Values(
    Row{"admin", {user("bob"), user("ann"), group("helpers"), user("dan"), user("cleo")}},
    Row{"empty", {}},
    Row{"loop1", {group("loop2"), user("dan"), user("ann")}},
    Row{"staff", {user("ann"), user("dan")}},
    Row{"named", {user("staff")}},
    Row{"gone", {}}),
  [](auto const &info) { return std::string(info.param.group); });

TEST(FindIdentities, ByNameAndKind) {
  using enum fax::NameMatch;
  using enum Identity::Kind;
  Town const town;
  EXPECT_THAT(fax::find_identities(town, "admin", Equals, Group), testing::ElementsAre(group("admin")));
  EXPECT_THAT(fax::find_identities(town, "admin", Equals, User), testing::IsEmpty());
  EXPECT_THAT(fax::find_identities(town, "Admin", Equals, Group), testing::IsEmpty());
  EXPECT_THAT(fax::find_identities(town, "loop", BeginsWith, Group),
              testing::ElementsAre(group("loop1"), group("loop2")));
  EXPECT_THAT(fax::find_identities(town, "loop", Equals, Group), testing::IsEmpty());
  EXPECT_EQ(fax::find_identities(town, "", BeginsWith, User).size(), town.people.size());
}

TEST(SystemAccounts, RootIsKnown) {
  auto const &accounts = fax::system_accounts();
  auto const root = accounts.user("root");
  ASSERT_TRUE(root);
  EXPECT_EQ(root->group, 0u);
  auto const group_name = getgrgid(0)->gr_name;
  EXPECT_THAT(fax::group_members(accounts, group_name), testing::Contains(user("root")));  // by primary group
  EXPECT_THAT(fax::find_identities(accounts, "roo", fax::NameMatch::BeginsWith, Identity::Kind::User),
              testing::Contains(user("root")));
  EXPECT_FALSE(accounts.user("no such user here"));
  EXPECT_FALSE(accounts.group("no such group here"));
}

}  // namespace
