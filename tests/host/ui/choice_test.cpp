// Which extension belongs to a printer, and the document to a file.
#include "host/extension_choice.h"
#include "host/output.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace fax::host {
namespace {

namespace fs = std::filesystem;

class Folder : public testing::Test {
 protected:
  Folder() : folder_(fs::path{testing::TempDir()} / "choice") {
    fs::remove_all(folder_);
    fs::create_directories(folder_ / "Ppd.bundle");
    fs::create_directories(folder_ / "DirectFax.bundle");
    fs::create_directories(folder_ / "faxprint.app");
  }
  ~Folder() override { fs::remove_all(folder_); }

  static std::string content(fs::path const &path) {
    std::ifstream file{path};
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  fs::path folder_;
};

using Choice = Folder;
using Output = Folder;

TEST_F(Choice, FollowsTheOrder) {
  auto const application = folder_ / "faxprint.app";
  std::vector<std::string> const of_ppd{"/nowhere/First.bundle", (folder_ / "Ppd.bundle").string()};
  EXPECT_EQ(choose_extension(of_ppd, "/x/Line.bundle", true, application), folder_ / "Ppd.bundle");
  EXPECT_EQ(choose_extension({"/nowhere/First.bundle"}, "/x/Line.bundle", true, application), "/x/Line.bundle");
  EXPECT_EQ(choose_extension({}, std::nullopt, true, application), folder_ / "DirectFax.bundle");
  // A printer that cannot fax would otherwise open the fax dialog on every job.
  EXPECT_EQ(choose_extension({}, std::nullopt, false, application), std::nullopt);
  fs::remove(folder_ / "DirectFax.bundle");
  EXPECT_EQ(choose_extension({}, std::nullopt, true, application), std::nullopt);
}

TEST_F(Output, PdfIsWrittenAsItIs) {
  std::string const bytes = "%PDF-1.4\n" + std::string(200000, 'x');
  auto const path = folder_ / "out.pdf";
  std::ofstream{path} << "old";
  EXPECT_FALSE(write_output(Document::of_bytes(bytes, "a"), path.string(), {}));
  EXPECT_EQ(content(path), bytes);
}

TEST_F(Output, CancelAndFailureLeaveTheOldFile) {
  auto const path = folder_ / "out.pdf";
  std::ofstream{path} << "old";
  auto const document = Document::of_bytes("%PDF-1.4\n" + std::string(200000, 'x'), "a");
  auto const cancelled =
      write_output(document, path.string(), [](std::uint64_t done, std::uint64_t) { return done == 0; });
  ASSERT_TRUE(cancelled);
  EXPECT_EQ(cancelled->code, ExitCode::cancelled);
  EXPECT_EQ(content(path), "old");
  auto const failed = write_output(document, (folder_ / "no" / "out.pdf").string(), {});
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->code, ExitCode::file);
  int left = 0;
  for (auto const &entry : fs::directory_iterator{folder_}) left += entry.is_regular_file();
  EXPECT_EQ(left, 1);
}

}  // namespace
}  // namespace fax::host
