// Cutting and joining documents, by qpdf: pages are copied as they are.
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFAcroFormDocumentHelper.hh>
#include <qpdf/QPDFExc.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <qpdf/QPDFPageObjectHelper.hh>
#include <qpdf/QPDFWriter.hh>
#include <qpdf/QUtil.hh>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <unistd.h>

#include "work.h"

namespace fax::pages {

namespace {

using Pages = std::vector<QPDFPageObjectHelper>;

std::unique_ptr<QPDF> opened(int descriptor) {
  auto document = std::make_unique<QPDF>();
  document->setSuppressWarnings(true);
  document->processFile(path_of(descriptor).c_str());
  return document;
}

// The pages that a range names; throws where the document has fewer.
Pages chosen(Pages const &pages, std::string const &range) {
  Pages some;
  for (int const number : QUtil::parse_numrange(range.c_str(), static_cast<int>(pages.size())))
    some.push_back(pages.at(static_cast<std::size_t>(number - 1)));
  return some;
}

// Leaves a document nothing but the pages of the range, and all that belongs to the document as a whole.
void cut(QPDF &document, std::string const &range) {
  QPDFPageDocumentHelper helper(document);
  Pages const all = helper.getAllPages();
  Pages const kept = chosen(all, range);
  for (auto const &page : all) {
    bool const stays = std::any_of(kept.begin(), kept.end(), [&](QPDFPageObjectHelper one) {
      return one.getObjectHandle().getObjGen() == QPDFPageObjectHelper(page).getObjectHandle().getObjGen();
    });
    if (!stays) helper.removePage(page);
  }
}

// Pages with the fields of forms on them.
void append(QPDF &target, QPDF &source, std::string const &range) {
  QPDFPageDocumentHelper helper(target);
  QPDFAcroFormDocumentHelper form(target);
  QPDFAcroFormDocumentHelper source_form(source);
  for (auto &page : chosen(QPDFPageDocumentHelper(source).getAllPages(), range)) {
    helper.addPage(page, false);
    auto added = helper.getAllPages().back();
    form.fixCopiedAnnotations(added.getObjectHandle(), page.getObjectHandle(), source_form);
  }
}

bool write(QPDF &document, int descriptor) {
  std::FILE *const file = fdopen(dup(descriptor), "wb");
  if (!file) return false;
  QPDFWriter writer(document, "output", file, true);  // closes it
  writer.setPreserveEncryption(false);
  writer.write();
  return true;
}

}  // namespace

int join(std::vector<std::string> const &ranges) try {
  std::vector<std::unique_ptr<QPDF>> documents;  // the target reads from them while it is written
  for (std::size_t at = 0; at < ranges.size(); ++at) documents.push_back(opened(3 + static_cast<int>(at)));
  QPDF &target = *documents.front();
  cut(target, ranges.front());
  for (std::size_t at = 1; at < documents.size(); ++at) append(target, *documents[at], ranges[at]);
  std::size_t const pages = QPDFPageDocumentHelper(target).getAllPages().size();
  if (!write(target, 3 + static_cast<int>(ranges.size()))) return kNotWritten;
  std::printf("%zu\n", pages);
  return kWell;
} catch (QPDFExc const &error) {
  if (error.getErrorCode() == qpdf_e_password) return kLocked;
  return error.getErrorCode() == qpdf_e_system ? kNotWritten : kBroken;
}

}  // namespace fax::pages
