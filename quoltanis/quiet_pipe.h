// Keeps SIGPIPE from this thread: a connection that its other end has closed must not end the host.
#pragma once

#include <signal.h>
#include <time.h>

namespace fax {

class QuietPipe {
public:
  QuietPipe() {
    sigemptyset(&pipe_);
    sigaddset(&pipe_, SIGPIPE);
    sigset_t pending;
    sigpending(&pending);
    was_pending_ = sigismember(&pending, SIGPIPE) == 1;
    pthread_sigmask(SIG_BLOCK, &pipe_, &before_);
  }
  ~QuietPipe() {
    timespec const now{};
    if (!was_pending_) sigtimedwait(&pipe_, nullptr, &now);
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  }
  QuietPipe(QuietPipe const &) = delete;
  QuietPipe &operator=(QuietPipe const &) = delete;

private:
  sigset_t pipe_, before_;
  bool was_pending_;
};

}  // namespace fax
