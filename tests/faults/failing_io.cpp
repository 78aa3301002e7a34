// Has the Nth call that changes a file fail, in the program that it is linked to or preloaded into. What goes to the
// standard streams does not count.
#include "failing_io.h"

#include <dlfcn.h>
#include <stdio.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace {

long number_in(char const *variable, long otherwise) {
  char const *const text = std::getenv(variable);
  return text != nullptr ? std::atol(text) : otherwise;
}

// Set before main() in a program that it is preloaded into.
long until_failure = number_in("FAILING_IO_CALL", -1);
int error = static_cast<int>(number_in("FAILING_IO_ERROR", 0));
bool has_failed = false;

bool fails(int descriptor = 3) {
  if (descriptor <= STDERR_FILENO || until_failure < 0 || until_failure-- != 0) return false;
  has_failed = true;
  errno = error;
  return true;
}

template <typename Function>
Function *next(Function *, char const *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

}  // namespace

namespace fax::test {

void fail_io_call(long number, int with) {
  until_failure = number;
  error = with;
  has_failed = false;
}

bool io_has_failed() { return has_failed; }

}  // namespace fax::test

extern "C" {

#define EXPORTED __attribute__((visibility("default")))

EXPORTED ssize_t write(int file, void const *bytes, size_t size) {
  return fails(file) ? -1 : next(&write, "write")(file, bytes, size);
}
EXPORTED ssize_t pwrite64(int file, void const *bytes, size_t size, off64_t at) {
  return fails(file) ? -1 : next(&pwrite64, "pwrite64")(file, bytes, size, at);
}
EXPORTED int fsync(int file) { return fails(file) ? -1 : next(&fsync, "fsync")(file); }
EXPORTED int fdatasync(int file) { return fails(file) ? -1 : next(&fdatasync, "fdatasync")(file); }
EXPORTED int rename(char const *from, char const *to) noexcept {
  return fails() ? -1 : next(&rename, "rename")(from, to);
}

}
