// The machine's way to the network, from the kernel's IPv4 route table and its interfaces.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fax {

struct Interface {
  std::string name;
  bool active = false;                 // up and running
  std::vector<std::string> addresses;  // IPv4, dotted quads, the kernel's order
};

struct DefaultRoute {
  std::string interface;
  std::string router;  // dotted quad; empty on a link without one (point to point)
};

// The default route that traffic takes: the one with the least metric (the first of equals) among those that are up,
// reject nothing and leave by an active interface with an address. table: the text of /proc/net/route; a line that
// cannot be read is passed over.
std::optional<DefaultRoute> default_route(std::string_view table, std::vector<Interface> const &interfaces);

// The interface of that name, or nullptr.
Interface const *find_interface(std::vector<Interface> const &interfaces, std::string_view name);

// What this machine says now; empty when it cannot be asked.
std::string system_route_table();
std::vector<Interface> system_interfaces();

}  // namespace fax
