// The document to send.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "host/core/child.h"
#include "host/core/failure.h"

namespace fax::host {

// Open for as long as it lives, so that a file that is renamed or deleted while the dialog is open is still sent.
// Copies share the one open file.
class Document {
public:
  // Failure (ExitCode::file): missing, unreadable, a folder, no regular file, or empty.
  static Result<Document> open(std::string const &path);

  // Everything that descriptor gives until its end, kept in a file without a name; name stands for it in sentences. It
  // stays the caller's. Waits for as long as the other side writes. Failure (ExitCode::file): a read error, no room, or
  // nothing came.
  static Result<Document> of_stream(int descriptor, std::string const &name, std::string const &title);

  // A file that was made for this document alone. Failure (ExitCode::file): it cannot be read.
  static Result<Document> of_file(Descriptor file, std::string const &title);

  // A document in memory.
  static Document of_bytes(std::string bytes, std::string title);

  std::uint64_t size() const;  // bytes, at the time it was opened; never 0 for a file
  std::string const &title() const;  // UTF-8, never empty: display_title() of the path
  std::string const &path() const;   // as given; "" for one that came another way

  // MIME type by the first bytes: "application/pdf", "application/postscript", or "application/octet-stream", for which
  // CUPS looks for itself.
  std::string const &format() const;

  // Reads up to buffer.size() bytes at offset; fewer only at the end. Failure (ExitCode::file): a read error. Any
  // thread.
  Result<std::size_t> read(std::uint64_t offset, std::span<char> buffer) const;

  // Whether it still holds what it held when it was opened: of a file, by its size and the time of its last change.
  bool is_unchanged() const;

  // The whole document as an open file for another program, which opens it anew by its number: the position in it means
  // nothing. Failure (ExitCode::file): no file can be made of a document in memory.
  Result<Descriptor> share() const;

private:
  struct State;
  explicit Document(std::shared_ptr<State const> state);
  std::shared_ptr<State const> state_;
};

// A title for people: the file's name without folders and without its extension; control characters and bytes that are
// no UTF-8 become "_"; at most 255 bytes, cut between characters. "/a/b/Report 3.pdf" -> "Report 3", ".pdf" -> ".pdf",
// "" -> "Untitled".
std::string display_title(std::string const &path);

}  // namespace fax::host
