// Printers of a real Bonjour network; in-namespaces makes it and publishes them.
#import "panel_fixture.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <signal.h>
#include <vector>

using testing::HasSubstr;
using testing::Not;

namespace {

// A resolution is given up after 5 seconds; the rest is room for a busy machine.
constexpr test::Seconds kGivenUp = 8;
// The contract of a dialog that stays alive: nothing near the length of a resolution.
constexpr test::Seconds kLongestGap = 0.5;

std::size_t open_files() {
  return std::size_t(std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {}));
}

void turn_loop(test::Seconds time) {
  test::run_loop(time, [] { return false; });
}

// A daemon of the network, by the variable that in-namespaces gives.
pid_t pid_of(char const *variable) {
  char const *const text = std::getenv(variable);
  return text != nullptr ? std::atoi(text) : 0;
}

// Ends a daemon and waits until it is gone.
void end_daemon(char const *variable) {
  pid_t const pid = pid_of(variable);
  ASSERT_NE(pid, 0) << "to be run by in-namespaces";
  ASSERT_EQ(kill(pid, SIGTERM), 0) << variable;
  for (int round = 0; round < 500 && kill(pid, 0) == 0; round++) usleep(10'000);
  ASSERT_NE(kill(pid, 0), 0) << variable;
}

TEST(Bonjour, PrintersAreFoundAndSilentOnesGivenUpAfterFiveSeconds) {
  struct {
    std::string uri;
    char const *address;
  } const rows[] = {
      {"dnssd://Office%20MFP._ipp._tcp.local/?uuid=4509a320-00a0-008f-00b6-002507510eca", "10.77.0.30"},
      {"DNSSD://Office%20MFP._ipp._tcp.local./", "10.77.0.30"},
      {"mdns://Six._ipp._tcp.local", "2001:db8:77::30"},
      {"dnssd://Near._pdl-datastream._tcp.local./", "fe80::77:30%lan0"},
      {"dnssd://B%C3%BCro%20S%C3%BCd._ipp._tcp.local/", "10.77.0.30"},
      {"dnssd://Floor%202.1%20MFP._printer._tcp.local/", "10.77.0.30"},
      {"dnssd://Nowhere._ipp._tcp.local/", nullptr},
      {"dnssd://Unheard%20Of._ipp._tcp.local/", nullptr},
      // What Avahi refuses: no name, no type, control characters, too long for a label, for a name, for anything.
      {"dnssd://._ipp._tcp.local/", nullptr},
      {"dnssd://No%20Type.._tcp.local/", nullptr},
      {"dnssd://No%20Type.%20._tcp.local/", nullptr},
      {"dnssd://Line%0Abreak%01._ipp._tcp.local/", nullptr},
      {"dnssd://" + std::string(64, 'n') + "._ipp._tcp.local/", nullptr},
      {"dnssd://" + std::string(5000, 'n') + "._ipp._tcp.local/", nullptr},
      {"dnssd://Long%20Type._" + std::string(5000, 't') + "._tcp.local/", nullptr},
  };
  std::vector<id> panels;
  std::vector<test::Seconds> answered(std::size(rows), 0);
  test::Seconds given_up = 0, longest = 0, making = 0;
  std::size_t files = 0;
  std::string const log = test::error_output([&] {
    for (auto const &row : rows) {
      test::Seconds const start = test::now();
      panels.push_back(test::new_panel(row.uri));
      making = std::max(making, test::now() - start);
      EXPECT_EQ(test::address_of(panels.back()), "(nil)") << row.uri << ": answered before the loop ran";
    }
    EXPECT_EQ(test::living_services(), int(std::size(rows)));
    files = open_files();
    test::Seconds const start = test::now();
    longest = test::run_loop(kGivenUp, [&] {
      for (std::size_t i = 0; i < panels.size(); i++)
        if (answered[i] == 0 && test::address_of(panels[i]) != "(nil)") answered[i] = test::now() - start;
      if (test::living_services() == 0) given_up = test::now() - start;
      return given_up != 0;
    });
  });
  for (std::size_t i = 0; i < panels.size(); i++) {
    EXPECT_EQ(test::address_of(panels[i]), rows[i].address != nullptr ? rows[i].address : "(nil)") << rows[i].uri;
    EXPECT_LT(answered[i], 4.5) << rows[i].uri;
    [panels[i] release];
  }
  EXPECT_THAT(log, HasSubstr("Failed to resolve the Bonjour service Nowhere\n"));
  EXPECT_THAT(log, HasSubstr("Failed to resolve the Bonjour service Unheard Of\n"));
  EXPECT_THAT(log, Not(HasSubstr("Failed to resolve the Bonjour service Office MFP")));
  EXPECT_GT(given_up, 4.5);
  EXPECT_LT(given_up, 6.5);
  EXPECT_LT(longest, kLongestGap);
  // Every service had a connection to the message bus.
  EXPECT_LE(open_files() + std::size(rows), files);
  std::cout << "longest time to make a panel " << making * 1000 << " ms; answers after";
  for (auto const time : answered) std::cout << " " << time * 1000;
  std::cout << " ms; given up after " << given_up << " s; longest gap of the loop " << longest * 1000 << " ms\n";
}

TEST(Bonjour, APanelMayGoWhileItsPrinterIsLookedFor) {
  [test::new_panel("usb://Vendor/Model") release];  // whatever the first panel of a process opens for good
  for (char const *uri : {"dnssd://Office%20MFP._ipp._tcp.local/", "dnssd://Unheard%20Of._ipp._tcp.local/"}) {
    for (test::Seconds const age : {0.0, 0.002, 0.01, 0.1}) {
      SCOPED_TRACE(testing::Message() << uri << " after " << age);
      turn_loop(0.01);
      std::size_t const files = open_files();
      id panel = test::new_panel(uri);
      [panel resolveTargetDevice];
      EXPECT_EQ(test::living_services(), 2);
      turn_loop(age);
      [panel release];
      turn_loop(0.05);
      EXPECT_EQ(test::living_services(), 0);
      EXPECT_LE(open_files(), files);
    }
  }
}

// slowest: how long it may take to know that nobody answers.
void expect_failure_without_a_daemon(test::Seconds slowest = 0.5) {
  test::Seconds const start = test::now();
  id panel = nil;
  std::string const log = test::error_output([&] {
    panel = test::new_panel("dnssd://Office%20MFP._ipp._tcp.local/");
    EXPECT_EQ(test::living_services(), 1) << "told before the loop ran";
    test::run_loop(kGivenUp, [] { return test::living_services() == 0; });
  });
  EXPECT_LT(test::now() - start, slowest);
  EXPECT_EQ(test::living_services(), 0);
  EXPECT_EQ(test::address_of(panel), "(nil)");
  EXPECT_THAT(log, HasSubstr("Failed to resolve the Bonjour service Office MFP\n"));
  [panel release];
}

TEST(HangingDaemons, CountAsNoneAfterASecond) {
  for (char const *daemon : {"DIRECTFAX_TEST_AVAHI", "DIRECTFAX_TEST_DBUS"}) {
    SCOPED_TRACE(daemon);
    ASSERT_NE(pid_of(daemon), 0) << "to be run by in-namespaces";
    kill(pid_of(daemon), SIGSTOP);
    expect_failure_without_a_daemon(1.5);
    kill(pid_of(daemon), SIGCONT);
  }
}

// The daemons go one after the other: what comes below finds less and less of them.

void expect_failure_when_it_ends(char const *daemon) {
  id panel = test::new_panel("dnssd://Unheard%20Of._ipp._tcp.local/");
  id other = test::new_panel("dnssd://Office%20MFP._ipp._tcp.local/");
  test::run_loop(3, [&] { return test::address_of(other) != "(nil)"; });
  EXPECT_EQ(test::address_of(other), "10.77.0.30");
  EXPECT_EQ(test::living_services(), 1);
  test::Seconds const start = test::now();
  std::string const log = test::error_output([&] {
    end_daemon(daemon);
    EXPECT_LT(test::run_loop(kGivenUp, [] { return test::living_services() == 0; }), kLongestGap);
  });
  std::cout << "told after " << test::now() - start << " s\n";
  EXPECT_EQ(test::living_services(), 0);
  EXPECT_EQ(test::address_of(panel), "(nil)");
  EXPECT_THAT(log, HasSubstr("Failed to resolve the Bonjour service Unheard Of\n"));
  [panel release];
  [other release];
}

TEST(LosingDaemons, AvahiEndsDuringAResolution) { expect_failure_when_it_ends("DIRECTFAX_TEST_AVAHI"); }

TEST(LosingDaemons, WithoutAvahiTheAddressStaysUnknown) {
  expect_failure_without_a_daemon();
  [test::new_panel("dnssd://Office%20MFP._ipp._tcp.local/") release];
  turn_loop(0.05);
  EXPECT_EQ(test::living_services(), 0) << "the panel went before it was told";
}

TEST(LosingDaemons, WithoutAMessageBusTheAddressStaysUnknown) {
  end_daemon("DIRECTFAX_TEST_DBUS");
  expect_failure_without_a_daemon();
}

// On a network of its own: needs both daemons at its start.
TEST(LosingTheBus, TheMessageBusEndsDuringAResolution) { expect_failure_when_it_ends("DIRECTFAX_TEST_DBUS"); }

}  // namespace
