#include <gmock/gmock.h>

#include "host/core/uri_list.h"

using namespace fax::host;
using testing::ElementsAreArray;

namespace {

TEST(UriList, TellsFilesOfThisComputerFromOthers) {
  using Strings = std::vector<std::string>;
  struct Case {
    std::string_view text;
    Strings paths, others;
  };
  Case const cases[] = {
      {"", {}, {}},
      {"file:///a.pdf", {"/a.pdf"}, {}},
      {"# remark\r\nfile:///a.pdf\r\n\r\nfile:/b.pdf\n", {"/a.pdf", "/b.pdf"}, {}},
      {"file://localhost/a\nfile://desk/b\nfile://other/c", {"/a", "/b"}, {"file://other/c"}},
      {"file:///%C3%9Cber%20100%25", {"/\xc3\x9c" "ber 100%"}, {}},
      {"file:///a?x#y", {"/a"}, {}},
      {"file:///a%2\nfile:///a%zz\nfile:///a%00b\nfile:a", {}, {"file:///a%2", "file:///a%zz", "file:///a%00b", "file:a"}},
      {"https://example.org/x.pdf\r\nplain", {}, {"https://example.org/x.pdf", "plain"}},
      {std::string_view("file:///a\0file:///b\0", 20), {"/a", "/b"}, {}},
  };
  for (Case const &one : cases) {
    DroppedFiles const files = read_uri_list(one.text, "desk");
    EXPECT_THAT(files.paths, ElementsAreArray(one.paths)) << one.text;
    EXPECT_THAT(files.others, ElementsAreArray(one.others)) << one.text;
  }
}

}  // namespace
