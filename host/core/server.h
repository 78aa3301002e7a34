// The print service (CUPS) that the dialog talks to, and connections of its own to it.
#pragma once

#include <chrono>
#include <cups/cups.h>
#include <memory>
#include <string>

#include "host/core/failure.h"

namespace fax::host {

struct Server {
  std::string address;  // host name, numeric address, or the path of a Unix socket
  int port = 631;       // ignored for a socket
  http_encryption_t encryption = HTTP_ENCRYPTION_IF_REQUESTED;
  int timeout_seconds = 30;  // for the connection, and for each wait of a request

  // What CUPS_SERVER, client.conf and CUPS's own defaults say.
  static Server current();
};

struct CloseConnection {
  void operator()(http_t *connection) const { httpClose(connection); }
};
using Connection = std::unique_ptr<http_t, CloseConnection>;

// A new connection, for one thread at a time. Failure (ExitCode::queue) when nobody answers: the sentence tells a
// missing socket, an unknown or a refusing address from a service that does not answer in time.
Result<Connection> connect(Server const &server);

Failure no_such_queue(std::string const &queue);

// CUPS's sentence about this thread's last request, without a full stop, to stand inside a sentence of ours.
std::string last_error();

// Ends the waiting of everything that is asked over a connection, counted from its making, since libcups begins a
// request that had no answer once more. Must outlive the use of the connection.
class Deadline {
public:
  Deadline(http_t *connection, int seconds);
  Deadline(Deadline const &) = delete;
  Deadline &operator=(Deadline const &) = delete;

  bool over() const { return std::chrono::steady_clock::now() >= end_; }

private:
  std::chrono::steady_clock::time_point end_;
};

}  // namespace fax::host
