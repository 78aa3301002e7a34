#include "platform/routes.h"

#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <cstdio>

namespace {

// A line of /proc/net/route; addresses as the kernel prints them: the bytes in memory as one number.
std::string line(char const *interface, char const *destination, char const *router, unsigned flags, unsigned metric,
                 char const *mask) {
  auto const word = [](char const *dotted) {
    in_addr address{};
    inet_pton(AF_INET, dotted, &address);
    return address.s_addr;
  };
  char text[160];
  std::snprintf(text, sizeof text, "%s\t%08X\t%08X\t%04X\t0\t0\t%u\t%08X\t0\t0\t0   \n", interface, word(destination),
                word(router), flags, metric, word(mask));
  return text;
}

std::string via(char const *interface, char const *router, unsigned metric, unsigned flags = 3) {
  return line(interface, "0.0.0.0", router, flags, metric, "0.0.0.0");
}

std::string const kHead = "Iface\tDestination\tGateway \tFlags\tRefCnt\tUse\tMetric\tMask\t\tMTU\tWindow\tIRTT   \n";
std::string const kSubnet = line("eth0", "10.0.0.0", "0.0.0.0", 1, 0, "255.0.0.0");

struct Row {
  char const *name;
  std::string table;
  std::string interface;  // "": none
  std::string router;
};

class DefaultRoute : public testing::TestWithParam<Row> {};

TEST_P(DefaultRoute, IsTheOneTaken) {
  std::vector<fax::Interface> const interfaces{
      {"eth0", true, {"10.0.0.5"}}, {"wlan0", true, {"10.2.0.5"}}, {"ppp0", true, {"10.3.0.5"}}, {"eth1", false, {"10.1.0.5"}},
      {"br0", true, {}}};
  auto const route = fax::default_route(GetParam().table, interfaces);
  EXPECT_EQ(route ? route->interface : "", GetParam().interface);
  EXPECT_EQ(route ? route->router : "", GetParam().router);
}

INSTANTIATE_TEST_SUITE_P(Table, DefaultRoute, testing::Values(
    Row{"one", kHead + via("eth0", "10.0.0.1", 100) + kSubnet, "eth0", "10.0.0.1"},
    Row{"least_metric", kHead + via("wlan0", "10.2.0.1", 600) + kSubnet + via("eth0", "10.0.0.1", 100), "eth0",
        "10.0.0.1"},
    Row{"first_of_equals", kHead + via("wlan0", "10.2.0.1", 0) + via("eth0", "10.0.0.1", 0), "wlan0", "10.2.0.1"},
    Row{"interface_down", kHead + via("eth1", "10.1.0.1", 0) + via("eth0", "10.0.0.1", 100), "eth0", "10.0.0.1"},
    Row{"interface_without_address", kHead + via("br0", "10.4.0.1", 0) + via("eth0", "10.0.0.1", 100), "eth0",
        "10.0.0.1"},
    Row{"interface_unknown", kHead + via("tun7", "10.1.0.1", 0), "", ""},
    Row{"only_one_down", kHead + via("eth1", "10.1.0.1", 0), "", ""},
    Row{"route_not_up", kHead + via("eth0", "10.0.0.1", 0, 2), "", ""},
    Row{"rejecting", kHead + via("eth0", "0.0.0.0", 0, 0x201) + via("wlan0", "10.2.0.1", 600), "wlan0", "10.2.0.1"},
    Row{"point_to_point", kHead + via("ppp0", "0.0.0.0", 0, 1), "ppp0", ""},
    Row{"half_of_everything_is_no_default", kHead + line("eth0", "0.0.0.0", "10.0.0.1", 3, 0, "128.0.0.0"), "", ""},
    Row{"none", kHead + kSubnet, "", ""},
    Row{"broken_line_passed_over", kHead + "eth0\t0000\nwlan0 x\n\n" + via("eth0", "10.0.0.1", 0), "eth0", "10.0.0.1"},
    Row{"no_newline_at_end", kHead + via("eth0", "10.0.0.1", 0).substr(0, 50), "eth0", "10.0.0.1"},
    Row{"empty", "", "", ""}),
  [](auto const &info) { return std::string(info.param.name); });

TEST(SystemInterfaces, LoopbackIsThere) {
  auto const interfaces = fax::system_interfaces();
  auto const *loopback = fax::find_interface(interfaces, "lo");
  ASSERT_NE(loopback, nullptr);
  EXPECT_TRUE(loopback->active);
  EXPECT_THAT(loopback->addresses, testing::Contains("127.0.0.1"));
}

}  // namespace
