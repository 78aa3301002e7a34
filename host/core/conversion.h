// Texts, images and PostScript as PDF, by the filters of the print service.
#pragma once

#include <string>
#include <vector>

#include "host/core/child.h"
#include "host/core/document.h"
#include "host/core/server.h"
#include "host/core/setting.h"

namespace fax::host {

// What a document that is no PDF is laid out for.
struct PageLayout {
  std::string queue;             // its PPD file knows the paper; "" for none
  std::vector<Setting> options;  // of the job

  bool operator==(PageLayout const &) const = default;
};

// Of a job's options those that filters lay pages out by: the paper, margins, the number of characters in an inch.
std::vector<Setting> layout_options(std::vector<Setting> const &options);

// The document as PDF: a PDF as it is, PostScript, images and texts as the print service's filters turn them out.
// Failure: ExitCode::file (no such filter, a kind that none of them reads, a filter that failed or took more than a
// minute), cancelled.
Result<Document> as_pdf(Document const &document, Server const &server, PageLayout const &layout, Stop const &stop);

}  // namespace fax::host
