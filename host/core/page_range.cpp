#include "host/core/page_range.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "texts/texts.h"

namespace fax::host {

namespace {

Failure no_list(std::string_view part, int pages) {
  return {ExitCode::usage, tr("\"{0}\" is no page and no range of pages.", part),
          pages > 1 ? tr("Type pages like this: 1-{0}, or 1,{0}.", pages)
                    : tr("The document has one page: type 1, or choose all pages.")};
}

Failure no_page(std::string_view number, int pages) {
  return {ExitCode::usage, tr("There is no page {0}.", number),
          pages == 1 ? tr("The document has one page.") : tr("Choose from pages 1 to {0}.", pages)};
}

std::string_view trimmed(std::string_view text) {
  auto const first = text.find_first_not_of(" \t");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

bool is_number(std::string_view text) {
  return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

// A page of the job; a number too large for an int is none either.
std::optional<int> page_named(std::string_view number, int pages) {
  int page = 0;
  auto const [end, error] = std::from_chars(number.data(), number.data() + number.size(), page);
  if (error != std::errc() || page < 1 || page > pages) return std::nullopt;
  return page;
}

Result<PageSpan> parse_span(std::string_view part, int pages) {
  std::size_t const dash = part.find('-');
  std::string_view const first = trimmed(part.substr(0, dash));
  std::string_view const last = dash == std::string_view::npos ? first : trimmed(part.substr(dash + 1));
  bool const open_end = dash != std::string_view::npos && last.empty();
  if (!is_number(first) || !(open_end || is_number(last))) return no_list(part, pages);
  auto const from = page_named(first, pages);
  if (!from) return no_page(first, pages);
  auto const to = open_end ? pages : page_named(last, pages);
  if (!to) return no_page(last, pages);
  if (*from > *to)
    return Failure{ExitCode::usage, tr("The range \"{0}\" ends before it begins.", part),
                   tr("Type it as {0}-{1}.", *to, *from)};
  return PageSpan{*from, *to};
}

std::vector<PageSpan> joined(std::vector<PageSpan> spans) {
  std::sort(spans.begin(), spans.end(), [](auto const &one, auto const &other) { return one.first < other.first; });
  std::vector<PageSpan> result;
  for (auto const &span : spans) {
    if (!result.empty() && span.first <= result.back().last + 1)
      result.back().last = std::max(result.back().last, span.last);
    else
      result.push_back(span);
  }
  return result;
}

}  // namespace

Result<std::vector<PageSpan>> parse_page_range(std::string const &text, int pages) {
  std::string_view rest = trimmed(text);
  if (rest.empty()) return std::vector<PageSpan>{{1, pages}};
  std::vector<PageSpan> spans;
  for (;;) {
    std::size_t const comma = rest.find(',');
    auto const span = parse_span(trimmed(rest.substr(0, comma)), pages);
    if (!span) return span.failure();
    spans.push_back(span.value());
    if (comma == std::string_view::npos) return joined(std::move(spans));
    rest.remove_prefix(comma + 1);
  }
}

std::string page_range_text(std::vector<PageSpan> const &spans) {
  std::string text;
  for (auto const &[first, last] : spans) {
    if (!text.empty()) text += ',';
    text += std::to_string(first);
    if (last > first) text += "-" + std::to_string(last);
  }
  return text;
}

int pages_in(std::vector<PageSpan> const &spans) {
  int pages = 0;
  for (auto const &span : spans) pages += span.last - span.first + 1;
  return pages;
}

bool holds_page(std::vector<PageSpan> const &spans, int page) {
  return std::any_of(spans.begin(), spans.end(),
                     [&](PageSpan const &span) { return span.first <= page && page <= span.last; });
}

}  // namespace fax::host
