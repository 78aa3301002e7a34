// What a person types: the command line of faxprint and a list of pages. Input: 0 and arguments, each ended by a NUL;
// or the number of pages and the list.
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "host/core/command_line.h"
#include "host/core/page_range.h"

#include <string>
#include <vector>

namespace {

using namespace fax::host;

void check_sentence(Failure const &failure) {
  FUZZ_CHECK(failure.code == ExitCode::usage && !failure.what.empty());
}

void check_arguments(fuzz::Bytes input) {
  std::vector<std::string> arguments;
  while (!input.empty()) arguments.emplace_back(input.until('\0'));
  auto const parsed = parse_command_line(arguments);
  if (!parsed) return check_sentence(parsed.failure());
  CommandLine const &line = parsed.value();
  FUZZ_CHECK(line.copies >= 1 && line.copies <= 9999);
  FUZZ_CHECK(line.action != CommandLine::Action::print || !line.files.empty());
  FUZZ_CHECK(line.theme == "auto" || line.theme == "light" || line.theme == "dark");
  for (auto const &option : line.options) FUZZ_CHECK(!option.key.empty());
}

// The spans are in order, apart, and inside; written and read again they are the same.
void check_pages(std::string const &text, int pages) {
  auto const parsed = parse_page_range(text, pages);
  if (!parsed) return check_sentence(parsed.failure());
  auto const &spans = parsed.value();
  FUZZ_CHECK(!spans.empty() && spans.back().last <= pages);
  int before = -1;
  for (auto const &[first, last] : spans) {
    FUZZ_CHECK(first > before + 1 && first <= last && holds_page(spans, first) && holds_page(spans, last));
    before = last;
  }
  FUZZ_CHECK(pages_in(spans) >= 1 && pages_in(spans) <= pages);
  auto const again = parse_page_range(page_range_text(spans), pages);
  FUZZ_CHECK(again.ok() && again.value() == spans);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  if (int const pages = input.byte(); pages != 0) check_pages(std::string(input.rest()), pages);
  else check_arguments(input);
  return 0;
}
