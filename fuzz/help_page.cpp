// Pages of a help book, and the links in them. Input: the page.
#include "fuzz/check.h"
#include "host/core/utf8.h"
#include "host/help_page.h"

#include <cstdint>

namespace {

using namespace fax::host;

void check_run(HelpRun const &run) {
  FUZZ_CHECK(is_utf8(run.text));
  if (run.link.empty()) return;
  // A link stays where links may lead: at a file of an absolute path, or nowhere.
  HelpTarget const target = resolve_help_link("/book/English.lproj/Index.htm", run.link);
  FUZZ_CHECK(target.path.empty() || target.path.front() == '/');
  FUZZ_CHECK(target.path.find('\0') == std::string::npos);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  auto const page = read_help_page({reinterpret_cast<char const *>(data), size});
  if (!page) return 0;
  FUZZ_CHECK(is_utf8(page->title));
  for (auto const &block : page->blocks) {
    FUZZ_CHECK(block.kind != HelpBlock::Kind::heading || (block.level >= 1 && block.level <= 6));
    FUZZ_CHECK(block.kind == HelpBlock::Kind::row || block.cells.size() == 1);
    for (auto const &cell : block.cells)
      for (auto const &run : cell) check_run(run);
  }
  return 0;
}
