// A connection to a directory server by LDAP v3. Every wait is bounded.
#pragma once

#include "quoltanis/printer_entries.h"
#include "quoltanis/printer_settings.h"
#include "quoltanis/quiet_pipe.h"
#include "quoltanis/watchdog.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

typedef struct ldap LDAP;
typedef struct ldapmsg LDAPMessage;

namespace fax {

class Directory {
public:
  // settings must outlive the connection. overall bounds all calls together, the settings' time-out each of them.
  Directory(PrinterSettings const &settings, std::chrono::milliseconds overall);
  ~Directory();
  Directory(Directory const &) = delete;
  Directory &operator=(Directory const &) = delete;

  // Connects, encrypted unless the settings say otherwise. address: an IPv4 or IPv6 address as text, an IPv6 one also
  // with a scope ("fe80::1%eth0") and in brackets. no_address, unreachable, time_out, tls, refused.
  Status connect(std::string const &address);

  // password must not be empty: a server takes that for nobody's. password when the server knows it not.
  Status bind(std::string const &dn, std::string const &password);

  struct Query {
    std::string base;
    bool whole_tree;  // else the entry itself
    std::string filter;
    std::vector<std::string> attributes;
  };
  // Asks in pages and calls take with each entry; a failure of take ends the search with it. incomplete when the server
  // cut the list. References to other servers are not followed.
  Status search(Query const &query, std::function<Status(DirectoryEntry const &)> const &take);

  // Whether the server answers at all, be it with a refusal.
  Status knock();

private:
  struct Close {
    void operator()(LDAP *ldap) const;
  };
  struct Free {
    void operator()(LDAPMessage *message) const;
  };
  using Message = std::unique_ptr<LDAPMessage, Free>;
  struct Page;

  Status open(int socket, std::string const &address);
  Status encrypt();
  Status start_tls();
  Status wait(int message_id, Message &message);
  Status result_of(Message const &message, int &code);
  Status failure(int code);
  Status page(Query const &query, Page &page, std::function<Status(DirectoryEntry const &)> const &take);
  Status next_cookie(Message const &message, Page &page);
  Status decode(LDAPMessage *message, DirectoryEntry &entry);
  Watchdog::Clock::time_point step_end();

  PrinterSettings const &settings_;
  Watchdog::Clock::time_point end_;
  QuietPipe quiet_;
  std::unique_ptr<LDAP, Close> ldap_;
  std::optional<Watchdog> watchdog_;
};

}  // namespace fax
