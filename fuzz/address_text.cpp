// The bytes of a socket address as a network service may answer them: any family, any length.
#include "fuzz/check.h"
#include "plugin/address_text.h"

#include <arpa/inet.h>
#include <cstdint>
#include <cstring>
#include <net/if.h>
#include <netinet/in.h>
#include <vector>

// Stands in front of the system's: the lowest four bits of a scope are the length of its interface's name, 0 for none.
extern "C" char *if_indextoname(unsigned int index, char *name) {
  std::size_t const length = index & 15;
  if (length == 0) return nullptr;
  std::memset(name, 'i', length);
  name[length] = '\0';
  return name;
}

namespace {

template <typename Address> Address address_of(std::string_view bytes) {
  FUZZ_CHECK(bytes.size() >= sizeof(Address));
  Address address;
  std::memcpy(&address, bytes.data(), sizeof address);
  return address;
}

void check_ipv4(std::string_view bytes, std::string const &text) {
  auto const address = address_of<sockaddr_in>(bytes);
  in_addr again;
  FUZZ_CHECK(inet_pton(AF_INET, text.c_str(), &again) == 1);
  FUZZ_CHECK(again.s_addr == address.sin_addr.s_addr);
}

void check_ipv6(std::string_view bytes, std::string const &text) {
  auto const address = address_of<sockaddr_in6>(bytes);
  std::size_t const sign = text.find('%');
  in6_addr again;
  FUZZ_CHECK(inet_pton(AF_INET6, text.substr(0, sign).c_str(), &again) == 1);
  FUZZ_CHECK(std::memcmp(&again, &address.sin6_addr, sizeof again) == 0);
  std::size_t const name = IN6_IS_ADDR_LINKLOCAL(&address.sin6_addr) ? address.sin6_scope_id & 15 : 0;
  std::size_t const length = text.substr(0, sign).size();
  bool const named = name != 0 && length + name < 47;
  FUZZ_CHECK(named == (sign != text.npos));
  FUZZ_CHECK(text.size() == (named ? std::min<std::size_t>(length + 1 + name, 45) : length));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  // Of an odd address and without a byte to spare behind it.
  std::vector<char> exact(size + 1);
  if (size > 0) std::memcpy(exact.data() + 1, data, size);
  std::string_view const bytes(exact.data() + 1, size);
  fax::AddressText const found = fax::text_of_address(bytes);
  if (!found.is_internet) {
    FUZZ_CHECK(!found.text);
    sa_family_t family = AF_UNSPEC;
    if (size >= sizeof(sockaddr)) family = address_of<sockaddr>(bytes).sa_family;
    FUZZ_CHECK(family != AF_INET && (family != AF_INET6 || size < sizeof(sockaddr_in6)));
    return 0;
  }
  FUZZ_CHECK(found.text.has_value());
  if (found.text->find(':') == std::string::npos)
    check_ipv4(bytes, *found.text);
  else
    check_ipv6(bytes, *found.text);
  return 0;
}
