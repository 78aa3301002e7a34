#include "driver/ticket_folder.h"

#include "fax_job.h"

#include <gmock/gmock.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>

namespace fax {
namespace {

using namespace std::string_view_literals;

TEST(NewFile, is_seen_only_when_it_is_whole) {
  test::Folder folder;
  auto const path = folder.path() / "job-1.pdf";
  {
    NewFile file{folder.path()};
    file.write("half of it");
    EXPECT_FALSE(std::filesystem::exists(path));
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "an abandoned file stays";
  {
    NewFile file{folder.path()};
    file.publish("job-1.pdf");
    EXPECT_TRUE(std::filesystem::exists(path));
  }
  EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "one of a job that failed stays";
  {
    NewFile first{folder.path()}, second{folder.path()};
    first.publish("job-1.pdf");
    second.publish("job-1.json");
    remove_unfinished_files();
    EXPECT_TRUE(std::filesystem::is_empty(folder.path())) << "one of a job that was cancelled stays";
    second.keep();
    std::ofstream{folder.path() / "job-1.json"};
    remove_unfinished_files();
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "job-1.json")) << "one that was kept is taken away";
    std::filesystem::remove(folder.path() / "job-1.json");
  }
  {
    NewFile file{folder.path()};
    file.write("all ");
    file.write("of it");
    file.publish("job-1.pdf");
    file.keep();
  }
  EXPECT_EQ(test::contents(path), "all of it");
  struct stat status {};
  ASSERT_EQ(::stat(path.c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST(NewFile, names_the_folder_it_cannot_write_in) {
  try {
    NewFile file{"/nowhere/tickets"};
    FAIL() << "was made";
  } catch (std::system_error const &error) {
    EXPECT_THAT(error.what(), testing::HasSubstr("/nowhere/tickets"));
  }
}

TEST(DocumentExtension, is_that_of_the_first_bytes) {
  EXPECT_STREQ(document_extension("%PDF-1.7\n"), "pdf");
  EXPECT_STREQ(document_extension("%!PS-Adobe-3.0"), "ps");
  EXPECT_STREQ(document_extension("\x89PNG\r\n\x1a\n...."), "png");
  EXPECT_STREQ(document_extension("II*\0\x08"sv), "tiff");
  EXPECT_STREQ(document_extension("%PD"), "bin");
  EXPECT_STREQ(document_extension(""), "bin");
}

// Around the size of the buffer, and in small pieces as a pipe brings them.
TEST(CopyDocument, gives_every_byte_to_both_sides) {
  for (std::size_t size : {0, 1, 65535, 65536, 65537, 200000}) {
    SCOPED_TRACE(size);
    test::Folder folder;
    std::string document = "%PDF-1.4\n";
    for (std::size_t i = document.size(); i < size; ++i) document += static_cast<char>(i * 31 + i / 256);
    document.resize(size);
    auto const source = folder.path() / "source";
    std::ofstream{source, std::ios::binary} << document;
    int const in = ::open(source.c_str(), O_RDONLY | O_CLOEXEC);
    int const out = ::open((folder.path() / "out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    NewFile file{folder.path()};
    auto const copied = copy_document(in, out, file);
    file.publish("copy");
    file.keep();
    ::close(in);
    ::close(out);
    EXPECT_EQ(copied.bytes, size);
    EXPECT_STREQ(copied.extension, size > 5 ? "pdf" : "bin");
    EXPECT_TRUE(test::contents(folder.path() / "copy") == document);
    EXPECT_TRUE(test::contents(folder.path() / "out") == document);
  }
}

}  // namespace
}  // namespace fax
