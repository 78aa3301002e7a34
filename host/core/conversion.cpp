#include "host/core/conversion.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unistd.h>

#include "host/core/ppd_file.h"
#include "host/core/utf8.h"
#include "texts/texts.h"

namespace fax::host {

namespace {

struct Kind {
  char const *filter;
  char const *type;
};

struct Signature {
  std::string_view beginning;
  Kind kind;
};

using namespace std::string_view_literals;

constexpr Signature kSignatures[] = {
    {"%!", {"gstopdf", "application/postscript"}},
    {"\x04%!", {"gstopdf", "application/postscript"}},
    {"\x89PNG\r\n", {"imagetopdf", "image/png"}},
    {"\xFF\xD8\xFF", {"imagetopdf", "image/jpeg"}},
    {"GIF8", {"imagetopdf", "image/gif"}},
    {"II*\0"sv, {"imagetopdf", "image/tiff"}},
    {"MM\0*"sv, {"imagetopdf", "image/tiff"}},
    {"BM", {"imagetopdf", "image/x-bitmap"}},
};

constexpr std::string_view kControlsOfText = "\t\n\r\f\v\b\x1b";
constexpr Kind kText{"texttopdf", "text/plain"};

constexpr std::array<std::string_view, 18> kLayoutOptions{
    "PageSize", "PageRegion",  "media",     "page-left", "page-right",       "page-top",  "page-bottom",          "cpi",
    "lpi",      "columns",     "wrap",      "prettyprint", "fit-to-page",    "fitplot",   "orientation-requested", "scaling",
    "ppi",      "print-scaling"};

// A text in UTF-8, as far as its beginning tells; it may end in the middle of a character.
bool is_text(std::string_view beginning, bool whole) {
  std::size_t at = 0;
  while (at < beginning.size()) {
    unsigned char const byte = static_cast<unsigned char>(beginning[at]);
    if (byte < 0x20 && kControlsOfText.find(beginning[at]) == std::string_view::npos) return false;
    std::size_t const length = utf8_length(beginning.substr(at));
    if (length == 0) return !whole && beginning.size() - at < 4;
    at += length;
  }
  return true;
}

// what: a text with the document's title in it.
Failure no_pdf(Document const &document, char const *what) {
  return {ExitCode::file, tr(what, document.title()),
          tr("Save it as PDF in the program that made it, and print that file.")};
}

constexpr char const *kNoPdf = mark("The document \"{0}\" cannot be turned into a PDF.");

Failure no_pdf(Document const &document, ChildEnd::How how) {
  switch (how) {
    case ChildEnd::How::stopped: 
      return {ExitCode::cancelled, tr("Turning the document into a PDF was cancelled."), ""};
    case ChildEnd::How::late: 
      return no_pdf(document, mark("The document \"{0}\" cannot be turned into a PDF within a minute."));
    case ChildEnd::How::not_started: 
      return no_pdf(document, mark("The document \"{0}\" cannot be turned into a PDF: the filters of the print service "
                                   "are not installed."));
    default: return no_pdf(document, kNoPdf);
  }
}

Result<Kind> kind_of(Document const &document) {
  std::array<char, 4096> buffer;
  auto const got = document.read(0, buffer);
  if (!got) return got.failure();
  std::string_view const beginning(buffer.data(), got.value());
  for (auto const &[signature, kind] : kSignatures)
    if (beginning.starts_with(signature)) return kind;
  if (is_text(beginning, got.value() == document.size())) return kText;
  return no_pdf(document, mark("The document \"{0}\" cannot be turned into a PDF: its kind is not known."));
}

// The PPD file of the queue, for a filter to read; empty when there is none.
Descriptor ppd_of(Server const &server, std::string const &queue) {
  Descriptor file = unnamed_file();
  return file && !queue.empty() && PpdFile::copy_of_queue(server, queue, file.get()) ? std::move(file) : Descriptor();
}

// As CUPS writes a job's options for a filter.
std::string option_words(std::vector<Setting> const &options) {
  std::string words;
  for (auto const &[key, value] : options) {
    words += (words.empty() ? "" : " ") + key + "='";
    for (char const letter : value) {
      if (letter == '\'' || letter == '\\') words += '\\';
      words += letter;
    }
    words += '\'';
  }
  return words;
}

}  // namespace

std::vector<Setting> layout_options(std::vector<Setting> const &options) {
  std::vector<Setting> some;
  for (auto const &option : options)
    if (std::find(kLayoutOptions.begin(), kLayoutOptions.end(), option.key) != kLayoutOptions.end())
      some.push_back(option);
  return some;
}

Result<Document> as_pdf(Document const &document, Server const &server, PageLayout const &layout, Stop const &stop) {
  if (document.format() == "application/pdf") return document;
  auto const kind = kind_of(document);
  if (!kind) return kind.failure();
  auto const input = document.share();
  if (!input) return input.failure();
  Descriptor output = unnamed_file();
  if (!output)
    return no_pdf(document, mark("The document \"{0}\" cannot be turned into a PDF: there is no room for temporary "
                                 "files."));
  Descriptor const ppd = ppd_of(server, layout.queue);

  Child filter;
  filter.words = {std::string(CUPS_SERVERBIN "/filter/") + kind.value().filter, "1", "faxprint", document.title(), "1",
                  option_words(layout.options), "/dev/fd/3"};
  filter.environment = {std::string("CONTENT_TYPE=") + kind.value().type, "FINAL_CONTENT_TYPE=application/pdf",
                        "CUPS_SERVERBIN=" CUPS_SERVERBIN};
  filter.handed = {input.value().get()};
  if (ppd) {
    filter.environment.push_back("PPD=/dev/fd/4");
    filter.handed.push_back(ppd.get());
  }
  filter.output = output.get();
  ChildEnd const end = run_child(filter, stop);
  if (!end.well()) return no_pdf(document, end.how);
  auto made = Document::of_file(std::move(output), document.title());
  if (made && made.value().format() != "application/pdf") return no_pdf(document, ChildEnd::How::exited);
  return made;
}

}  // namespace fax::host
