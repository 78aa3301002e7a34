#include "quoltanis/watchdog.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace fax {
namespace {

int duplicate(int socket) {
  int const own = fcntl(socket, F_DUPFD_CLOEXEC, 0);
  if (own < 0) throw std::system_error(errno, std::generic_category());
  return own;
}

// The host's signals are for the host's threads.
template <typename Work>
std::thread thread_without_signals(Work work) {
  sigset_t all, before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  struct Restore {
    sigset_t &mask;
    ~Restore() { pthread_sigmask(SIG_SETMASK, &mask, nullptr); }
  } const restore{before};
  return std::thread(work);
}

}  // namespace

Watchdog::Watchdog(int socket) : socket_(duplicate(socket)) {
  try {
    thread_ = thread_without_signals([this] { watch(); });
  } catch (...) {
    close(socket_);
    throw;
  }
}

Watchdog::~Watchdog() {
  {
    std::scoped_lock const lock(mutex_);
    over_ = true;
  }
  changed_.notify_one();
  thread_.join();
  close(socket_);
}

void Watchdog::set(Clock::time_point end) {
  {
    std::scoped_lock const lock(mutex_);
    end_ = end;
  }
  changed_.notify_one();
}

bool Watchdog::has_struck() const {
  std::scoped_lock const lock(mutex_);
  return struck_;
}

void Watchdog::watch() {
  std::unique_lock lock(mutex_);
  while (!over_ && !struck_) {
    if (end_ == Clock::time_point::max()) {
      changed_.wait(lock);
    } else if (Clock::now() < end_) {
      changed_.wait_until(lock, Clock::time_point(end_));
    } else {
      struck_ = true;
      shutdown(socket_, SHUT_RDWR);
    }
  }
}

}  // namespace fax
