#include "host/core/server.h"

#include <unistd.h>

#include "texts/texts.h"

namespace fax::host {

namespace {

int give_up(http_t *, void *) { return 0; }

// The dialog has no terminal to ask on; a request that needs a password fails as not authorized instead.
char const *no_password(char const *, http_t *, char const *, char const *, void *) { return nullptr; }

// A sentence with the service's address in it. Found out after a failed attempt: httpConnect2 itself gives no reason.
char const *unreached(Server const &server, bool known, bool in_time) {
  if (server.address.starts_with('/') && access(server.address.c_str(), F_OK) != 0)
    //: {0} is an address or the path of a socket, as in the next ones.
    return mark("The print service (CUPS) at {0} cannot be reached: its socket does not exist.");
  if (!known) return mark("The print service (CUPS) at {0} cannot be reached: the address is not known.");
  return in_time ? mark("The print service (CUPS) at {0} cannot be reached: nothing listens there.")
                 : mark("The print service (CUPS) at {0} cannot be reached: it did not answer in time.");
}

int not_over(http_t *, void *deadline) { return static_cast<Deadline const *>(deadline)->over() ? 0 : 1; }

struct FreeAddresses {
  void operator()(http_addrlist_t *list) const { httpAddrFreeList(list); }
};

}  // namespace

Server Server::current() {
  Server server;
  server.address = cupsServer();
  server.port = ippPort();
  server.encryption = cupsEncryption();
  return server;
}

Result<Connection> connect(Server const &server) {
  cupsSetPasswordCB2(no_password, nullptr);
  bool const socket = server.address.starts_with('/');
  auto const limit = std::chrono::seconds(server.timeout_seconds);
  auto const start = std::chrono::steady_clock::now();
  std::unique_ptr<http_addrlist_t, FreeAddresses> const addresses(
      httpAddrGetList(server.address.c_str(), AF_UNSPEC, std::to_string(server.port).c_str()));
  Connection connection;
  if (addresses)
    connection.reset(httpConnect2(server.address.c_str(), server.port, addresses.get(), AF_UNSPEC, server.encryption, 1,
                                  server.timeout_seconds * 1000, nullptr));
  if (!connection) {
    bool const in_time = std::chrono::steady_clock::now() - start < limit;
    std::string const where = socket ? server.address : server.address + ":" + std::to_string(server.port);
    return Failure{ExitCode::queue,
                   tr(unreached(server, addresses != nullptr, in_time), where),
                   socket || server.address == "localhost"
                       ? tr("Start it, for example with: {0}.", "sudo systemctl start cups")
                       : tr("Check that it runs there, and that {0} or {1} names the right server.", "CUPS_SERVER",
                            "client.conf")};
  }
  httpSetTimeout(connection.get(), server.timeout_seconds, give_up, nullptr);
  return connection;
}

Failure no_such_queue(std::string const &queue) {
  return {ExitCode::queue, tr("There is no print queue \"{0}\".", queue),
          //: "them" are the print queues that there are.
          tr("{0} shows them.", "faxprint --list")};
}

std::string last_error() {
  std::string text = cupsLastErrorString();
  if (text.ends_with('.')) text.pop_back();
  return text;
}

Deadline::Deadline(http_t *connection, int seconds)
    : end_(std::chrono::steady_clock::now() + std::chrono::seconds(seconds)) {
  httpSetTimeout(connection, 1.0, not_over, this);
}

}  // namespace fax::host
