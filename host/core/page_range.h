// Which pages of a job go out.
#pragma once

#include <string>
#include <vector>

#include "host/core/failure.h"

namespace fax::host {

// Pages first..last, both counted from 1 and both meant.
struct PageSpan {
  int first = 1;
  int last = 1;

  bool operator==(PageSpan const &) const = default;
};

// Reads a list such as "1-3, 5" or "4-" (to the end) for a job of so many pages (1 or more). The answer is in the order
// of the pages, every page once, neighbours joined: as CUPS reads "page-ranges". "" and blanks mean all pages. Failure
// (ExitCode::usage): no such list, or a page that the job does not have; the advice is a list that would do.
Result<std::vector<PageSpan>> parse_page_range(std::string const &text, int pages);

// "1-3,5".
std::string page_range_text(std::vector<PageSpan> const &spans);

int pages_in(std::vector<PageSpan> const &spans);
bool holds_page(std::vector<PageSpan> const &spans, int page);

}  // namespace fax::host
