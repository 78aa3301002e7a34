// Who is whose member by the system's own user and group database.
#include "namespaces.h"

#include "platform/identity.h"
#include "support/UtilityService.h"
#include "support/system_utilities.h"

#include <CoreServices/CoreServices.h>

#include <gmock/gmock.h>

#include <ctime>

using testing::ElementsAre;

namespace {

std::string user_line(std::string const &name, int number, int group) {
  return name + ":x:" + std::to_string(number) + ":" + std::to_string(group) + "::/home:/bin/sh\n";
}

class Accounts : public testing::Test {
protected:
  ~Accounts() override { [pool_ release]; }

  static bool is_admin(char const *user) {
    return [UtilityService checkIfAdminUser:[NSString stringWithUTF8String:user]];
  }

  // A group's members, through Identity Services; a nested group's name in brackets.
  static std::vector<std::string> members(char const *group) {
    std::vector<std::string> names;
    for (auto const &identity : fax::group_members(fax::system_accounts(), group))
      names.push_back(identity.kind == fax::Identity::Kind::User ? identity.name : "[" + identity.name + "]");
    return names;
  }

  // Of the processor, whatever else the machine does.
  static double seconds(std::function<void()> const &work) {
    std::clock_t const start = std::clock();
    work();
    return double(std::clock() - start) / CLOCKS_PER_SEC;
  }

private:
  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
};

std::string const kPeople = user_line("root", 0, 0) + user_line("ann", 1001, 100) + user_line("bob", 1002, 200) +
                            user_line("carl", 1003, 300) + user_line("dora", 1004, 100) + user_line("eve", 1005, 300) +
                            user_line("staff", 1006, 300);

struct Row {
  char const *name;
  std::string group_file;
  std::vector<std::string> members;  // of admin, by Identity Services
  std::vector<char const *> checked;  // of the people, those that CheckUserGroups finds in admin
};

class Membership : public Accounts, public testing::WithParamInterface<Row> {};

TEST_P(Membership, OfAdmin) {
  auto const &row = GetParam();
  test::replace_accounts(kPeople, row.group_file);
  EXPECT_EQ(members("admin"), row.members);
  for (char const *user : {"root", "ann", "bob", "carl", "dora", "eve", "staff"}) {
    SCOPED_TRACE(user);
    EXPECT_EQ(is_admin(user), testing::Value(row.members, testing::Contains(user)));
    EXPECT_EQ(CheckUserGroups(user, "admin"), testing::Value(row.checked, testing::Contains(testing::StrEq(user))));
  }
  for (char const *nobody : {"", "admin", "gone", "+", "ANN", "ann,bob"}) {
    EXPECT_FALSE(is_admin(nobody)) << nobody;
    EXPECT_FALSE(CheckUserGroups(nobody, "admin")) << nobody;
  }
  EXPECT_EQ(IsUserAdmin(), testing::Value(row.checked, testing::Contains(testing::StrEq("root"))));
}

INSTANTIATE_TEST_SUITE_P(Table, Membership, testing::Values(
    Row{"supplementary", "staff:x:300:ann\nadmin:x:400:bob,carl\n", {"bob", "carl"}, {"bob", "carl"}},
    Row{"primary_group", "admin:x:100:bob\n", {"bob", "ann", "dora"}, {"bob", "ann", "dora"}},
    Row{"primary_group_of_nobody_else", "admin:x:0:\n", {"root"}, {"root"}},
    // The plain check knows no nesting: only what the group's own entry says.
    Row{"nested_group", "helpers:x:200:ann\nadmin:x:400:helpers,eve\n", {"[helpers]", "ann", "bob", "eve"}, {"eve"}},
    Row{"nested_in_a_ring", "a:x:401:admin,b,carl\nb:x:402:a,dora\nadmin:x:400:a\n", {"[a]", "[b]", "dora", "carl"}, {}},
    Row{"a_user_bears_the_groups_name", "staff:x:301:ann\nadmin:x:400:staff\n", {"staff"}, {"staff"}},
    Row{"no_group_prefixes", "helpers:x:200:ann\nadmin:x:400:@helpers,%helpers,+helpers\n", {}, {}},
    Row{"duplicates_and_empty_names", "admin:x:400:bob,,bob, ann,gone,\n", {"bob", "ann"}, {"bob", "ann"}},
    Row{"no_such_group", "administrators:x:400:bob\n", {}, {}},
    Row{"empty_group", "admin:x:400:\n", {}, {}},
    Row{"broken_lines", "admin\nadmin:x:no:ann\n:x:400:ann\n\n# note\nadmin:x:401:bob\n", {"bob"}, {"bob"}},
    Row{"no_database", "", {}, {}}),
  [](auto const &info) { return std::string(info.param.name); });

// Two entries of one name: the plain check reads on to the second, a look-up by name ends at the first.
TEST_F(Accounts, TwoEntriesOfOneName) {
  test::replace_accounts(kPeople, "admin:x:400:bob\nadmin:x:401:carl\n");
  EXPECT_TRUE(CheckUserGroups("bob", "admin"));
  EXPECT_TRUE(CheckUserGroups("carl", "admin"));
  EXPECT_THAT(members("admin"), ElementsAre("bob"));
  EXPECT_EQ(fax::find_identities(fax::system_accounts(), "adm", fax::NameMatch::BeginsWith, fax::Identity::Kind::Group)
                .size(),
            1u);
}

TEST_F(Accounts, DirectionsToOtherDirectoriesAreNobody) {
  test::replace_accounts(user_line("root", 0, 0) + "+\n+ann::::::\n-bob\n+@wheel\n", "admin:x:0:\n+\n+other:::\n");
  EXPECT_THAT(members("admin"), ElementsAre("root"));
  using enum fax::NameMatch;
  EXPECT_EQ(fax::find_identities(fax::system_accounts(), "", BeginsWith, fax::Identity::Kind::Group).size(), 1u);
  EXPECT_TRUE(fax::find_identities(fax::system_accounts(), "", Equals, fax::Identity::Kind::Group).empty());
}

TEST_F(Accounts, NoUsers) {
  test::replace_accounts("", "admin:x:0:root\n");
  EXPECT_FALSE(IsUserAdmin());
  EXPECT_FALSE(CheckUserGroups("root", "admin"));
  EXPECT_THAT(members("admin"), ElementsAre());
}

// The longest name that is compared has 1023 characters.
TEST_F(Accounts, NameOfTheProcesssUserThatIsTooLong) {
  for (std::size_t length : {1023u, 1024u}) {
    std::string const name(length, 'n');
    test::replace_accounts(user_line(name, 0, 5), "admin:x:400:" + name + "\n");
    EXPECT_EQ(IsUserAdmin(), length == 1023);
  }
}

// The bounds are far above what is needed (tens of milliseconds), for slow machines and the sanitizers; one look-up for
// each member would take longer.
TEST_F(Accounts, Thousands) {
  constexpr int kMany = 10'000, kLinks = 300;
  std::string people = user_line("root", 0, 0), groups, list, chain;
  for (int i = 0; i < kMany; ++i) {
    std::string const number = std::to_string(i);
    people += user_line("user" + number, 1000 + i, i % 2 == 0 ? 400 : 500);
    groups += "group" + number + ":x:" + std::to_string(20'000 + i) + ":user" + number + "\n";
    if (i % 2 != 0) list += "user" + number + ",";
    if (i < kLinks)
      chain += "link" + number + ":x:" + std::to_string(40'000 + i) + ":link" + std::to_string(i + 1) + "\n";
  }
  // One entry of more than a megabyte, and one before and behind it.
  std::string const huge = "huge:x:399:" + std::string(1 << 20, 'x') + ",user7\n";
  test::replace_accounts(people, groups + huge + "admin:x:400:" + list + "\n" + chain + "link300:x:60000:user9\n");

  std::vector<std::string> all, last;
  double const members_time = seconds([&] { all = members("admin"); });
  EXPECT_EQ(all.size(), std::size_t(kMany));
  EXPECT_LT(members_time, 1);

  double const chain_time = seconds([&] { last = members("link0"); });
  EXPECT_EQ(last.size(), kLinks + 1u);
  EXPECT_EQ(last.back(), "user9");
  EXPECT_LT(chain_time, 2);

  double const check_time = seconds([&] {
    EXPECT_TRUE(CheckUserGroups("user9999", "admin"));
    EXPECT_TRUE(CheckUserGroups("user9998", "admin"));  // by primary group
    EXPECT_TRUE(CheckUserGroups("user7", "huge"));
    EXPECT_FALSE(CheckUserGroups("user8", "huge"));
    EXPECT_FALSE(IsUserAdmin());
  });
  EXPECT_LT(check_time, 2);

  double const service_time = seconds([&] {
    EXPECT_TRUE(is_admin("user9998"));
    EXPECT_FALSE(is_admin("root"));
  });
  EXPECT_LT(service_time, 4);

  // The entry that needs a larger buffer is neither lost nor ends the reading.
  using enum fax::NameMatch;
  EXPECT_EQ(fax::find_identities(fax::system_accounts(), "", BeginsWith, fax::Identity::Kind::Group).size(),
            kMany + kLinks + 3u);
  EXPECT_THAT(members("huge"), ElementsAre("user7"));
  std::printf("%d users: members %.0f ms, chain of groups %.0f ms, 5 plain checks %.0f ms, 2 service checks %.0f ms\n",
              kMany, members_time * 1e3, chain_time * 1e3, check_time * 1e3, service_time * 1e3);
}

}  // namespace
