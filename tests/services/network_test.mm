// The host's address by the kernel's routes and interfaces, each case in a network of its own.
#include "namespaces.h"

#include "support/UtilityService.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <ifaddrs.h>
#include <linux/if_tun.h>
#include <net/if.h>
#include <sys/ioctl.h>
#include <thread>
#include <unistd.h>

namespace {

// A network card with a cable to somewhere.
std::string card(std::string const &name) {
  std::string const far = "far-" + name;
  return "ip link add " + name + " type veth peer name " + far + "; ip link set " + far + " up; ip link set " + name +
         " up; ";
}

std::string address(std::string const &name, std::string const &address) {
  return "ip address add " + address + " dev " + name + "; ";
}

std::string const kLan = card("lan") + address("lan", "10.1.0.5/24");
std::string const kWlan = card("wlan") + address("wlan", "10.2.0.5/24");
std::string const kByLan = "ip route add default via 10.1.0.1 metric 100; ";
std::string const kByWlan = "ip route add default via 10.2.0.1 metric 600; ";

// Has the kernel passed on to every card's state what it knows of the cable? It does so a little later.
bool is_settled() {
  constexpr unsigned kCable = 0x10000;  // IFF_LOWER_UP
  ifaddrs *first = nullptr;
  if (getifaddrs(&first) != 0) return false;
  bool settled = true;
  for (ifaddrs const *each = first; each != nullptr; each = each->ifa_next) {
    unsigned const flags = each->ifa_flags;
    if ((flags & IFF_UP) != 0) settled = settled && ((flags & IFF_RUNNING) != 0) == ((flags & kCable) != 0);
  }
  freeifaddrs(first);
  return settled;
}

void build(std::string const &commands) {
  test::run("set -e; " + commands);
  for (int i = 0; i < 500 && !is_settled(); ++i) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  ASSERT_TRUE(is_settled());
}

struct Row {
  char const *name;
  std::string commands;
  char const *address;  // "" for none
};

class HostAddress : public testing::TestWithParam<Row> {
protected:
  HostAddress() { test::renew_network(); }
  ~HostAddress() override { [pool_ release]; }

  static std::string asked() {
    NSString *address = [UtilityService copyHostIPv4Address];
    std::string const text = address == nil ? "" : [address UTF8String];
    [address release];
    return text;
  }

private:
  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
};

TEST_P(HostAddress, OfTheKernelsRoutes) {
  build("ip link set lo up; " + GetParam().commands);
  EXPECT_EQ(asked(), GetParam().address);
}

INSTANTIATE_TEST_SUITE_P(Table, HostAddress, testing::Values(
    Row{"no_network", "", ""},
    Row{"no_route", kLan, ""},
    Row{"one_route", kLan + kByLan, "10.1.0.5"},
    Row{"least_metric", kLan + kWlan + kByWlan + kByLan, "10.1.0.5"},
    Row{"least_metric_the_other_way", kWlan + kLan + "ip route add default via 10.1.0.1 metric 700; " + kByWlan,
        "10.2.0.5"},
    Row{"no_metric_is_least", kLan + kWlan + kByLan + "ip route add default via 10.2.0.1; ", "10.2.0.5"},
    Row{"card_down", kLan + kWlan + kByLan + kByWlan + "ip link set lan down", "10.2.0.5"},
    Row{"no_cable", kLan + kWlan + kByLan + kByWlan + "ip link set far-lan down", "10.2.0.5"},
    Row{"only_card_down", kLan + kByLan + "ip link set lan down", ""},
    Row{"only_cable_out", kLan + kByLan + "ip link set far-lan down", ""},
    Row{"ipv6_only", card("lan") + address("lan", "2001:db8::5/64 nodad") +
        "ip -6 route add default via 2001:db8::1 dev lan", ""},
    Row{"ipv6_beside_ipv4", kLan + kByLan + address("lan", "2001:db8::5/64 nodad") +
        "ip -6 route add default via 2001:db8::1 dev lan", "10.1.0.5"},
    Row{"card_without_address", card("lan") + "ip route add default dev lan", ""},
    Row{"card_without_address_before_another", card("lan") + "ip route add default dev lan metric 1; " + kWlan + kByWlan,
        "10.2.0.5"},
    Row{"two_addresses", kLan + address("lan", "10.1.0.6/24") + address("lan", "10.7.0.1/24") + kByLan, "10.1.0.5"},
    Row{"address_with_a_label", card("lan") + address("lan", "10.1.0.5/24 label lan:1") + kByLan, "10.1.0.5"},
    Row{"other_end_named", card("lan") + address("lan", "10.3.0.1 peer 10.3.0.2") + "ip route add default dev lan",
        "10.3.0.1"},
    Row{"bridge", "ip link add br0 type bridge; ip link set br0 up; " + card("lan") + "ip link set lan master br0; " +
        address("br0", "10.1.0.9/24") + "ip route add default via 10.1.0.1 dev br0", "10.1.0.9"},
    Row{"two_ways_in_one_route", kLan + kWlan +
        "ip route add default nexthop via 10.1.0.1 nexthop via 10.2.0.1", "10.1.0.5"},
    Row{"forbidden_way", kLan + "ip route add unreachable default; ", ""},
    Row{"forbidden_way_as_last_resort", kLan + "ip route add blackhole default metric 9999; " + kByLan, "10.1.0.5"},
    Row{"route_to_a_subnet_only", kLan + "ip route add 10.0.0.0/8 via 10.1.0.1", ""},
    Row{"long_name_of_a_card", card("abcdefghijk") + address("abcdefghijk", "10.1.0.5/24") + kByLan, "10.1.0.5"}),
  [](auto const &info) { return std::string(info.param.name); });

// The answer follows the network: nothing of it is kept.
TEST_F(HostAddress, Changes) {
  build(kLan + kWlan + kByLan + kByWlan);
  EXPECT_EQ(asked(), "10.1.0.5");
  build("ip link set lan down");
  EXPECT_EQ(asked(), "10.2.0.5");
  build("ip address flush dev wlan");
  EXPECT_EQ(asked(), "");
}

TEST_F(HostAddress, OfATunnel) {
  int const tunnel = open("/dev/net/tun", O_RDWR | O_CLOEXEC);
  ifreq request{};
  std::string("tun0").copy(request.ifr_name, IFNAMSIZ - 1);
  request.ifr_flags = IFF_TUN | IFF_NO_PI;
  if (tunnel < 0 || ioctl(tunnel, TUNSETIFF, &request) != 0) GTEST_SKIP() << "the kernel gives no tunnel";
  build("ip address add 10.9.0.1 peer 10.9.0.2 dev tun0; ip link set tun0 up; ip route add default dev tun0");
  EXPECT_EQ(asked(), "10.9.0.1");
  close(tunnel);  // the other end hangs up
  EXPECT_EQ(asked(), "");
}

TEST_F(HostAddress, ManyCardsAndHundredsOfRoutes) {
  std::string batch = "link add lan type veth peer name far\nlink set far up\nlink set lan up\n";
  for (int i = 0; i < 10; ++i) {
    std::string const name = "c" + std::to_string(i), subnet = "10.5." + std::to_string(i);
    batch += "link add " + name + " type bridge\nlink set " + name + " up\naddress add " + subnet + ".1/24 dev " +
             name + "\n";
    for (int metric = 10; metric < 50; ++metric)
      batch += "route add default via " + subnet + ".9 metric " + std::to_string(100 * i + metric) + "\n";
  }
  batch += "address add 10.1.0.5/24 dev lan\nroute add default via 10.1.0.1 metric 9\n";
  build("printf '" + batch + "' | ip -batch -");
  EXPECT_EQ(asked(), "10.1.0.5");
}

}  // namespace
