// Bytes as a file that has a path and is in no folder.
#pragma once

#include "fuzz/check.h"

#include <string>
#include <string_view>
#include <sys/mman.h>
#include <unistd.h>

namespace fuzz {

class MemoryFile {
 public:
  explicit MemoryFile(std::string_view bytes) : descriptor_(memfd_create("fuzz", MFD_CLOEXEC)) {
    FUZZ_CHECK(descriptor_ >= 0 && write(descriptor_, bytes.data(), bytes.size()) == ssize_t(bytes.size()));
    FUZZ_CHECK(lseek(descriptor_, 0, SEEK_SET) == 0);
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(MemoryFile const &) = delete;
  MemoryFile &operator=(MemoryFile const &) = delete;

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

}  // namespace fuzz
