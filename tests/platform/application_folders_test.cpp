#include "platform/application_folders.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/stat.h>

namespace fs = std::filesystem;

namespace {

class ApplicationFolders : public testing::Test {
protected:
  ApplicationFolders() {
    std::string name = (fs::temp_directory_path() / "folders-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    folder_ = name;
  }
  ~ApplicationFolders() override { fs::remove_all(folder_); }

  void file(std::string const &path, std::string const &content = "") {
    fs::create_directories((folder_ / path).parent_path());
    std::ofstream(folder_ / path) << content;
  }

  // The wrappers in these folders, as paths below the test's own.
  std::vector<std::string> found(std::vector<std::string> const &folders, int levels) {
    std::vector<std::string> paths;
    for (auto const &each : folders) paths.push_back((folder_ / each).native());
    paths = fax::application_wrappers(paths, levels);
    for (auto &each : paths) each = fs::path(each).lexically_relative(folder_).native();
    return paths;
  }

  fs::path folder_;
};

TEST_F(ApplicationFolders, WrappersComeInOneOrderAndOnce) {
  for (char const *path : {"b/Z.app", "b/A.app/Inner.app", "b/sub/M.app", "b/sub/deep/er/N.app", "a/B.app", "b/.app",
                           "b/.hidden/H.app", "b/x.apps"})
    fs::create_directories(folder_ / path);
  file("b/File.app");
  fs::create_directory_symlink("../a", folder_ / "b/other");
  fs::create_directory_symlink("..", folder_ / "b/sub/up");
  fs::create_directory_symlink("self", folder_ / "b/self");
  EXPECT_THAT(found({"none", "b", "a", "b"}, 2),
              testing::ElementsAre("b/A.app", "b/Z.app", "b/other/B.app", "b/sub/M.app"));
  EXPECT_THAT(found({"a", "b"}, 0), testing::ElementsAre("a/B.app", "b/A.app", "b/Z.app"));
  EXPECT_THAT(fax::application_wrappers({"", "relative"}, 1), testing::IsEmpty());
}

TEST_F(ApplicationFolders, InformationIsAPlainFile) {
  EXPECT_EQ(fax::information_file((folder_ / "None.app").native()), std::nullopt);
  fs::create_directories(folder_ / "A.app/Resources/Info-gnustep.plist");
  file("A.app/Contents/Info.plist", "old");
  auto const first = fax::information_file((folder_ / "A.app").native());
  ASSERT_TRUE(first);
  EXPECT_EQ(first->path, (folder_ / "A.app/Contents/Info.plist").native());
  file("A.app/Contents/Info.plist", "newer");
  EXPECT_NE(fax::information_file((folder_ / "A.app").native())->stamp, first->stamp);
  file("A.app/Resources/Info.plist");
  EXPECT_EQ(fax::information_file((folder_ / "A.app").native())->path,
            (folder_ / "A.app/Resources/Info.plist").native());
}

TEST_F(ApplicationFolders, BytesOfAFile) {
  file("five", "12345");
  ASSERT_EQ(mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  auto const bytes = [&](char const *name, std::size_t most) {
    return fax::file_bytes((folder_ / name).native(), most);
  };
  EXPECT_EQ(bytes("five", 5), "12345");
  EXPECT_EQ(bytes("five", 4), std::nullopt);
  EXPECT_EQ(bytes("pipe", 4), std::nullopt) << "and does not wait";
  EXPECT_EQ(bytes(".", 4), std::nullopt);
  EXPECT_EQ(bytes("none", 4), std::nullopt);
}

TEST(Wrapper, OfAPath) {
  struct {
    char const *path, *wrapper, *name;
  } const cases[] = {
      {"/a/B.app/C", "/a/B.app", "B"},
      {"/a/B.app/Contents/MacOS/C", "/a/B.app", "B"},
      {"/a/B.app/Helper.app/C", "/a/B.app/Helper.app", "Helper"},
      {"/a/B C.app/x86/D", "/a/B C.app", "B C"},
      {"/a/B.app", "", ""},
      {"/a/.app/C", "", ""},
      {"/a/B.application/C", "", ""},
      {"/C", "", ""},
      {"B.app", "", ""},
      {"", "", ""},
  };
  for (auto const &row : cases) {
    EXPECT_EQ(fax::wrapper_of(row.path), row.wrapper) << row.path;
    EXPECT_EQ(fax::wrapper_name(fax::wrapper_of(row.path)), row.name) << row.path;
  }
}

}  // namespace
