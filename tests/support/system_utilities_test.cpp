// The version is computed once a process, so every version test runs in a child of its own. The system's answers come
// from the functions below, which stand in front of the real ones.
#include "support/system_utilities.h"

#include <gtest/gtest.h>

#include <sys/sysctl.h>

#include <cstring>
#include <grp.h>
#include <optional>
#include <pwd.h>
#include <string>
#include <vector>

namespace {

std::optional<std::string> release;  // nullopt: the read fails
int release_reads = 0;

struct Group {
  std::string name;
  gid_t id;
  std::vector<std::string> members;
};
std::vector<Group> groups;
std::size_t next_group = 0;
std::optional<std::string> current_user;
constexpr gid_t kPrimary = 100;

constexpr OSType kSys1 = 0x73797331, kSys2 = 0x73797332, kSys3 = 0x73797333, kSys4 = 0x73797334, kSysv = 0x73797376;

passwd *user_entry(char const *name) {
  static passwd entry;
  static std::string kept;
  kept = name;
  entry = {};
  entry.pw_name = kept.data();
  entry.pw_gid = kPrimary;
  return &entry;
}

}  // namespace

int sysctl(int *name, u_int name_length, void *old, size_t *old_length, void *new_value, size_t) {
  ++release_reads;
  if (!release || name_length != 2 || name[0] != CTL_KERN || name[1] != KERN_OSRELEASE || new_value != nullptr)
    return -1;
  // As a kernel does, without a NUL where there is no room for it.
  *old_length = std::min(*old_length, release->size() + 1);
  std::memcpy(old, release->c_str(), *old_length);
  return 0;
}

extern "C" {
passwd *getpwnam(char const *name) { return std::string(name) == "nobody-here" ? nullptr : user_entry(name); }
passwd *getpwuid(uid_t) { return current_user ? user_entry(current_user->c_str()) : nullptr; }
void setgrent() { next_group = 0; }
group *getgrent() {
  static group entry;
  static std::vector<char *> members;
  if (next_group == groups.size()) return nullptr;
  Group &next = groups[next_group++];
  members.clear();
  for (auto &member : next.members) members.push_back(member.data());
  members.push_back(nullptr);
  entry = {next.name.data(), nullptr, next.id, members.data()};
  return &entry;
}
}

namespace {

// The value that body answers in a fresh process.
#define EXPECT_IN_CHILD(body, value)                                                            \
  EXPECT_EXIT(                                                                                  \
      {                                                                                         \
        auto const got = (body)();                                                              \
        std::fprintf(stderr, "got %lld\n", static_cast<long long>(got));                        \
        std::exit(0);                                                                           \
      },                                                                                        \
      testing::ExitedWithCode(0), "^got " + std::to_string(static_cast<long long>(value)) + "\n$")

struct VersionCase {
  char const *release;
  SInt32 minor;
  UInt32 word, major, minor_digit, bug_fix;
};

UInt32 by_selector(OSType selector) {
  UInt32 result = 0xEEEEEEEE;
  return Gestalt_ALT(selector, &result) == 0 ? result : 0xFFFFFFFF;
}

TEST(Version, OfTheKernelRelease) {
  VersionCase const cases[] = {
      {"10.8.0", 6, 0x1068, 10, 6, 8},       {"11.4.2", 7, 0x1074, 10, 7, 4},  {"12.0", 8, 0x1080, 10, 8, 0},
      {"12", 8, 0x1080, 10, 8, 0},           {"6.1.0-28-amd64", 2, 0x1021, 10, 2, 1},
      {"11.17.0", 7, 0x1071, 10, 7, 1},      {"19.6.0", 15, 0x10F6, 10, 15, 6},
      {"22.1.0", 18, 0x1121, 11, 2, 1},      {"2.6.32", -2, 0x1FE6, 25, 14, 6},
      {"1234567890.12345", 1234567886, 0x1CE9, 22, 14, 9},  // filled to its sixteenth byte
      {"junk", -1, 0x1000, 10, 0, 0},        {"junk.5", -1, 0x1005, 10, 0, 5}, {"", -1, 0x1000, 10, 0, 0},
      {"0.9", -1, 0x1009, 10, 0, 9},         {"-3.2", -1, 0x1002, 10, 0, 2},
  };
  for (auto const &c : cases) {
    SCOPED_TRACE(c.release);
    release = c.release;
    EXPECT_IN_CHILD(getOSMinorVersion, c.minor);
    EXPECT_IN_CHILD([] { return by_selector(kSysv); }, c.word);
    EXPECT_IN_CHILD([] { return by_selector(kSys1); }, c.major);
    EXPECT_IN_CHILD([] { return by_selector(kSys2); }, c.minor_digit);
    EXPECT_IN_CHILD([] { return by_selector(kSys3); }, c.bug_fix);
  }
}

TEST(Version, FailedReadIsTriedAgainForTheMinorVersionOnly) {
  release = std::nullopt;
  EXPECT_IN_CHILD(getOSMinorVersion, -1);
  EXPECT_IN_CHILD(
      [] {
        getOSMinorVersion();
        release = "11.4.2";
        return getOSMinorVersion();
      },
      7);
  EXPECT_IN_CHILD(
      [] {
        by_selector(kSysv);
        release = "11.4.2";
        return by_selector(kSysv);
      },
      0x1000);
}

TEST(Version, IsReadOnce) {
  release = "11.4.2";
  EXPECT_IN_CHILD(
      [] {
        for (int i = 0; i < 3; ++i) {
          getOSMinorVersion();
          by_selector(kSys1);
        }
        release = "12.0";
        return getOSMinorVersion() * 100 + release_reads;
      },
      702);
}

TEST(Version, UnknownSelector) {
  release = "11.4.2";
  UInt32 result = 17;
  testing::internal::CaptureStderr();
  EXPECT_EQ(Gestalt_ALT(kSys4, &result), -1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Gestalt_ALT : selector '73797334' not supported.\n");
  EXPECT_EQ(result, 17u);
  EXPECT_EQ(Gestalt_ALT(kSysv, nullptr), -1);
}

struct MemberCase {
  char const *name;
  std::vector<Group> groups;
  char const *user;
  bool member;
};

class Members : public testing::TestWithParam<MemberCase> {};

TEST_P(Members, OfAdmin) {
  auto const &c = GetParam();
  groups = c.groups;
  next_group = groups.size();  // left at the end by someone else
  EXPECT_EQ(CheckUserGroups(c.user, "admin"), c.member);
  current_user = c.user;
  EXPECT_EQ(IsUserAdmin(), c.member);
}

MemberCase const kMemberCases[] = {
    {"listed", {{"staff", 1, {}}, {"admin", 2, {"root", "ann"}}}, "ann", true},
    {"listed_elsewhere", {{"staff", 1, {"ann"}}, {"admin", 2, {"root"}}}, "ann", false},
    {"primary_without_being_listed", {{"admin", kPrimary, {}}}, "ann", true},
    {"primary_is_another_group", {{"staff", kPrimary, {"ann"}}, {"admin", 2, {}}}, "ann", false},
    {"part_of_a_name", {{"admin", 2, {"anna", "an"}}}, "ann", false},
    {"part_of_a_group_name", {{"administrators", kPrimary, {"ann"}}}, "ann", false},
    {"second_entry_of_the_group", {{"admin", 2, {}}, {"admin", 3, {"ann"}}}, "ann", true},
    {"first_entry_remembered", {{"admin", 2, {"ann"}}, {"admin", 3, {}}}, "ann", true},
    {"no_group", {}, "ann", false},
    {"unknown_user", {{"admin", kPrimary, {"nobody-here"}}}, "nobody-here", false},
};
INSTANTIATE_TEST_SUITE_P(Table, Members, testing::ValuesIn(kMemberCases),
                         [](auto const &i) { return std::string(i.param.name); });

TEST(MembersOfNothing, AreNone) {
  groups = {{"admin", kPrimary, {"ann"}}};
  EXPECT_FALSE(CheckUserGroups(nullptr, "admin"));
  EXPECT_FALSE(CheckUserGroups("ann", nullptr));
  current_user = std::nullopt;
  EXPECT_FALSE(IsUserAdmin());
}

}  // namespace
