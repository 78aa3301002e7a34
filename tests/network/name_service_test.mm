// Printers by host name on a real name service; in-namespaces makes it.
#import "panel_fixture.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iostream>

using testing::HasSubstr;

namespace {

constexpr char kFailed[] = "CopyResolvedIPAddress - getaddrinfo failed.\n";

struct Outcome {
  std::string address, log;
  test::Seconds time;
};

Outcome resolve(std::string const &uri) {
  Outcome outcome;
  outcome.log = test::error_output([&] {
    test::Seconds const start = test::now();
    id panel = test::new_panel(uri);
    outcome.time = test::now() - start;
    outcome.address = test::address_of(panel);
    [panel release];
  });
  return outcome;
}

TEST(NameService, ThePanelTakesTheFirstAddressOfAName) {
  struct {
    char const *uri, *address;
  } const rows[] = {
      {"ipp://only4.test:631/ipp/print", "10.77.0.20"},
      {"LPD://only4.test/queue", "10.77.0.20"},
      {"socket://only6.test:9100", "2001:db8:77::20"},
      {"socket://six-first.test", "2001:db8:77::21"},
      {"socket://four-first.test", "10.77.0.22"},
  };
  for (auto const &row : rows) {
    Outcome const outcome = resolve(row.uri);
    EXPECT_EQ(outcome.address, row.address) << row.uri;
    EXPECT_EQ(outcome.log, "") << row.uri;
  }
}

TEST(NameService, AFailureLeavesTheAddressUnknown) {
  Outcome const outcome = resolve("ipp://nobody.test/");
  EXPECT_EQ(outcome.address, "(nil)");
  EXPECT_EQ(outcome.log, kFailed);
  EXPECT_LT(outcome.time, 1) << "the server refuses at once";
}

TEST(NameService, ADeadNameServerBlocksForTheSystemsTimeoutAndNoLonger) {
  std::ofstream("/etc/resolv.conf") << "nameserver 192.0.2.53\noptions timeout:1 attempts:1\n";
  Outcome const outcome = resolve("ipp://nobody.test/");
  EXPECT_EQ(outcome.address, "(nil)");
  EXPECT_EQ(outcome.log, kFailed);
  EXPECT_GT(outcome.time, 0.9) << "the server was not asked";
  EXPECT_LT(outcome.time, 2.5);
  EXPECT_EQ(resolve("ipp://only4.test/").address, "10.77.0.20");
  std::cout << "blocked for " << outcome.time << " s; the time-out set is 1 s, once\n";
}

}  // namespace
