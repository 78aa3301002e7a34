#include "host/core/print_plan.h"

#include <algorithm>

#include "texts/texts.h"

namespace fax::host {

namespace {

constexpr std::size_t kLongestTitle = 255;  // bytes; the longest job name that IPP allows

bool is_blank(std::string const &text) { return text.find_first_not_of(" \t") == std::string::npos; }

bool is_pdf(PlannedDocument const &planned) { return planned.source.format() == "application/pdf"; }

// What of the spans lies within the pages offset+1..offset+pages, counted from 1 there.
std::vector<PageSpan> within(std::vector<PageSpan> const &spans, int offset, int pages) {
  std::vector<PageSpan> some;
  for (auto const &span : spans) {
    int const first = std::max(span.first - offset, 1);
    int const last = std::min(span.last - offset, pages);
    if (first <= last) some.push_back({first, last});
  }
  return some;
}

}  // namespace

PagesRead read_pages(PageTool const &tool, Document const &document, Server const &server, PageLayout const &layout,
                     Stop const &stop) {
  auto pdf = as_pdf(document, server, layout, stop);
  if (!pdf) return {std::nullopt, 0, pdf.failure()};
  auto const pages = tool.count(pdf.value(), stop);
  if (!pages) return {std::nullopt, 0, pages.failure()};
  return {pdf.value(), pages.value(), std::nullopt};
}

PrintPlan::PrintPlan(std::vector<Document> const &documents) {
  for (auto const &document : documents) add(document);
}

void PrintPlan::add(Document document) { documents_.push_back({std::move(document), std::nullopt}); }

void PrintPlan::remove(std::size_t at) {
  if (documents_.size() > 1 && at < documents_.size())
    documents_.erase(documents_.begin() + static_cast<std::ptrdiff_t>(at));
}

bool PrintPlan::use_layout(PageLayout const &layout) {
  if (layout == layout_) return false;
  layout_ = layout;
  bool changed = false;
  for (auto &planned : documents_) {
    if (is_pdf(planned)) continue;
    changed = changed || planned.read;
    planned.read.reset();
  }
  return changed;
}

std::optional<std::size_t> PrintPlan::unread() const {
  for (std::size_t at = 0; at < documents_.size(); ++at)
    if (!documents_[at].read) return at;
  return std::nullopt;
}

void PrintPlan::take(std::size_t at, PagesRead read) { documents_.at(at).read = std::move(read); }

std::optional<Failure> PrintPlan::problem() const {
  for (auto const &planned : documents_)
    if (planned.read && planned.read->problem) return planned.read->problem;
  return std::nullopt;
}

std::optional<int> PrintPlan::pages() const {
  int pages = 0;
  for (auto const &planned : documents_) {
    if (!planned.read || planned.read->problem) return std::nullopt;
    pages += planned.read->pages;
  }
  return pages;
}

std::optional<PageSpot> PrintPlan::spot(int page) const {
  for (std::size_t at = 0; page >= 1 && at < documents_.size(); ++at) {
    auto const &read = documents_[at].read;
    if (!read || read->problem) return std::nullopt;
    if (page <= read->pages) return PageSpot{at, page};
    page -= read->pages;
  }
  return std::nullopt;
}

int PrintPlan::first_page_of(std::size_t document) const {
  int page = 1;
  for (std::size_t at = 0; at < document; ++at) page += documents_[at].read ? documents_[at].read->pages : 0;
  return page;
}

std::string PrintPlan::title() const {
  std::string const &first = documents_.front().source.title();
  if (documents_.size() == 1) return first;
  std::string const all = documents_.size() == 2
                              ? first + ", " + documents_[1].source.title()
                              //: The title of a job of several documents: the first one's, and how many others.
                              : tr("{0} and {1} more", first, documents_.size() - 1);
  return all.size() <= kLongestTitle ? all : first;
}

Result<std::vector<PageSpan>> PrintPlan::chosen() const {
  if (auto const known = pages()) return parse_page_range(range_, *known);
  auto failed = problem().value_or(Failure{ExitCode::file, tr("The pages are still being read."), tr("Try again soon.")});
  failed.advice = documents_.size() > 1 ? tr("Print this document by itself.") : tr("Print all pages of it.");
  return failed;
}

bool PrintPlan::goes_as_it_is() const {
  if (documents_.size() > 1 || !is_blank(range_)) return false;
  auto const &only = documents_.front();
  return is_pdf(only) || (only.read && only.read->problem);
}

Result<Document> PrintPlan::prepare(PageTool const &tool, Server const &server, Stop const &stop) {
  for (auto at = unread(); at && !goes_as_it_is(); at = unread()) {
    auto read = read_pages(tool, documents_[*at].source, server, layout_, stop);
    if (read.problem && read.problem->code == ExitCode::cancelled) return *read.problem;
    take(*at, std::move(read));
  }
  return outgoing(tool, stop);
}

Result<Document> PrintPlan::outgoing(PageTool const &tool, Stop const &stop) const {
  if (goes_as_it_is()) return documents_.front().source;
  auto const spans = chosen();
  if (!spans) return spans.failure();
  if (documents_.size() == 1 && pages_in(spans.value()) == pages()) return *documents_.front().read->pdf;
  std::vector<PagePart> parts;
  int offset = 0;
  for (auto const &planned : documents_) {
    auto const some = within(spans.value(), offset, planned.read->pages);
    if (!some.empty()) parts.push_back({*planned.read->pdf, some});
    offset += planned.read->pages;
  }
  return tool.join(parts, title(), stop);
}

}  // namespace fax::host
