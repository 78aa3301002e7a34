// The documents of a job, what is known of their pages, and which pages go out.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "host/core/conversion.h"
#include "host/core/document.h"
#include "host/core/page_range.h"
#include "host/core/page_tool.h"

namespace fax::host {

// What reading a document came to: its pages as PDF, or why they cannot be told.
struct PagesRead {
  std::optional<Document> pdf;
  int pages = 0;  // 1 or more with a pdf
  std::optional<Failure> problem;
};

// Turns a document into a PDF and counts its pages. Blocks; any thread.
PagesRead read_pages(PageTool const &tool, Document const &document, Server const &server, PageLayout const &layout,
                     Stop const &stop);

struct PlannedDocument {
  Document source;
  std::optional<PagesRead> read;  // empty until it was read
};

// A page of the job as a page of one of its documents, both from their first: documents from 0, pages from 1.
struct PageSpot {
  std::size_t document = 0;
  int page = 1;

  bool operator==(PageSpot const &) const = default;
};

// One thread at a time; a copy may go to another one.
class PrintPlan {
public:
  explicit PrintPlan(std::vector<Document> const &documents);

  std::vector<PlannedDocument> const &documents() const { return documents_; }
  void add(Document document);
  // The last document stays.
  void remove(std::size_t at);

  // What pages are laid out for. True when documents have to be read again for it: those that are no PDF.
  bool use_layout(PageLayout const &layout);
  PageLayout const &layout() const { return layout_; }

  // The first document that was not read yet.
  std::optional<std::size_t> unread() const;
  void take(std::size_t at, PagesRead read);
  // Why the pages of a document cannot be told, of the first one like that.
  std::optional<Failure> problem() const;

  // All pages of all documents, as far as they are known: nullopt while one is not read or cannot be.
  std::optional<int> pages() const;
  // Page from 1 of the documents before the first whose pages are not known; nullopt for no such page.
  std::optional<PageSpot> spot(int page) const;
  int first_page_of(std::size_t document) const;

  // "Report", "Report, Letter", "Report and 2 more"; the first title alone where that would be too long for a job.
  std::string title() const;

  // The range as typed, "" for all pages. Checked by chosen() only.
  void use_range(std::string range) { range_ = std::move(range); }
  std::string const &range() const { return range_; }
  // Failure (ExitCode::usage, file): a list that is none, a page that there is not, pages that are not known.
  Result<std::vector<PageSpan>> chosen() const;

  // True when the one document goes out as it came: a whole PDF, or one that only the print service may be able to read.
  bool goes_as_it_is() const;

  // Reads what it has to and answers what goes out: the document as it is, or a PDF of the chosen pages. Blocks. Failure:
  // ExitCode::cancelled, and as chosen() and PageTool::join().
  Result<Document> prepare(PageTool const &tool, Server const &server, Stop const &stop);

private:
  Result<Document> outgoing(PageTool const &tool, Stop const &stop) const;

  std::vector<PlannedDocument> documents_;
  PageLayout layout_;
  std::string range_;
};

}  // namespace fax::host
