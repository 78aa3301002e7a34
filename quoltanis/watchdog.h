// Ends a connection that takes too long, wherever a call on it hangs.
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace fax {

class Watchdog {
public:
  using Clock = std::chrono::steady_clock;

  // Holds a descriptor of its own for the same socket, so it never touches a number that was given to another. Throws
  // std::system_error when the process can have no more descriptors or threads.
  explicit Watchdog(int socket);
  ~Watchdog();
  Watchdog(Watchdog const &) = delete;
  Watchdog &operator=(Watchdog const &) = delete;

  // The socket is shut down at that time, if it is not set anew before.
  void set(Clock::time_point end);
  bool has_struck() const;

private:
  void watch();

  int const socket_;
  mutable std::mutex mutex_;
  std::condition_variable changed_;
  Clock::time_point end_ = Clock::time_point::max();
  bool over_ = false;
  bool struck_ = false;
  std::thread thread_;
};

}  // namespace fax
