// The folder where the driver leaves its tickets: files that appear whole or not at all.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace fax {

// Where tickets go when the variable DIRECTFAX_TICKETS names no folder.
inline constexpr char kDefaultTicketFolder[] = "/var/spool/directfax";

// A file under a temporary name until publish() gives it its own. Readable and writable by its owner alone, for it holds
// a fax or its password. At most kMostUnfinished at a time. Every failure throws std::system_error, whose text names the
// path.
class NewFile {
 public:
  static constexpr int kMostUnfinished = 4;

  explicit NewFile(std::string folder);
  // Removes the file, published or not, unless it is kept.
  ~NewFile();
  NewFile(NewFile const &) = delete;
  NewFile &operator=(NewFile const &) = delete;

  void write(std::string_view bytes);
  // On disk first, then renamed; replaces a file of that name at once. Once.
  void publish(std::string const &name);
  // What was published stays.
  void keep();

 private:
  std::string folder_, path_, published_;
  int descriptor_ = -1;
  bool kept_ = false;
};

// The kind of a document by its first bytes, as a file extension without a dot: "%PDF-1.7" -> "pdf"; "bin" when unknown.
char const *document_extension(std::string_view start);

struct Copied {
  std::uint64_t bytes = 0;
  char const *extension = "bin";
};

// Copies everything from the descriptor `in` to file and, the same bytes, to the descriptor `out`, holding 64 kB at a
// time. Throws std::system_error on a failed read or write.
Copied copy_document(int in, int out, NewFile &file);

// Removes the files that are not kept yet. For a signal handler that ends the process; safe in one.
void remove_unfinished_files() noexcept;

}  // namespace fax
