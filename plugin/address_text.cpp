#include "plugin/address_text.h"

#include <arpa/inet.h>
#include <cstdio>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>

namespace fax {

namespace {

// Reads a socket address type out of bytes of any alignment and length.
template <typename Address> std::optional<Address> read(std::string_view bytes) {
  if (bytes.size() < sizeof(Address)) return std::nullopt;
  Address address;
  std::memcpy(&address, bytes.data(), sizeof address);
  return address;
}

// The second byte, where the first one holds the length, as BSD has it; else both.
int family_of(sockaddr const &address) {
  unsigned int const family = address.sa_family;
  return static_cast<int>(family > 0xFF ? family >> 8 : family);
}

std::optional<std::string> ipv4_text(sockaddr_in const &address) {
  char text[INET_ADDRSTRLEN];
  if (inet_ntop(AF_INET, &address.sin_addr, text, sizeof text) == nullptr) return std::nullopt;
  return text;
}

std::optional<std::string> ipv6_text(sockaddr_in6 const &address) {
  char text[INET6_ADDRSTRLEN];
  if (inet_ntop(AF_INET6, &address.sin6_addr, text, sizeof text) == nullptr) return std::nullopt;
  std::string result = text;
  if (!is_link_local(address.sin6_addr.s6_addr)) return result;
  char interface[IF_NAMESIZE] = {};
  if (if_indextoname(address.sin6_scope_id, interface) == nullptr) return result;
  if (result.size() + std::strlen(interface) >= sizeof text + 1) return result;
  return (result + "%" + interface).substr(0, sizeof text - 1);
}

}  // namespace

bool is_link_local(unsigned char const *bytes) { return bytes[0] == 0xFE && (bytes[1] & 0xC0) == 0x80; }

AddressText text_of_address(std::string_view bytes) {
  auto const head = read<sockaddr>(bytes.substr(0, sizeof(sockaddr)));
  if (!head) return {false, std::nullopt};
  int const family = family_of(*head);
  if (family == AF_INET)
    if (auto const address = read<sockaddr_in>(bytes)) return {true, ipv4_text(*address)};
  if (family == AF_INET6)
    if (auto const address = read<sockaddr_in6>(bytes)) return {true, ipv6_text(*address)};
  return {false, std::nullopt};
}

}  // namespace fax
