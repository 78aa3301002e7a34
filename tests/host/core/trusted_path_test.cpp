// Which extension may be loaded: a bundle in a folder, spoiled in one place at a time.
#include "host/core/trusted_path.h"

#include <gtest/gtest.h>

#include <fstream>
#include <functional>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace fax::host {
namespace {

namespace fs = std::filesystem;

constexpr uid_t kStranger = 54321;

void mode(fs::path const &path, mode_t bits) { ASSERT_EQ(chmod(path.c_str(), bits), 0) << path; }

struct TrustCase {
  char const *name;
  // Given the folder that holds "apps/Fax.bundle", which holds "Fax", "Resources/Panel.nib" and "Frameworks", a link to
  // "lib".
  std::function<void(fs::path const &)> spoil;
  char const *weak;  // in that folder; nullptr: nothing is
  bool as_root = false;
};

void PrintTo(TrustCase const &row, std::ostream *out) { *out << row.name; }

class Trust : public testing::TestWithParam<TrustCase> {
 protected:
  Trust() {
    umask(022);
    std::string pattern = (fs::temp_directory_path() / "trust.XXXXXX").string();
    folder_ = fs::canonical(mkdtemp(pattern.data()));
    mode(folder_, 0755);
    fs::create_directories(folder_ / "apps/Fax.bundle/Resources");
    fs::create_directories(folder_ / "lib");
    for (char const *file : {"apps/Fax.bundle/Fax", "apps/Fax.bundle/Resources/Panel.nib", "lib/Books"})
      std::ofstream(folder_ / file) << "x";
    fs::create_directory_symlink("../../lib", folder_ / "apps/Fax.bundle/Frameworks");
    fs::create_directory_symlink("apps/Fax.bundle", folder_ / "Link.bundle");
  }
  ~Trust() override { fs::remove_all(folder_); }

  fs::path folder_;
};

TEST_P(Trust, Decides) {
  TrustCase const &row = GetParam();
  if (row.as_root && geteuid() != 0) GTEST_SKIP() << "only root can give things away";
  row.spoil(folder_);
  for (char const *way : {"apps/Fax.bundle", "Link.bundle"}) {
    auto const trusted = trusted_path(folder_ / way);
    EXPECT_EQ(trusted.resolved, folder_ / "apps/Fax.bundle");
    EXPECT_EQ(trusted.weak, row.weak ? std::optional(folder_ / row.weak) : std::nullopt);
  }
}

TrustCase const kTrustCases[] = {
    {"sound", [](auto const &) {}, nullptr},
    {"unreadable_for_others", [](auto const &at) { mode(at / "apps", 0700); }, nullptr},
    {"bundle_of_all", [](auto const &at) { mode(at / "apps/Fax.bundle", 0777); }, "apps/Fax.bundle"},
    {"bundle_of_all_sticky", [](auto const &at) { mode(at / "apps/Fax.bundle", 01777); }, "apps/Fax.bundle"},
    {"program_of_all", [](auto const &at) { mode(at / "apps/Fax.bundle/Fax", 0757); }, "apps/Fax.bundle/Fax"},
    {"file_in_it", [](auto const &at) { mode(at / "apps/Fax.bundle/Resources/Panel.nib", 0646); },
     "apps/Fax.bundle/Resources/Panel.nib"},
    {"behind_a_link", [](auto const &at) { mode(at / "lib/Books", 0666); }, "lib/Books"},
    {"folder_behind_a_link", [](auto const &at) { mode(at / "lib", 0777); }, "lib"},
    {"folder_above", [](auto const &at) { mode(at / "apps", 0777); }, "apps"},
    {"folder_above_sticky", [](auto const &at) { mode(at / "apps", 01777); }, nullptr},
    {"dangling_link", [](auto const &at) { fs::create_symlink("nowhere", at / "apps/Fax.bundle/Contents"); }, nullptr},
    {"loop", [](auto const &at) { fs::create_directory_symlink(".", at / "apps/Fax.bundle/Contents"); }, nullptr},
    {"own_group", [](auto const &at) { mode(at / "apps", 0775); }, nullptr, true},
    {"foreign_group",
     [](auto const &at) {
       ASSERT_EQ(chown((at / "apps").c_str(), 0, kStranger), 0);
       mode(at / "apps", 0775);
     },
     "apps", true},
    {"foreign_group_reads", [](auto const &at) { ASSERT_EQ(chown((at / "apps").c_str(), 0, kStranger), 0); }, nullptr,
     true},
    {"foreign_owner", [](auto const &at) { ASSERT_EQ(chown((at / "apps/Fax.bundle/Fax").c_str(), kStranger, 0), 0); },
     "apps/Fax.bundle/Fax", true},
    {"foreign_sticky_folder",
     [](auto const &at) {
       ASSERT_EQ(chown((at / "apps").c_str(), kStranger, 0), 0);
       mode(at / "apps", 01777);
     },
     "apps", true},
};
INSTANTIATE_TEST_SUITE_P(Table, Trust, testing::ValuesIn(kTrustCases),
                         [](auto const &info) { return std::string(info.param.name); });

TEST(TrustOfNothing, IsWeak) {
  EXPECT_TRUE(trusted_path("/nowhere/Fax.bundle").weak.has_value());
  EXPECT_TRUE(trusted_path("").weak.has_value());
}

// Whatever groups there are: for an access list gives the group's rights to others.
TEST(TrustOfAccessLists, IsNone) {
  std::string pattern = (fs::temp_directory_path() / "trust.XXXXXX").string();
  fs::path const folder = fs::canonical(mkdtemp(pattern.data()));
  // Version 2: the owner and the user 54321 read and write, the group and the others read; the mask allows it.
  unsigned char const list[] = {2,  0, 0, 0,                        //
                                1,  0, 7, 0, 255,  255,  255, 255,  //
                                2,  0, 7, 0, 0x31, 0xD4, 0,   0,    //
                                4,  0, 5, 0, 255,  255,  255, 255,  //
                                16, 0, 7, 0, 255,  255,  255, 255,  //
                                32, 0, 5, 0, 255,  255,  255, 255};
  bool const listed = setxattr(folder.c_str(), "system.posix_acl_access", list, sizeof list, 0) == 0;
  auto const trusted = trusted_path(folder);
  fs::remove_all(folder);
  if (!listed) GTEST_SKIP() << "no access lists in the folder for temporary files";
  EXPECT_EQ(trusted.weak, folder);
}

}  // namespace
}  // namespace fax::host
