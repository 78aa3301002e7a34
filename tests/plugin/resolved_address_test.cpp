#include "plugin/resolved_address.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

// What the name service in front of the system's answers: a list of entries, or a failure.
struct Entry {
  int family;
  char const *text;
  unsigned int scope = 0;
};

std::vector<Entry> the_answer;
bool the_look_up_fails;
int look_ups;

}  // namespace

extern "C" int getaddrinfo(char const *, char const *, addrinfo const *, addrinfo **found) {
  look_ups++;
  if (the_look_up_fails) return EAI_NONAME;
  addrinfo *list = nullptr;
  for (auto entry = the_answer.rbegin(); entry != the_answer.rend(); ++entry) {
    auto *address = new sockaddr_storage{};
    address->ss_family = sa_family_t(entry->family);
    if (entry->family == AF_INET)
      inet_pton(AF_INET, entry->text, &reinterpret_cast<sockaddr_in *>(address)->sin_addr);
    if (entry->family == AF_INET6) {
      inet_pton(AF_INET6, entry->text, &reinterpret_cast<sockaddr_in6 *>(address)->sin6_addr);
      reinterpret_cast<sockaddr_in6 *>(address)->sin6_scope_id = entry->scope;
    }
    auto *node = new addrinfo{};
    node->ai_family = entry->family;
    node->ai_addr = reinterpret_cast<sockaddr *>(address);
    node->ai_next = list;
    list = node;
  }
  *found = list;
  return 0;
}

extern "C" void freeaddrinfo(addrinfo *list) {
  while (list != nullptr) {
    addrinfo *const next = list->ai_next;
    delete reinterpret_cast<sockaddr_storage *>(list->ai_addr);
    delete list;
    list = next;
  }
}

namespace {

struct Result {
  int code;
  std::string text;
};

Result resolve(char const *host, std::size_t size = 4096) {
  std::vector<char> out(size + 1, '\0');
  int const code = CopyResolvedIPAddress(host, out.data(), size);
  return {code, out.data()};
}

class ResolvedAddress : public testing::Test {
 protected:
  void SetUp() override {
    the_answer.clear();
    the_look_up_fails = false;
    look_ups = 0;
  }
};

TEST_F(ResolvedAddress, NumericHostsAreCopiedWithoutALookUp) {
  EXPECT_EQ(resolve("192.168.1.20").text, "192.168.1.20");
  EXPECT_EQ(resolve("fe80::1").text, "fe80::1");
  EXPECT_EQ(resolve("192.168.1.20", 8).text, "192.168");
  EXPECT_EQ(look_ups, 0);
}

TEST_F(ResolvedAddress, TheFirstAddressThatConvertsIsTaken) {
  the_answer = {{AF_UNIX, ""}, {AF_INET6, "2001:db8::2"}, {AF_INET, "192.0.2.3"}};
  testing::internal::CaptureStderr();
  Result const result = resolve("printer");
  EXPECT_EQ(result.text, "2001:db8::2");
  EXPECT_EQ(result.code, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "CopyResolvedIPAddress - inet_ntop-IPv4 error.\n");
}

TEST_F(ResolvedAddress, AnAddressThatDoesNotFitIsPassedOver) {
  the_answer = {{AF_INET6, "2001:db8:1111:2222:3333:4444:5555:6666"}, {AF_INET, "192.0.2.3"}};
  testing::internal::CaptureStderr();
  EXPECT_EQ(resolve("printer", 16).text, "192.0.2.3");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "silent for IPv6";
  the_answer = {{AF_INET, "192.0.2.33"}};
  testing::internal::CaptureStderr();
  EXPECT_EQ(resolve("printer", 4).code, 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "CopyResolvedIPAddress - inet_ntop-IPv4 error.\n");
}

TEST_F(ResolvedAddress, ALinkLocalAddressBearsItsInterfaceWhereItFits) {
  the_answer = {{AF_INET6, "fe80::1", 1}};
  EXPECT_EQ(resolve("printer").text, "fe80::1%en0");
  EXPECT_EQ(resolve("printer", 9).text, "fe80::1");
  EXPECT_EQ(resolve("printer", 10).text, "fe80::1%e") << "both lengths make 10, the sign and the NUL do not count";
}

TEST_F(ResolvedAddress, AFailedLookUpIsToldAnEmptyOneIsNot) {
  the_look_up_fails = true;
  testing::internal::CaptureStderr();
  EXPECT_EQ(resolve("nowhere").code, 1);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "CopyResolvedIPAddress - getaddrinfo failed.\n");
  the_look_up_fails = false;
  Result const empty = resolve("empty");
  EXPECT_EQ(empty.code, 0);
  EXPECT_EQ(empty.text, "");
}

}  // namespace
