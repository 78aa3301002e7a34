#include "gad/files.h"

#include "gad/failure.h"
#include "texts/texts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <iostream>

namespace fax::tool {
namespace {

constexpr std::size_t largest = std::size_t(1) << 30;

class Descriptor {
public:
  explicit Descriptor(int number, bool owned = true) : number_(number), owned_(owned) {}
  ~Descriptor() {
    if (owned_ && number_ >= 0) close(number_);
  }
  Descriptor(Descriptor const &) = delete;
  Descriptor &operator=(Descriptor const &) = delete;
  int number() const { return number_; }

private:
  int number_;
  bool owned_;
};

[[noreturn]] void fail(std::string const &path, int error) { throw Failure(path + ": " + std::strerror(error) + "."); }

void write_all(int file, std::string_view content, std::string const &path) {
  while (!content.empty()) {
    ssize_t const written = write(file, content.data(), content.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) fail(path, errno);
    content.remove_prefix(std::size_t(written));
  }
}

// A file beside the target that is removed unless it took the target's place.
class Draft {
public:
  explicit Draft(std::string const &target) : target_(target), path_(target + ".XXXXXX"), file_(mkstemp(path_.data())) {
    if (file_.number() < 0) fail(target, errno);
  }
  ~Draft() {
    if (!path_.empty()) unlink(path_.c_str());
  }
  Draft(Draft const &) = delete;
  Draft &operator=(Draft const &) = delete;

  void fill(std::string_view content) {
    mode_t const mask = umask(0);
    umask(mask);
    if (fchmod(file_.number(), 0666 & ~mask) != 0) fail(target_, errno);
    write_all(file_.number(), content, target_);
    if (fsync(file_.number()) != 0) fail(target_, errno);
  }

  void publish(bool replace) {
    if (!replace) {
      if (link(path_.c_str(), target_.c_str()) != 0) refuse(errno);
      return;
    }
    if (rename(path_.c_str(), target_.c_str()) != 0) fail(target_, errno);
    path_.clear();
  }

private:
  [[noreturn]] void refuse(int error) const {
    if (error == EEXIST) throw Failure(target_ + ": " + tr("The file exists already. --force replaces it."));
    fail(target_, error);
  }

  std::string const &target_;
  std::string path_;
  Descriptor file_;
};

}  // namespace

std::string read_whole(std::string const &path) {
  bool const standard = path == "-";
  Descriptor const file(standard ? STDIN_FILENO : open(path.c_str(), O_RDONLY | O_CLOEXEC), !standard);
  if (file.number() < 0) fail(path, errno);
  std::string content;
  std::array<char, 65536> piece;
  for (;;) {
    ssize_t const size = read(file.number(), piece.data(), piece.size());
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) fail(path, errno);
    if (size == 0) return content;
    if (content.size() + std::size_t(size) > largest) throw Failure(path + ": " + tr("The file is larger than 1 GiB."));
    content.append(piece.data(), std::size_t(size));
  }
}

void write_whole(std::string const &path, std::string_view content, bool replace) {
  if (path == "-") {
    std::cout << content;
    return finish_output();
  }
  // A pipe or a device is written to, not replaced.
  std::error_code error;
  auto const kind = std::filesystem::status(path, error).type();
  if (std::filesystem::exists(std::filesystem::file_status(kind)) && kind != std::filesystem::file_type::regular) {
    Descriptor const file(open(path.c_str(), O_WRONLY | O_CLOEXEC));
    if (file.number() < 0) fail(path, errno);
    return write_all(file.number(), content, path);
  }
  Draft draft(path);
  draft.fill(content);
  draft.publish(replace);
}

void finish_output() {
  std::cout.flush();
  if (!std::cout) fail(tr("standard output"), errno);
}

}  // namespace fax::tool
