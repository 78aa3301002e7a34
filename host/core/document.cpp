#include "host/core/document.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "host/core/utf8.h"
#include "texts/texts.h"

namespace fax::host {

struct Document::State {
  State() = default;
  State(State const &) = delete;
  State &operator=(State const &) = delete;
  ~State() {
    if (descriptor >= 0) close(descriptor);
  }

  int descriptor = -1;  // of the file, or -1 for a document in memory
  std::string bytes;    // of a document in memory
  std::uint64_t size = 0;
  std::optional<timespec> changed;  // the last time somebody did that to a file that is not ours alone
  std::string title;
  std::string path;
  std::string format;
};

namespace {

constexpr std::size_t kPiece = 65536;
constexpr std::size_t kLongestTitle = 255;  // bytes; the longest job name that IPP allows

Failure unusable(std::string what, std::string advice) {
  return {ExitCode::file, std::move(what), std::move(advice)};
}

// what: a text with the document's name and the system's reason in it.
Failure unusable(char const *what, std::string const &name, int error) {
  return unusable(tr(what, name, std::strerror(error)), "");
}

constexpr char const *kNotExamined = mark("The document \"{0}\" cannot be examined: {1}.");
constexpr char const *kNotRead = mark("The document \"{0}\" cannot be read: {1}.");

Failure empty(std::string const &name, std::string advice) {
  return unusable(tr("The document \"{0}\" is empty.", name), std::move(advice));
}

Failure cannot_spool(std::string const &name) {
  return unusable(tr("The document \"{0}\" cannot be kept in a temporary file: {1}.", name, std::strerror(errno)),
                  tr("Make room in the folder for temporary files."));
}

Failure cannot_open(std::string const &path, int error) {
  if (error == ENOENT || error == ENOTDIR)
    return unusable(tr("The document \"{0}\" does not exist.", path), tr("Check the name."));
  if (error == EACCES)
    return unusable(tr("The document \"{0}\" may not be read by you.", path), tr("Check the file's permissions."));
  return unusable(mark("The document \"{0}\" cannot be opened: {1}."), path, error);
}

bool write_all(int descriptor, std::string_view rest) {
  while (!rest.empty()) {
    ssize_t const written = ::write(descriptor, rest.data(), rest.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    rest.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

std::string format_of(std::string_view beginning) {
  if (beginning.starts_with("%!") || beginning.starts_with("\x04%!")) return "application/postscript";
  // Some programs put a few bytes of their own before the header; readers look for it in the first 1,024 bytes.
  if (beginning.find("%PDF-") != std::string_view::npos) return "application/pdf";
  return "application/octet-stream";
}

}  // namespace

Document::Document(std::shared_ptr<State const> state) : state_(std::move(state)) {}

Result<Document> Document::open(std::string const &path) {
  auto const state = std::make_shared<State>();
  // Without O_NONBLOCK, opening a named pipe would wait for a writer.
  state->descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (state->descriptor < 0) return cannot_open(path, errno);
  struct stat about {};
  if (fstat(state->descriptor, &about) != 0) return unusable(kNotExamined, path, errno);
  if (S_ISDIR(about.st_mode))
    return unusable(tr("The document \"{0}\" is a folder.", path), tr("Name a document inside it."));
  if (!S_ISREG(about.st_mode))
    return unusable(tr("The document \"{0}\" is no regular file.", path), tr("Save the document to a file first."));
  if (about.st_size == 0) return empty(path, tr("Save the document again in the program it comes from."));
  state->size = static_cast<std::uint64_t>(about.st_size);
  state->changed = about.st_mtim;
  state->title = display_title(path);
  state->path = path;
  Document document(state);
  std::array<char, 1024> beginning;
  auto const got = document.read(0, beginning);
  if (!got) return got.failure();
  state->format = format_of({beginning.data(), got.value()});
  return document;
}

Result<Document> Document::of_file(Descriptor file, std::string const &title) {
  auto const state = std::make_shared<State>();
  state->descriptor = file.release();
  state->title = title;
  struct stat about {};
  if (fstat(state->descriptor, &about) != 0) return unusable(kNotExamined, title, errno);
  state->size = static_cast<std::uint64_t>(about.st_size);
  Document document(state);
  std::array<char, 1024> beginning;
  auto const got = document.read(0, beginning);
  if (!got) return got.failure();
  state->format = format_of({beginning.data(), got.value()});
  return document;
}

Result<Document> Document::of_stream(int descriptor, std::string const &name, std::string const &title) {
  Descriptor file = unnamed_file();
  if (!file) return cannot_spool(name);
  std::vector<char> buffer(kPiece);
  std::uint64_t size = 0;
  for (;;) {
    ssize_t const got = ::read(descriptor, buffer.data(), buffer.size());
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return unusable(kNotRead, name, errno);
    if (got == 0) break;
    if (!write_all(file.get(), {buffer.data(), static_cast<std::size_t>(got)})) return cannot_spool(name);
    size += static_cast<std::uint64_t>(got);
  }
  if (size == 0) return empty(name, tr("Look whether the program before the pipe failed."));
  return of_file(std::move(file), title);
}

Document Document::of_bytes(std::string bytes, std::string title) {
  auto const state = std::make_shared<State>();
  state->bytes = std::move(bytes);
  state->size = state->bytes.size();
  state->title = title.empty() ? display_title("") : std::move(title);
  state->format = format_of(std::string_view(state->bytes).substr(0, 1024));
  return Document(state);
}

std::uint64_t Document::size() const { return state_->size; }
std::string const &Document::title() const { return state_->title; }
std::string const &Document::path() const { return state_->path; }
std::string const &Document::format() const { return state_->format; }

Result<std::size_t> Document::read(std::uint64_t offset, std::span<char> buffer) const {
  if (state_->descriptor < 0) {
    std::string_view const rest = std::string_view(state_->bytes).substr(std::min<std::uint64_t>(offset, size()));
    return rest.copy(buffer.data(), buffer.size());
  }
  std::size_t done = 0;
  while (done < buffer.size()) {
    ssize_t const got = pread(state_->descriptor, buffer.data() + done, buffer.size() - done,
                              static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return unusable(kNotRead, path(), errno);
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return done;
}

bool Document::is_unchanged() const {
  auto const &then = state_->changed;
  if (!then) return true;
  struct stat about {};
  return fstat(state_->descriptor, &about) == 0 && static_cast<std::uint64_t>(about.st_size) == size() &&
         about.st_mtim.tv_sec == then->tv_sec && about.st_mtim.tv_nsec == then->tv_nsec;
}

Result<Descriptor> Document::share() const {
  if (state_->descriptor >= 0) return Descriptor(fcntl(state_->descriptor, F_DUPFD_CLOEXEC, 0));
  Descriptor file = unnamed_file();
  if (!file || !write_all(file.get(), state_->bytes)) return cannot_spool(title());
  return file;
}

std::string display_title(std::string const &path) {
  std::string_view name = path;
  name.remove_prefix(name.rfind('/') + 1);
  std::size_t const dot = name.rfind('.');
  if (dot != std::string_view::npos && dot > 0) name = name.substr(0, dot);
  std::string title;
  while (!name.empty()) {
    std::size_t const length = utf8_length(name);
    bool const control = length == 1 && (static_cast<unsigned char>(name[0]) < 0x20 || name[0] == 0x7F);
    std::string_view const piece = length == 0 || control ? std::string_view("_") : name.substr(0, length);
    if (title.size() + piece.size() > kLongestTitle) break;
    title += piece;
    name.remove_prefix(std::max<std::size_t>(length, 1));
  }
  //: The title of a document that has none.
  return title.empty() ? tr("Untitled") : title;
}

}  // namespace fax::host
