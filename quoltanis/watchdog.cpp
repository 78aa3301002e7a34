#include "quoltanis/watchdog.h"

#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace fax {

Watchdog::Watchdog(int socket) : socket_(fcntl(socket, F_DUPFD_CLOEXEC, 0)), thread_([this] { watch(); }) {}

Watchdog::~Watchdog() {
  {
    std::scoped_lock const lock(mutex_);
    over_ = true;
  }
  changed_.notify_one();
  thread_.join();
  if (socket_ >= 0) close(socket_);
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
