// Looks into PDF documents by faxpages, a program of its own: whatever is wrong with a document ends that program and
// nothing else. Every function blocks; any thread.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "host/core/child.h"
#include "host/core/document.h"
#include "host/core/page_range.h"

namespace fax::host {

// Three bytes a pixel (red, green, blue), row by row from the top.
struct PagePicture {
  int width = 0;
  int height = 0;
  std::string pixels;
};

// Pages of one document.
struct PagePart {
  Document document;  // a PDF
  std::vector<PageSpan> spans;
};

class PageTool {
public:
  explicit PageTool(std::filesystem::path program) : program_(std::move(program)) {}

  // How many pages a PDF has, 1 or more. Failure: ExitCode::file (locked by a password, damaged, too large for the time
  // and the memory that it may take), cancelled.
  Result<int> count(Document const &document, Stop const &stop) const;

  // A page (from 1), as large as fits into so many pixels (1 to 4096). Failures as of count().
  Result<PagePicture> picture(Document const &document, int page, int width, int height, Stop const &stop) const;

  // A PDF of these pages, one part behind the other. Failures as of count(); also where the document that came out does
  // not have as many pages as were asked for.
  Result<Document> join(std::vector<PagePart> const &parts, std::string const &title, Stop const &stop) const;

private:
  std::filesystem::path program_;
};

}  // namespace fax::host
