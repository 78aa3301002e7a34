#include "plugin/resolved_address.h"

#include "plugin/address_text.h"

#include <arpa/inet.h>
#include <cstdio>
#include <cstring>
#include <net/if.h>
#include <netdb.h>
#include <netinet/in.h>

namespace {

// The interface name's room, its NUL included.
constexpr std::size_t kInterfaceRoom = 16;

// The interface of a link-local address goes behind it where address, sign and name fit the caller's buffer.
void add_interface(sockaddr_in6 const &address, char *out, std::size_t size) {
  if (!fax::is_link_local(address.sin6_addr.s6_addr)) return;
  char interface[kInterfaceRoom] = {};
  if (if_indextoname(address.sin6_scope_id, interface) == nullptr) return;
  std::size_t const length = std::strlen(out);
  if (length + std::strlen(interface) > size) return;
  std::snprintf(out + length, size - length, "%%%s", interface);
}

bool is_numeric(char const *host) {
  in6_addr address;
  return inet_pton(AF_INET, host, &address) == 1 || inet_pton(AF_INET6, host, &address) == 1;
}

}  // namespace

int CopyResolvedIPAddress(char const *host, char *out, std::size_t size) {
  if (is_numeric(host)) {
    std::snprintf(out, size, "%s", host);
    return 0;
  }
  addrinfo *found = nullptr;
  if (getaddrinfo(host, nullptr, nullptr, &found) != 0) {
    std::fputs("CopyResolvedIPAddress - getaddrinfo failed.\n", stderr);
    return 1;
  }
  for (addrinfo const *entry = found; entry != nullptr; entry = entry->ai_next) {
    if (entry->ai_family == AF_INET6) {
      auto const &address = *reinterpret_cast<sockaddr_in6 const *>(entry->ai_addr);
      if (inet_ntop(AF_INET6, &address.sin6_addr, out, socklen_t(size)) == nullptr) continue;
      add_interface(address, out, size);
      break;
    }
    if (entry->ai_family == AF_INET) {
      auto const &address = *reinterpret_cast<sockaddr_in const *>(entry->ai_addr);
      if (inet_ntop(AF_INET, &address.sin_addr, out, socklen_t(size)) != nullptr) break;
    }
    std::fputs("CopyResolvedIPAddress - inet_ntop-IPv4 error.\n", stderr);
  }
  if (found != nullptr) freeaddrinfo(found);
  return 0;
}
