#include "plugin/address_text.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <net/if.h>
#include <netinet/in.h>

#include <cstring>
#include <string>

// Stands in front of the system's: interface 7 has a name of the greatest length, interface 1 a short one.
extern "C" char *if_indextoname(unsigned int index, char *name) {
  char const *const known = index == 7 ? "interface-name7" : index == 1 ? "en0" : nullptr;
  if (known == nullptr) return nullptr;
  return strcpy(name, known);
}

namespace {

std::string ipv4(char const *text) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  inet_pton(AF_INET, text, &address.sin_addr);
  return {reinterpret_cast<char const *>(&address), sizeof address};
}

std::string ipv6(char const *text, unsigned int scope = 0) {
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  address.sin6_scope_id = scope;
  inet_pton(AF_INET6, text, &address.sin6_addr);
  return {reinterpret_cast<char const *>(&address), sizeof address};
}

TEST(AddressText, NumericTextOfBothFamilies) {
  EXPECT_EQ(fax::text_of_address(ipv4("192.0.2.1")).text, "192.0.2.1");
  EXPECT_EQ(fax::text_of_address(ipv6("2001:db8::1", 1)).text, "2001:db8::1");
  // With a byte of length before a byte of family.
  EXPECT_EQ(fax::text_of_address({"\x10\x02\0\x50\xC0\0\x02\x07\0\0\0\0\0\0\0", 16}).text, "192.0.2.7");
}

TEST(AddressText, ALinkLocalAddressBearsItsInterface) {
  EXPECT_EQ(fax::text_of_address(ipv6("fe80::1", 1)).text, "fe80::1%en0");
  EXPECT_EQ(fax::text_of_address(ipv6("febf::1", 1)).text, "febf::1%en0");
  EXPECT_EQ(fax::text_of_address(ipv6("fec0::1", 1)).text, "fec0::1");
  EXPECT_EQ(fax::text_of_address(ipv6("fe80::1", 99)).text, "fe80::1") << "the scope has no interface";
}

TEST(AddressText, AddressAndInterfaceShareAFixedRoom) {
  struct {
    char const *address, *text;
  } const cases[] = {
      // 29 and 15 characters and the sign: 45, all of it.
      {"fe80::111:2222:3333:4444:5555", "fe80::111:2222:3333:4444:5555%interface-name7"},
      // 30 and 15: the sum is below 47, and the text is cut to 45.
      {"fe80::1111:2222:3333:4444:5555", "fe80::1111:2222:3333:4444:5555%interface-name"},
      {"fe80:1:2:3333:4444:5555:6666:77", "fe80:1:2:3333:4444:5555:6666:77%interface-nam"},
      // 32 and 15 make 47: the interface is left out.
      {"fe80:1:2:3333:4444:5555:6666:777", "fe80:1:2:3333:4444:5555:6666:777"},
  };
  for (auto const &row : cases) EXPECT_EQ(fax::text_of_address(ipv6(row.address, 7)).text, row.text);
}

TEST(AddressText, OtherFamiliesAndShortBytesAreSkipped) {
  sockaddr local{};
  local.sa_family = AF_UNIX;
  EXPECT_FALSE(fax::text_of_address({reinterpret_cast<char const *>(&local), sizeof local}).is_internet);
  EXPECT_FALSE(fax::text_of_address("").is_internet);
  EXPECT_FALSE(fax::text_of_address("x").is_internet);
  EXPECT_FALSE(fax::text_of_address(ipv4("192.0.2.1").substr(0, 7)).is_internet);
  EXPECT_FALSE(fax::text_of_address(ipv6("::1").substr(0, 20)).is_internet);
}

}  // namespace
