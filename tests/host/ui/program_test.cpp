// The program as a person starts it: what it says and its exit codes, where no window can or should open.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <sys/wait.h>

namespace {

struct Ended {
  int code = -1;
  std::string said;
};

Ended run(std::string const &environment, std::string const &arguments, std::string const &program = FAXPRINT) {
  std::string const command = "cd / && env -u DISPLAY " + environment + " " + program + " " + arguments + " 2>&1";
  Ended ended;
  std::FILE *pipe = popen(command.c_str(), "r");
  char buffer[4096];
  while (std::size_t const got = std::fread(buffer, 1, sizeof buffer, pipe)) ended.said.append(buffer, got);
  int const status = pclose(pipe);
  ended.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return ended;
}

struct ProgramCase {
  char const *name;
  char const *environment;
  char const *arguments;
  int code;
  char const *says;
};

class ProgramEnds : public testing::TestWithParam<ProgramCase> {};

TEST_P(ProgramEnds, AsDocumented) {
  auto const ended = run(GetParam().environment, GetParam().arguments);
  EXPECT_EQ(ended.code, GetParam().code) << ended.said;
  EXPECT_NE(ended.said.find(GetParam().says), std::string::npos) << ended.said;
  if (ended.code != 0) {
    EXPECT_EQ(std::count(ended.said.begin(), ended.said.end(), '\n'), 1) << ended.said;
  }
}

// A copy of the program, as it would be installed with another catalogue.
TEST(Program, SpeaksTheUsersLanguage) {
  namespace fs = std::filesystem;
  std::string name = (fs::temp_directory_path() / "spoken.XXXXXX").string();
  fs::path const folder = mkdtemp(name.data());
  fs::create_directory(folder / "faxprint.app");
  fs::copy_file(FAXPRINT, folder / "faxprint.app/faxprint");
  for (auto const &library : fs::directory_iterator(fs::path(FAXPRINT).parent_path().parent_path()))
    if (library.path().filename().string().starts_with("libdirectfax"))
      fs::create_symlink(library.path(), folder / library.path().filename());
  fs::create_symlink(TRY_CATALOGUES, folder / "locale");
  for (auto const *const environment : {"-u LANGUAGE -u LC_MESSAGES LC_ALL=de_AT.UTF-8",
                                        "-u LC_ALL -u LC_MESSAGES LANG=en_US.UTF-8 LANGUAGE=ja:de"}) {
    auto const ended = run(environment, "--help", (folder / "faxprint.app/faxprint").string());
    EXPECT_NE(ended.said.find("\nEndet mit:\n"), std::string::npos) << environment << "\n" << ended.said;
    EXPECT_NE(ended.said.find("\nExamples:\n"), std::string::npos) << "not in the catalogue";
  }
  fs::remove_all(folder);
}

constexpr char kNoService[] = "CUPS_SERVER=/nowhere/cups.sock";

INSTANTIATE_TEST_SUITE_P(
    Table, ProgramEnds,
    testing::Values(ProgramCase{"help", "", "--help", 0, "--printer"},
                    ProgramCase{"version", "", "--version", 0, "faxprint"},
                    ProgramCase{"unknown_option", "", "--nonsense", 2, "--nonsense"},
                    ProgramCase{"no_file_given", "", "", 2, "faxprint"},
                    ProgramCase{"copies_no_number", "", "--copies x a.pdf", 2, "copies"},
                    ProgramCase{"file_missing", kNoService, "/nowhere/a.pdf", 3, "/nowhere/a.pdf"},
                    ProgramCase{"file_is_a_folder", kNoService, "/", 3, "\"/\""},
                    ProgramCase{"extension_missing", kNoService, "--extension /nowhere/A.bundle " FAXPRINT, 6,
                                "/nowhere/A.bundle"},
                    ProgramCase{"no_service", kNoService, FAXPRINT, 4, "print service"},
                    ProgramCase{"list_without_service", kNoService, "--list", 4, "print service"}),
    [](auto const &info) { return std::string{info.param.name}; });

// The bundle itself may be sound or not: it is not even looked into.
TEST(ProgramWithAnExtension, ThatOthersMayChange) {
  std::string pattern = (std::filesystem::temp_directory_path() / "extension.XXXXXX").string();
  std::filesystem::path const folder = std::filesystem::canonical(mkdtemp(pattern.data()));
  auto const bundle = folder / "Fax.bundle";
  std::filesystem::create_directory(bundle);
  std::filesystem::permissions(bundle, std::filesystem::perms{0777});
  auto const ended = run(kNoService, "--extension " + bundle.string() + " " FAXPRINT);
  std::filesystem::remove_all(folder);
  EXPECT_EQ(ended.code, 6) << ended.said;
  EXPECT_NE(ended.said.find("other users may change \"" + bundle.string() + "\""), std::string::npos) << ended.said;
}

}  // namespace
