#include "platform/running_programs.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// A folder that looks like the kernel's.
class RunningPrograms : public testing::Test {
protected:
  RunningPrograms() {
    std::string name = (fs::temp_directory_path() / "processes-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no folder for the test");
    folder_ = name;
  }
  ~RunningPrograms() override { fs::remove_all(folder_); }

  void process(std::string const &number, std::string const &program, std::string const &environment = "") {
    fs::create_directory(folder_ / number);
    if (!program.empty()) fs::create_symlink(program, folder_ / number / "exe");
    std::ofstream(folder_ / number / "environ") << environment;
  }

  std::vector<std::string> found() {
    std::vector<std::string> lines;
    for (auto const &each : fax::running_programs(folder_.native()))
      lines.push_back(std::to_string(each.process) + " " + each.path);
    return lines;
  }

  fs::path folder_;
};

using namespace std::string_literals;

TEST_F(RunningPrograms, AreThoseThatRun) {
  process("30", "/usr/bin/c");
  process("4", "/usr/bin/a");
  process("31", "");  // ended, or the kernel's own
  process("12x", "/usr/bin/x");
  process("self", "/usr/bin/x");
  process("32", "/opt/B.app/B (deleted)");
  fs::path const odd = folder_ / "odd (deleted)";
  std::ofstream(odd) << "a name like that";
  process("33", odd.native());
  EXPECT_THAT(found(), testing::ElementsAre("4 /usr/bin/a", "30 /usr/bin/c", "32 /opt/B.app/B", "33 " + odd.native()));
  EXPECT_THAT(fax::running_programs((folder_ / "none").native()), testing::IsEmpty());
}

TEST_F(RunningPrograms, OfAnotherUserAreNotSeen) {
  if (geteuid() != 0) GTEST_SKIP() << "only root can give a folder away";
  process("5", "/usr/bin/a");
  ASSERT_EQ(chown((folder_ / "5").c_str(), 12345, 12345), 0);
  EXPECT_THAT(found(), testing::IsEmpty());
}

TEST_F(RunningPrograms, KnowTheirDisplay) {
  process("1", "/a", "HOME=/x\0DISPLAY=:1\0LANG=C\0"s);
  process("2", "/b", "DISPLAY=:1.0"s);
  process("3", "/c", "XDISPLAY=:1\0DISPLAY=:11\0"s);
  process("4", "/d", "\0\0\0"s);
  process("5", "/e", "DISPLAY=host:1.0\0"s);
  auto const of_display = [&](char const *display) {
    std::vector<int> processes;
    for (int process = 1; process <= 6; ++process)
      if (fax::was_started_for(display, process, folder_.native())) processes.push_back(process);
    return processes;
  };
  EXPECT_THAT(of_display(":1"), testing::ElementsAre(1, 2));
  EXPECT_THAT(of_display(":1.1"), testing::ElementsAre(1, 2));
  EXPECT_THAT(of_display("host:1"), testing::ElementsAre(5));
}

TEST(RunningProgramsOfThisComputer, HoldThisOne) {
  std::string const own = fs::read_symlink("/proc/self/exe");
  bool is_found = false;
  for (auto const &each : fax::running_programs())
    is_found = is_found || (each.process == getpid() && each.path == own);
  EXPECT_TRUE(is_found);
}

TEST(Display, WithoutItsScreen) {
  using Row = std::pair<char const *, char const *>;
  for (auto const &[full, display] : {Row{":0.0", ":0"}, {":0", ":0"}, {"a.b:10.1", "a.b:10"}, {"a.b", "a.b"}, {"", ""}})
    EXPECT_EQ(fax::display_without_screen(full), display);
}

}  // namespace
