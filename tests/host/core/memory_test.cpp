#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sys/stat.h>
#include <unistd.h>

#include "host/core/memory.h"

namespace fax::host {
namespace {

namespace fs = std::filesystem;

class MemoryFile : public testing::Test {
protected:
  MemoryFile() { fs::remove_all(folder_); }
  ~MemoryFile() override { fs::remove_all(folder_); }

  void write(std::string const &text) const {
    fs::create_directories(file_.parent_path());
    std::ofstream(file_) << text;
  }

  fs::path const folder_ = testing::TempDir() + "/faxprint-memory-" + std::to_string(getpid());
  fs::path const file_ = folder_ / "directfax" / "faxprint.json";
};

TEST_F(MemoryFile, KeepsWhatItIsGivenForItsOwnerOnlyUntilForgotten) {
  EXPECT_EQ(load_memory(file_).value(), Memory{});
  Memory const memory{"Büro \"2\"", {{"fax", {{"Duplex", "None"}, {"PageSize", "A4"}}}}, WindowSize{800, 600}};
  EXPECT_FALSE(save_memory(memory, file_));
  EXPECT_EQ(load_memory(file_).value(), memory);
  struct stat about {};
  ASSERT_EQ(stat(file_.c_str(), &about), 0);
  EXPECT_EQ(about.st_mode & 0777, 0600u);
  EXPECT_EQ(std::distance(fs::directory_iterator(file_.parent_path()), fs::directory_iterator()), 1);
  EXPECT_FALSE(forget_memory(file_));
  EXPECT_FALSE(forget_memory(file_));
  EXPECT_EQ(load_memory(file_).value(), Memory{});
}

TEST_F(MemoryFile, ThatIsBrokenIsToldOfAndReplaced) {
  for (char const *text : {"", "{", "[1]", "{}", "{\"version\":2}", "{\"version\":1,\"printer\":7}",
                           "{\"version\":1,\"options\":[1]}", "{\"version\":1,\"options\":{\"a\":{\"b\":1}}}",
                           "{\"version\":1,\"window\":{\"width\":\"wide\"}}", "\xff\xfe"}) {
    write(text);
    auto const memory = load_memory(file_);
    ASSERT_FALSE(memory.ok()) << text;
    EXPECT_THAT(memory.failure().text(), testing::HasSubstr("--forget")) << text;
    EXPECT_FALSE(save_memory({"fax", {}, {}}, file_)) << text;
    EXPECT_EQ(load_memory(file_).value().printer, "fax") << text;
  }
  write("{\"version\":1,\"window\":{\"width\":-5,\"height\":100000}}");
  EXPECT_FALSE(load_memory(file_).value().window);
}

TEST_F(MemoryFile, ThatCannotBeWrittenIsSaid) {
  fs::create_directories(folder_);
  std::ofstream(folder_ / "directfax") << "no folder";
  auto const failed = save_memory({}, file_);
  ASSERT_TRUE(failed);
  EXPECT_THAT(failed->what, testing::HasSubstr(file_.string()));
}

TEST(Memory, LeavesOutWhatAPersonTyped) {
  std::vector<Setting> const choices{{"Duplex", "None"}, {"JobPIN", "Custom.1234"}, {"Lock", "{Pin=1234}"}};
  EXPECT_EQ(worth_remembering(choices), (std::vector<Setting>{{"Duplex", "None"}}));
}

struct MarkCase {
  char const *name;
  std::vector<Setting> remembered;
  std::vector<Setting> given;
  char const *duplex;
  char const *quality;
};

class Remembered : public testing::TestWithParam<MarkCase> {};

TEST_P(Remembered, OptionsAreMarkedWhereTheyFit) {
  auto ppd = PpdFile::open(TEST_DATA "/fax.ppd", "fax");
  ASSERT_TRUE(ppd);
  Queue queue;
  queue.name = "fax";
  Memory const memory{"fax", {{"fax", GetParam().remembered}}, {}};
  EXPECT_FALSE(mark_remembered(*ppd.value(), memory, queue, GetParam().given));
  EXPECT_EQ(ppd.value()->marked_choice("Duplex"), GetParam().duplex);
  EXPECT_EQ(ppd.value()->marked_choice("QXFaxImageQuality"), GetParam().quality);
}

INSTANTIATE_TEST_SUITE_P(
    Table, Remembered,
    testing::Values(MarkCase{"marked", {{"Duplex", "DuplexNoTumble"}, {"QXFaxImageQuality", "Fine"}}, {},
                             "DuplexNoTumble", "Fine"},
                    MarkCase{"given_counts_more", {{"Duplex", "DuplexNoTumble"}}, {{"duplex", "None"}}, "None",
                             "Standard"},
                    MarkCase{"gone_option", {{"Stapler", "On"}, {"QXFaxImageQuality", "Fine"}}, {}, "None", "Fine"},
                    MarkCase{"gone_choice", {{"QXFaxImageQuality", "Ultra"}}, {}, "None", "Standard"},
                    MarkCase{"conflict_with_given", {{"MediaType", "Transparency"}}, {{"QXFaxImageQuality", "Fine"}},
                             "None", "Fine"}),
    [](auto const &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace fax::host
