#include "driver/ticket_folder.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace fax {

namespace {

// The names of the files that are not kept yet; null for a free place.
std::array<std::atomic<char const *>, NewFile::kMostUnfinished> unfinished{};
static_assert(std::atomic<char const *>::is_always_lock_free, "a signal handler reads them");

void exchange_unfinished(char const *old_path, char const *new_path) {
  for (auto &place : unfinished) {
    char const *expected = old_path;
    if (place.compare_exchange_strong(expected, new_path)) return;
  }
}

[[noreturn]] void fail(std::string const &what) { throw std::system_error{errno, std::generic_category(), what}; }

void write_all(int descriptor, std::string_view bytes, std::string const &what) {
  while (!bytes.empty()) {
    ssize_t const written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail(what);
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
}

void sync_folder(std::string const &folder) {
  int const descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) fail("Cannot open the folder \"" + folder + "\"");
  int const result = ::fsync(descriptor);
  int const error = errno;
  ::close(descriptor);
  errno = error;
  if (result != 0) fail("Cannot write the folder \"" + folder + "\"");
}

}  // namespace

NewFile::NewFile(std::string folder) : folder_{std::move(folder)}, path_{folder_ + "/.ticket-XXXXXX"} {
  descriptor_ = ::mkostemp(path_.data(), O_CLOEXEC);
  if (descriptor_ < 0) fail("Cannot write in the folder \"" + folder_ + "\"");
  exchange_unfinished(nullptr, path_.c_str());
}

NewFile::~NewFile() {
  ::close(descriptor_);
  if (kept_) return;
  std::string const &name = published_.empty() ? path_ : published_;
  ::unlink(name.c_str());
  exchange_unfinished(name.c_str(), nullptr);
}

void NewFile::write(std::string_view bytes) { write_all(descriptor_, bytes, "Cannot write \"" + path_ + "\""); }

void NewFile::publish(std::string const &name) {
  auto path = folder_ + "/" + name;
  if (::fsync(descriptor_) != 0) fail("Cannot write \"" + path_ + "\"");
  if (::rename(path_.c_str(), path.c_str()) != 0) fail("Cannot write \"" + path + "\"");
  published_ = std::move(path);
  exchange_unfinished(path_.c_str(), published_.c_str());
  sync_folder(folder_);
}

void NewFile::keep() {
  exchange_unfinished(published_.c_str(), nullptr);
  kept_ = true;
}

char const *document_extension(std::string_view start) {
  using namespace std::string_view_literals;
  static constexpr std::pair<std::string_view, char const *> kinds[] = {
      {"%PDF-"sv, "pdf"},    {"%!"sv, "ps"},          {"\x89PNG\r\n\x1a\n"sv, "png"}, {"\xff\xd8\xff"sv, "jpg"},
      {"II*\0"sv, "tiff"},   {"MM\0*"sv, "tiff"},     {"RaS2"sv, "pwg"},              {"UNIRAST\0"sv, "urf"},
  };
  for (auto const &[magic, extension] : kinds)
    if (start.starts_with(magic)) return extension;
  return "bin";
}

Copied copy_document(int in, int out, NewFile &file) {
  std::array<char, 65536> buffer;
  Copied copied;
  for (bool at_end = false; !at_end;) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
      ssize_t const got = ::read(in, buffer.data() + filled, buffer.size() - filled);
      if (got < 0 && errno == EINTR) continue;
      if (got < 0) fail("Cannot read the document");
      if (got == 0) {
        at_end = true;
        break;
      }
      filled += static_cast<std::size_t>(got);
    }
    std::string_view const piece{buffer.data(), filled};
    if (copied.bytes == 0) copied.extension = document_extension(piece);
    file.write(piece);
    write_all(out, piece, "Cannot hand on the document");
    copied.bytes += filled;
  }
  return copied;
}

void remove_unfinished_files() noexcept {
  for (auto const &place : unfinished)
    if (char const *path = place) ::unlink(path);
}

}  // namespace fax
