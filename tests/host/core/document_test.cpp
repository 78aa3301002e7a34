#include "host/core/document.h"

#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "host/core/utf8.h"

namespace fax::host {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class DocumentFiles : public testing::Test {
protected:
  DocumentFiles() {
    std::string name = (fs::temp_directory_path() / "document.XXXXXX").string();
    folder_ = mkdtemp(name.data());
  }
  ~DocumentFiles() override { fs::remove_all(folder_); }

  std::string write(std::string const &name, std::string const &bytes) const {
    std::ofstream(folder_ / name, std::ios::binary) << bytes;
    return (folder_ / name).string();
  }

  static std::string refusal(std::string const &path) {
    auto const document = Document::open(path);
    EXPECT_FALSE(document.ok());
    if (document.ok()) return "";
    EXPECT_EQ(document.failure().code, ExitCode::file);
    EXPECT_THAT(document.failure().what, HasSubstr(path));
    return document.failure().what;
  }

  fs::path folder_;
};

TEST_F(DocumentFiles, WhatCannotBeSentIsToldApart) {
  EXPECT_THAT(refusal((folder_ / "none.pdf").string()), HasSubstr("does not exist"));
  EXPECT_THAT(refusal((folder_ / "file").string() + "/below"), HasSubstr("does not exist"));
  EXPECT_THAT(refusal(folder_.string()), HasSubstr("is a folder"));
  EXPECT_THAT(refusal(write("empty.pdf", "")), HasSubstr("is empty"));
  std::string const pipe = (folder_ / "pipe").string();
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_THAT(refusal(pipe), HasSubstr("no regular file"));
}

TEST_F(DocumentFiles, UnreadableFile) {
  if (geteuid() == 0) GTEST_SKIP() << "root reads every file";
  std::string const path = write("secret.pdf", "x");
  fs::permissions(path, fs::perms::none);
  EXPECT_THAT(refusal(path), HasSubstr("may not be read"));
}

TEST_F(DocumentFiles, StaysOpenWhenTheFileIsDeleted) {
  auto document = Document::open(write("Report 3.pdf", "%PDF-1.4\nbody"));
  ASSERT_TRUE(document.ok());
  fs::remove(folder_ / "Report 3.pdf");
  Document const copy = document.value();
  std::array<char, 64> buffer;
  auto const got = copy.read(5, buffer);
  ASSERT_TRUE(got.ok());
  EXPECT_EQ(std::string(buffer.data(), got.value()), "1.4\nbody");
  EXPECT_EQ(copy.size(), 13u);
  EXPECT_EQ(copy.title(), "Report 3");
}

TEST_F(DocumentFiles, FormatByFirstBytes) {
  EXPECT_EQ(Document::open(write("a", "%PDF-1.4")).value().format(), "application/pdf");
  EXPECT_EQ(Document::open(write("b", std::string(500, '\0') + "%PDF-1.4")).value().format(), "application/pdf");
  EXPECT_EQ(Document::open(write("c", "%!PS-Adobe-3.0")).value().format(), "application/postscript");
  EXPECT_EQ(Document::open(write("d.pdf", "plain")).value().format(), "application/octet-stream");
  EXPECT_EQ(Document::of_bytes("%PDF-1.4", "").format(), "application/pdf");
}

TEST(DocumentInMemory, ReadsWithinItsBytes) {
  Document const document = Document::of_bytes("abcdef", "");
  std::array<char, 4> buffer;
  EXPECT_EQ(document.read(4, buffer).value(), 2u);
  EXPECT_EQ(document.read(6, buffer).value(), 0u);
  EXPECT_EQ(document.read(1000, buffer).value(), 0u);
  EXPECT_EQ(document.title(), "Untitled");
}

TEST(Utf8, Table) {
  for (char const *good : {"", "plain", "é日😀", "\xf4\x8f\xbf\xbf", "\xed\x9f\xbf"})
    EXPECT_TRUE(is_utf8(good)) << good;
  for (char const *bad : {"\x80", "\xc0\x80", "\xe0\x80\xaf", "\xed\xa0\x80", "\xf4\x90\x80\x80", "\xf5\x80\x80\x80",
                          "a\xe3\x81", "\xc3("})
    EXPECT_FALSE(is_utf8(bad)) << bad;
}

TEST(DisplayTitle, Table) {
  EXPECT_EQ(display_title("/a/b/Report 3.pdf"), "Report 3");
  EXPECT_EQ(display_title("archive.tar.gz"), "archive.tar");
  EXPECT_EQ(display_title(".pdf"), ".pdf");
  EXPECT_EQ(display_title(""), "Untitled");
  EXPECT_EQ(display_title("a\nb\x7f.pdf"), "a_b_");
  EXPECT_EQ(display_title("\xff\xc3(.pdf"), "__(");
  EXPECT_EQ(display_title("報告書.pdf"), "報告書");
  std::string const title = display_title("x" + [] {
    std::string long_name;
    for (int at = 0; at < 200; ++at) long_name += "é";
    return long_name;
  }());
  EXPECT_EQ(title.size(), 255u);
  EXPECT_EQ(title.substr(253), "é");
  EXPECT_EQ(display_title([] {
              std::string long_name;
              for (int at = 0; at < 200; ++at) long_name += "é";
              return long_name;
            }()).size(),
            254u);
}

TEST(Document, OfAStreamIsKeptWholeAndAnEmptyOneRefused) {
  std::string const text = std::string(200'000, 'x') + "end";
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  std::thread writer([&] {
    EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(ends[1]);
  });
  auto const document = Document::of_stream(ends[0], "-", "Standard Input");
  writer.join();
  ASSERT_TRUE(document);
  std::string kept(document.value().size(), '\0');
  EXPECT_EQ(document.value().read(0, kept).value(), text.size());
  EXPECT_EQ(kept, text);
  EXPECT_EQ(document.value().title(), "Standard Input");
  auto const nothing = Document::of_stream(ends[0], "-", "");
  ASSERT_FALSE(nothing);
  EXPECT_EQ(nothing.failure().code, ExitCode::file);
  EXPECT_NE(nothing.failure().what.find("\"-\" is empty"), std::string::npos);
  close(ends[0]);
}

}  // namespace
}  // namespace fax::host
