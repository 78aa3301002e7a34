#include "host/core/page_tool.h"

#include <algorithm>
#include <charconv>
#include <cstdio>

#include "texts/texts.h"

namespace fax::host {

namespace {

constexpr std::chrono::seconds kLookLimit{20};
constexpr std::chrono::seconds kJoinLimit{300};

// Exit codes of faxpages, as host/pages/work.h has them.
enum Code { kLocked = 3, kNotWritten = 6 };

Failure cannot_look(std::string const &title, ChildEnd const &end) {
  switch (end.how) {
    case ChildEnd::How::stopped: return {ExitCode::cancelled, tr("Reading the pages was cancelled."), ""};
    case ChildEnd::How::late:
      return {ExitCode::file, tr("The document \"{0}\" takes too long to read.", title), ""};
    case ChildEnd::How::not_started:
      return {ExitCode::file, tr("Pages cannot be shown: a part of the program is missing."),
              tr("Install the program again.")};
    case ChildEnd::How::crashed:
      return {ExitCode::file, tr("The document \"{0}\" is damaged, or too large to be shown.", title), ""};
    case ChildEnd::How::exited: break;
  }
  if (end.code == kLocked) return {ExitCode::file, tr("The document \"{0}\" is locked by a password.", title), ""};
  if (end.code == kNotWritten)
    return {ExitCode::file, tr("The pages to send cannot be kept in a temporary file."),
            tr("Make room in the folder for temporary files.")};
  return {ExitCode::file, tr("The document \"{0}\" is damaged.", title), ""};
}

// The number that a program's answer begins with; 0 for none.
int number_in(std::string const &said) {
  int number = 0;
  std::from_chars(said.data(), said.data() + said.size(), number);
  return number;
}

}  // namespace

Result<int> PageTool::count(Document const &document, Stop const &stop) const {
  auto const file = document.share();
  if (!file) return file.failure();
  Child look{{program_.string(), "count"}, {}, {file.value().get()}};
  look.limit = kLookLimit;
  ChildEnd const end = run_child(look, stop);
  int const pages = end.well() ? number_in(end.said) : 0;
  if (pages < 1) return cannot_look(document.title(), end);
  return pages;
}

Result<PagePicture> PageTool::picture(Document const &document, int page, int width, int height,
                                      Stop const &stop) const {
  auto const file = document.share();
  if (!file) return file.failure();
  Child look{{program_.string(), "picture", std::to_string(page), std::to_string(width), std::to_string(height)},
             {},
             {file.value().get()}};
  look.limit = kLookLimit;
  look.most_said = static_cast<std::size_t>(width + 1) * static_cast<std::size_t>(height + 1) * 3 + 64;
  ChildEnd end = run_child(look, stop);
  PagePicture picture;
  int header = 0;
  bool const understood =
      end.well() && std::sscanf(end.said.c_str(), "%d %d%n", &picture.width, &picture.height, &header) == 2 &&
      picture.width > 0 && picture.height > 0 &&
      end.said.size() == static_cast<std::size_t>(header) + 1 +
                             static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * 3;
  if (!understood) return cannot_look(document.title(), end);
  picture.pixels = end.said.substr(static_cast<std::size_t>(header) + 1);
  return picture;
}

Result<Document> PageTool::join(std::vector<PagePart> const &parts, std::string const &title, Stop const &stop) const {
  Child work{{program_.string(), "join"}, {}, {}};
  work.limit = kJoinLimit;
  std::vector<Descriptor> files;
  int expected = 0;
  for (auto const &part : parts) {
    auto file = part.document.share();
    if (!file) return file.failure();
    files.push_back(std::move(file.value()));
    work.handed.push_back(files.back().get());
    work.words.push_back(page_range_text(part.spans));
    expected += pages_in(part.spans);
  }
  Descriptor output = unnamed_file();
  if (!output)
    return Failure{ExitCode::file, tr("No temporary file can be made."),
                   tr("Make room in the folder for temporary files.")};
  work.handed.push_back(output.get());
  ChildEnd const end = run_child(work, stop);
  if (!end.well() || number_in(end.said) != expected) return cannot_look(title, end);
  return Document::of_file(std::move(output), title);
}

}  // namespace fax::host
