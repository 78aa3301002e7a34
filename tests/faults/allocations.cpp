#include "allocations.h"

#include <sqlite3.h>

#include <cstdlib>
#include <new>

namespace {

constexpr long kNever = -1;
thread_local long until_failure = kNever;
thread_local bool has_failed = false;

// No allocation, and so callable from within one.
bool fails() {
  if (until_failure == kNever || has_failed) return false;
  has_failed = until_failure-- == 0;
  if (has_failed) until_failure = kNever;
  return has_failed;
}

void *room(std::size_t size) noexcept { return fails() ? nullptr : std::malloc(size == 0 ? 1 : size); }

void *aligned_room(std::size_t size, std::align_val_t alignment) noexcept {
  std::size_t const step = static_cast<std::size_t>(alignment);
  return fails() ? nullptr : std::aligned_alloc(step, (size + step) / step * step);
}

void *or_throw(void *room) {
  if (room == nullptr) throw std::bad_alloc();
  return room;
}

sqlite3_mem_methods sqlites_own;

}  // namespace

void *operator new(std::size_t size) { return or_throw(room(size)); }
void *operator new[](std::size_t size) { return or_throw(room(size)); }
void *operator new(std::size_t size, std::nothrow_t const &) noexcept { return room(size); }
void *operator new[](std::size_t size, std::nothrow_t const &) noexcept { return room(size); }
void *operator new(std::size_t size, std::align_val_t alignment) { return or_throw(aligned_room(size, alignment)); }
void *operator new[](std::size_t size, std::align_val_t alignment) { return or_throw(aligned_room(size, alignment)); }
void operator delete(void *room) noexcept { std::free(room); }
void operator delete[](void *room) noexcept { std::free(room); }
void operator delete(void *room, std::size_t) noexcept { std::free(room); }
void operator delete[](void *room, std::size_t) noexcept { std::free(room); }
void operator delete(void *room, std::align_val_t) noexcept { std::free(room); }
void operator delete[](void *room, std::align_val_t) noexcept { std::free(room); }
void operator delete(void *room, std::size_t, std::align_val_t) noexcept { std::free(room); }
void operator delete[](void *room, std::size_t, std::align_val_t) noexcept { std::free(room); }

namespace fax::test {

void watch_sqlite() {
  sqlite3_config(SQLITE_CONFIG_GETMALLOC, &sqlites_own);
  sqlite3_mem_methods watched = sqlites_own;
  watched.xMalloc = [](int size) { return fails() ? nullptr : sqlites_own.xMalloc(size); };
  watched.xRealloc = [](void *room, int size) { return fails() ? nullptr : sqlites_own.xRealloc(room, size); };
  sqlite3_config(SQLITE_CONFIG_MALLOC, &watched);
}

long long sqlite_bytes() { return sqlite3_memory_used(); }

int fail_each(std::function<void()> const &before, std::function<void()> const &work,
              std::function<void(bool failed)> const &after) {
  for (int passed = 0;; ++passed) {
    before();
    has_failed = false;
    until_failure = passed;
    work();
    until_failure = kNever;
    bool const failed = has_failed;
    after(failed);
    if (!failed) return passed;
  }
}

}  // namespace fax::test
