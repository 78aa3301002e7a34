#include "platform/routes.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstdint>
#include <fstream>
#include <ifaddrs.h>
#include <memory>
#include <net/if.h>
#include <netinet/in.h>
#include <sstream>

namespace fax {

namespace {

// Flags of a route, as <linux/route.h> gives them.
constexpr unsigned kRouteUp = 0x0001;
constexpr unsigned kRouteReject = 0x0200;

std::string dotted(in_addr address) {
  char text[INET_ADDRSTRLEN] = "";
  inet_ntop(AF_INET, &address, text, sizeof text);
  return text;
}

}  // namespace

std::optional<DefaultRoute> default_route(std::string_view table, std::vector<Interface> const &interfaces) {
  std::optional<DefaultRoute> best;
  unsigned best_metric = 0;
  std::istringstream lines{std::string(table)};
  std::string line;
  std::getline(lines, line);  // the headings
  while (std::getline(lines, line)) {
    // Addresses are the bytes in memory printed as one number in the machine's order.
    std::istringstream fields(line);
    std::string name;
    std::uint32_t destination, gateway, mask;
    unsigned flags, references, uses, metric;
    if (!(fields >> name >> std::hex >> destination >> gateway >> flags >> std::dec >> references >> uses >> metric >>
          std::hex >> mask))
      continue;
    if (destination != 0 || mask != 0 || (flags & kRouteUp) == 0 || (flags & kRouteReject) != 0) continue;
    Interface const *interface = find_interface(interfaces, name);
    if (interface == nullptr || !interface->active || interface->addresses.empty()) continue;
    if (best && metric >= best_metric) continue;
    best = DefaultRoute{name, gateway == 0 ? "" : dotted(in_addr{gateway})};
    best_metric = metric;
  }
  return best;
}

Interface const *find_interface(std::vector<Interface> const &interfaces, std::string_view name) {
  auto const found =
      std::find_if(interfaces.begin(), interfaces.end(), [&](Interface const &each) { return each.name == name; });
  return found == interfaces.end() ? nullptr : &*found;
}

std::string system_route_table() {
  std::ifstream file("/proc/net/route");
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

std::vector<Interface> system_interfaces() {
  std::vector<Interface> all;
  ifaddrs *first = nullptr;
  if (getifaddrs(&first) != 0) return all;
  std::unique_ptr<ifaddrs, void (*)(ifaddrs *)> const list(first, freeifaddrs);
  for (ifaddrs const *each = first; each != nullptr; each = each->ifa_next) {
    // An address may bear a label of its own ("eth0:1"); it is the interface's all the same.
    std::string_view name(each->ifa_name);
    name = name.substr(0, name.find(':'));
    auto known = std::find_if(all.begin(), all.end(), [&](Interface const &one) { return one.name == name; });
    if (known == all.end()) known = all.insert(all.end(), Interface{std::string(name), false, {}});
    known->active = (each->ifa_flags & IFF_UP) != 0 && (each->ifa_flags & IFF_RUNNING) != 0;
    if (each->ifa_addr != nullptr && each->ifa_addr->sa_family == AF_INET)
      known->addresses.push_back(dotted(reinterpret_cast<sockaddr_in const *>(each->ifa_addr)->sin_addr));
  }
  return all;
}

}  // namespace fax
