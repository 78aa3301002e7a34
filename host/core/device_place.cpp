#include "host/core/device_place.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cstring>
#include <cups/cups.h>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>

#include "host/core/utf8.h"

namespace fax::host {

namespace {

struct UriParts {
  std::string scheme, host, resource;
  int port = 0;
};

std::optional<UriParts> split(std::string const &uri, http_uri_coding_t coding) {
  // Room for all of it in each: what does not fit would be cut without a word. CUPS has no longer ones.
  if (uri.size() > HTTP_MAX_URI || uri.find('\0') != std::string::npos) return std::nullopt;
  std::array<char, HTTP_MAX_URI + 2> scheme, user, host, resource;
  UriParts parts;
  auto const status =
      httpSeparateURI(coding, uri.c_str(), scheme.data(), scheme.size(), user.data(), user.size(), host.data(),
                      host.size(), &parts.port, resource.data(), resource.size());
  if (status < HTTP_URI_STATUS_OK) return std::nullopt;
  parts.scheme = scheme.data();
  std::ranges::transform(parts.scheme, parts.scheme.begin(),
                         [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  parts.host = host.data();
  parts.resource = resource.data();
  return parts;
}

bool is_one_of(std::string const &scheme, std::initializer_list<char const *> list) {
  return std::ranges::find(list, scheme) != list.end();
}

// CUPS's ipp backend takes all of these.
bool is_ipp(std::string const &scheme) { return is_one_of(scheme, {"ipp", "ipps", "http", "https"}); }
bool is_discovered(std::string const &scheme) { return is_one_of(scheme, {"dnssd", "mdns"}); }

// A panel finds the service's name and its type on both sides of a dot before "._tcp".
bool is_service(std::string const &host) {
  auto const end = host.find("._tcp");
  return end != std::string::npos && host.substr(0, end).find('.') != std::string::npos;
}

// What an interface of a link-local address is called inside a URI. The sign before it is the one of URIs' escapes, and
// a "%" without two hexadecimal digits makes a URI invalid; the interface's number, with a zero in front where it has
// one digit, is both a valid escape and a scope that the resolver reads.
std::string scope_in_uri(unsigned scope) {
  std::string const number = std::to_string(scope);
  return "%" + (number.size() < 2 ? "0" + number : number);
}

NumericAddress ipv6_address(sockaddr_in6 const &address) {
  char text[INET6_ADDRSTRLEN] = {};
  inet_ntop(AF_INET6, &address.sin6_addr, text, sizeof text);
  NumericAddress numeric{text, std::string("[") + text + "]"};
  char interface[IF_NAMESIZE] = {};
  if (address.sin6_scope_id == 0 || if_indextoname(address.sin6_scope_id, interface) == nullptr) return numeric;
  numeric.text += std::string("%") + interface;
  numeric.in_uri.insert(numeric.in_uri.size() - 1, scope_in_uri(address.sin6_scope_id));
  return numeric;
}

bool is_plain_address(std::string const &host) {
  in6_addr bytes;
  return inet_pton(AF_INET, host.c_str(), &bytes) == 1 || inet_pton(AF_INET6, host.c_str(), &bytes) == 1;
}

// CUPS lets text follow the brackets of an address; behind another host it would be read as part of that one.
std::string path_of(UriParts const &parts) {
  return parts.resource.starts_with('/') ? parts.resource : "/" + parts.resource;
}

std::string joined(std::string const &scheme, std::string const &host, UriParts const &parts) {
  std::string uri = scheme + "://" + host;
  if (parts.port > 0) uri += ":" + std::to_string(parts.port);
  return uri + path_of(parts);
}

// The scheme under which a panel knows a host of this one.
std::string panel_scheme(std::string const &scheme) { return is_ipp(scheme) ? "ipp" : scheme; }

DevicePlace place_of_service(std::string const &device_uri, UriParts const &parts, DevicePlace place) {
  place.route = Route::service;
  // CUPS finds the host behind a user's name that may hold anything; a panel would end it at "?" or "/".
  bool const as_it_is = is_discovered(parts.scheme) && device_uri.starts_with(parts.scheme + "://" + parts.host);
  place.panel_uri = as_it_is ? device_uri : "dnssd://" + parts.host + path_of(parts);
  auto const decoded = split(device_uri, HTTP_URI_CODING_HOSTNAME);
  // What ends a host, or makes it none, for a panel but not for CUPS: in brackets it takes the first, the last anywhere.
  bool const plain =
      parts.host.find_first_of(":/?#@[]") == std::string::npos && parts.host.find("%00") == std::string::npos;
  if (decoded && plain && is_utf8(decoded->host) && is_service(decoded->host)) {
    place.host = decoded->host;
  } else {
    place.route = Route::unreadable;
  }
  return place;
}

DevicePlace place_of_host(std::string const &device_uri, UriParts const &parts, DevicePlace place) {
  auto const address = numeric_address(parts.host);
  if (!address) {
    place.route = Route::name;
    place.host = parts.host;
    return place;
  }
  place.route = Route::address;
  place.host = address->text;
  // CUPS reads "//host" as "ipp://host"; a panel does not. Nor does it read a user's name before the host as CUPS does.
  std::string const before_host = place.scheme + "://";
  bool const in_place = device_uri.starts_with(before_host + parts.host) ||
                        device_uri.starts_with(before_host + "[" + parts.host);
  bool const as_it_is = in_place && place.scheme == panel_scheme(place.scheme) && parts.resource.starts_with('/') &&
                        is_plain_address(parts.host);
  place.panel_uri = as_it_is ? device_uri : with_address(device_uri, *address);
  return place;
}

}  // namespace

std::optional<NumericAddress> numeric_address(sockaddr const *address) {
  if (address->sa_family == AF_INET6) return ipv6_address(*reinterpret_cast<sockaddr_in6 const *>(address));
  if (address->sa_family != AF_INET) return std::nullopt;
  char text[INET_ADDRSTRLEN] = {};
  inet_ntop(AF_INET, &reinterpret_cast<sockaddr_in const *>(address)->sin_addr, text, sizeof text);
  return NumericAddress{text, text};
}

std::optional<NumericAddress> numeric_address(std::string_view host) {
  std::string spelled(host);
  if (auto const sign = spelled.find("%25"); sign != std::string::npos && spelled.find(':') < sign)
    spelled.erase(sign + 1, 2);
  addrinfo hints = {};
  hints.ai_flags = AI_NUMERICHOST;
  addrinfo *found = nullptr;
  if (spelled.empty() || getaddrinfo(spelled.c_str(), nullptr, &hints, &found) != 0) return std::nullopt;
  auto address = numeric_address(found->ai_addr);
  freeaddrinfo(found);
  return address;
}

DevicePlace place_of(std::string const &device_uri) {
  DevicePlace place;
  if (device_uri.empty()) return place;
  auto const parts = split(device_uri, HTTP_URI_CODING_NONE);
  if (!parts) {
    place.route = Route::unreadable;
    return place;
  }
  place.scheme = parts->scheme;
  bool const by_host = is_ipp(parts->scheme) || is_one_of(parts->scheme, {"lpd", "socket"});
  if (is_discovered(parts->scheme) || (is_ipp(parts->scheme) && is_service(parts->host)))
    return place_of_service(device_uri, *parts, std::move(place));
  if (by_host && parts->host.empty()) {
    place.route = Route::unreadable;
    return place;
  }
  if (by_host) return place_of_host(device_uri, *parts, std::move(place));
  place.route = parts->scheme == "usb" ? Route::usb : Route::other;
  place.panel_uri = device_uri;
  return place;
}

std::string with_address(std::string const &device_uri, NumericAddress const &address) {
  auto const parts = split(device_uri, HTTP_URI_CODING_NONE);
  return parts ? joined(panel_scheme(parts->scheme), address.in_uri, *parts) : std::string();
}

}  // namespace fax::host
