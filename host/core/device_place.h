// Where a queue's device URI says that the printer is, and the device URI that an extension's panel is given in its
// place.
//
// A panel may look a host name up on the main thread while it is made, for as long as the name service takes. So a
// panel is never given a URI that needs such a look-up: it gets the numeric address, and no URI at all as long as there
// is none.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <sys/socket.h>

namespace fax::host {

// A numeric address, IPv4 or IPv6.
struct NumericAddress {
  std::string text;    // "192.168.1.20", "2001:db8::1", "fe80::1%eth0"
  std::string in_uri;  // as the host of a URI: "192.168.1.20", "[2001:db8::1]", "[fe80::1%02]"

  bool operator==(NumericAddress const &) const = default;
};

// nullopt for an address of another family.
std::optional<NumericAddress> numeric_address(sockaddr const *address);

// A host that is numeric already, in any spelling that the resolver or a device URI has: "10.1", "fe80::1%eth0",
// "fe80::1%25eth0". Asks nobody. nullopt for a name, and for an interface that is not there.
std::optional<NumericAddress> numeric_address(std::string_view host);

enum class Route {
  none,        // no device URI
  usb,         // connected by USB
  address,     // a numeric address
  name,        // a host name, to be looked up
  service,     // a DNS-SD service of the local network, which a panel resolves itself, without blocking
  other,       // reached in a way that has no address
  unreadable,  // no URI
};

struct DevicePlace {
  Route route = Route::none;
  std::string scheme;  // of the queue's URI, in lower case
  std::string host;    // name: as written; address: NumericAddress::text; service: without escapes, in UTF-8
  // What a panel gets before anything is looked up; nothing for name, none and unreadable.
  std::optional<std::string> panel_uri;
};

// CUPS reaches printers by ipps, https and http as it does by ipp, so a panel gets "ipp" for these; and "dnssd" for
// each of the four where the host is the name of a service ("Office%20MFP._ipps._tcp.local"). Any bytes are allowed in.
DevicePlace place_of(std::string const &device_uri);

// The device URI with another host, as a panel gets it when the name was found; device_uri is one of Route::name.
std::string with_address(std::string const &device_uri, NumericAddress const &address);

}  // namespace fax::host
