// Device URIs and service answers that no sane system gives. No network: DBUS_SYSTEM_BUS_ADDRESS leads nowhere.
#import "panel_fixture.h"

#include <algorithm>
#include <arpa/inet.h>
#include <gmock/gmock.h>
#include <iostream>
#include <netinet/in.h>
#include <sys/un.h>
#include <vector>

namespace {

// A resolved service with the given socket addresses. The panel stops and releases it.
int stopped_services, freed_services;

}  // namespace

@interface AnsweredService : NSObject {
 @public
  NSArray *addresses;
}
@end
@implementation AnsweredService
- (NSArray *)addresses {
  return addresses;
}
- (NSString *)name {
  return @"Answered";
}
- (void)stop {
  stopped_services++;
}
- (void)dealloc {
  freed_services++;
  [addresses release];
  [super dealloc];
}
@end

namespace {

template <typename Address> NSData *bytes_of(Address const &address, std::size_t length = sizeof(Address)) {
  return [NSData dataWithBytes:&address length:length];
}

NSData *ipv4(char const *text, std::size_t length = sizeof(sockaddr_in)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  inet_pton(AF_INET, text, &address.sin_addr);
  return bytes_of(address, length);
}

NSData *ipv6(char const *text, std::size_t length = sizeof(sockaddr_in6)) {
  sockaddr_in6 address{};
  address.sin6_family = AF_INET6;
  inet_pton(AF_INET6, text, &address.sin6_addr);
  return bytes_of(address, length);
}

NSData *other_family() {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  return bytes_of(address);
}

class BadInput : public testing::Test {
 protected:
  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
  ~BadInput() override { [pool_ release]; }
};

TEST_F(BadInput, AddressListsOfAServiceAreReadAsFarAsTheyGo) {
  std::vector<NSData *> const lists[] = {
      {},
      {[NSData data]},
      {bytes_of('\0')},
      {other_family(), other_family()},
      {ipv4("192.0.2.1", 0), ipv4("192.0.2.1", 1), ipv4("192.0.2.1", 2), ipv4("192.0.2.1", 7), ipv4("192.0.2.1", 15)},
      {ipv6("2001:db8::1", 2), ipv6("2001:db8::1", 16), ipv6("fe80::1", 24), ipv6("2001:db8::1", 27)},
      {other_family(), ipv6("2001:db8::1"), ipv4("192.0.2.1")},
      {[NSData data], ipv4("192.0.2.1"), ipv6("2001:db8::1")},
  };
  char const *const addresses[] = {"(nil)", "(nil)", "(nil)", "(nil)", "(nil)", "(nil)", "2001:db8::1", "192.0.2.1"};
  stopped_services = freed_services = 0;
  for (std::size_t i = 0; i < std::size(lists); i++) {
    id panel = test::new_panel("beh://1/0/0");
    AnsweredService *service = [[AnsweredService alloc] init];
    service->addresses = [[NSArray alloc] initWithObjects:lists[i].data() count:lists[i].size()];
    [panel netServiceDidResolveAddress:(id)service];
    EXPECT_EQ(test::address_of(panel), addresses[i]) << "list " << i;
    [panel release];
  }
  EXPECT_EQ(stopped_services, int(std::size(lists)));
  EXPECT_EQ(freed_services, int(std::size(lists)));
}

TEST_F(BadInput, AFailedServiceIsNamedStoppedAndReleased) {
  id panel = test::new_panel("usb://Vendor/Model");
  stopped_services = freed_services = 0;
  std::string const log = test::error_output([&] {
    [panel netService:(id)[[AnsweredService alloc] init] didNotResolve:nil];
  });
  EXPECT_THAT(log, testing::EndsWith("Failed to resolve the Bonjour service Answered\n"));
  EXPECT_EQ(stopped_services, 1);
  EXPECT_EQ(freed_services, 1);
  EXPECT_EQ(test::address_of(panel), "") << "the address that was there stays";
  [panel release];
}

TEST_F(BadInput, ServiceNamesThatAreNoTextStartNoResolution) {
  for (char const *uri : {
           "dnssd://%FF%FE._ipp._tcp.local/",            // no UTF-8
           "dnssd://B%C3._ipp._tcp.local/",              // a character cut short
           "dnssd://%C0%AF._ipp._tcp.local/",            // longer than it need be
           "dnssd://%ED%A0%80._ipp._tcp.local/",         // half a surrogate pair
           "dnssd://%F4%90%80%80._ipp._tcp.local/",      // past the last character
           "dnssd://Office%2._ipp._tcp.local/", "dnssd://Office._ipp._tcp.local%", "dnssd://Office%zz._ipp._tcp.local/",
           "dnssd://Office%00._ipp._tcp.local/", "dnssd://printer/", "dnssd:///", "dnssd:", "mdns://%", "dnssd",
           "DNSSD://_tcp", "", ":", "://", "\x01", "dnssd://Office MFP._ipp._tcp.local/"}) {
    id panel = test::new_panel(uri);
    EXPECT_EQ(test::address_of(panel), "(nil)") << uri;
    EXPECT_EQ(test::living_services(), 0) << uri;
    [panel release];
  }
}

TEST_F(BadInput, StrangeButValidServiceNamesAreGivenToTheService) {
  for (char const *name : {"%EF%BF%BF", "%EF%BB%BFOffice", "%F0%9F%96%A8", "%01%0A", "%25%40%25n", "a%2Eb%2F%3F"}) {
    std::string const uri = std::string("dnssd://") + name + "._ipp._tcp.local/";
    std::string const log = test::error_output([&] {
      id panel = test::new_panel(uri);
      test::run_loop(5, [] { return test::living_services() == 0; });
      EXPECT_EQ(test::address_of(panel), "(nil)") << uri;
      [panel release];
    });
    EXPECT_THAT(log, testing::HasSubstr("Failed to resolve the Bonjour service ")) << uri;
  }
}

TEST_F(BadInput, AHostNameThatIsTooLongIsNotLookedUpInPart) {
  for (std::size_t const length : {4095, 4096, 5000, 1'000'000}) {
    id panel = nil;
    test::Seconds const start = test::now();
    std::string const log =
        test::error_output([&] { panel = test::new_panel("ipp://" + std::string(length, 'h') + "/ipp/print"); });
    EXPECT_LT(test::now() - start, 1) << length;
    EXPECT_EQ(test::address_of(panel), "(nil)") << length;
    EXPECT_EQ(log, "CopyResolvedIPAddress - getaddrinfo failed.\n") << length;
    [panel release];
  }
}

// Between these two the system calls are looked through, by network-calls: the name is a file that never is.
void mark(char const *name) { EXPECT_NE(access(name, F_OK), 0); }

TEST(KnownAddress, IsSettledInUnderAMillisecond) {
  struct {
    char const *uri, *address;
  } const rows[] = {{"usb://Vendor/Model?serial=1", ""},
                    {"socket://192.168.1.20", "192.168.1.20"},
                    {"ipp://[2001:db8::7]:631/ipp/print", "2001:db8::7"},
                    {"lpd://[fe80::7]/queue", "fe80::7"}};
  test::Seconds const limit = std::getenv("DIRECTFAX_TEST_TRACED") == nullptr ? 1e-3 : 1;
  for (auto const &row : rows) {
    id panel = test::new_panel(row.uri);
    std::vector<test::Seconds> times;
    mark("/directfax-begin");
    for (int round = 0; round < 200; round++) {
      NSAutoreleasePool *pool = [NSAutoreleasePool new];
      [panel setValue:nil forKey:@"printerAddress"];
      test::Seconds const start = test::now();
      [panel resolveTargetDevice];
      times.push_back(test::now() - start);
      [pool release];
    }
    mark("/directfax-end");
    EXPECT_EQ(test::address_of(panel), row.address) << row.uri;
    [panel release];
    std::sort(times.begin(), times.end());
    std::cout << row.uri << ": median " << times[times.size() / 2] * 1e6 << " us, longest " << times.back() * 1e6
              << " us\n";
    EXPECT_LT(times[times.size() / 2], limit) << row.uri;
  }
}

// What network-calls has to find, lest it find nothing anywhere.
TEST(LookedUpAddress, AsksTheNameService) {
  mark("/directfax-look-up-begin");
  id panel = test::new_panel("ipp://localhost/");
  mark("/directfax-look-up-end");
  [panel release];
}

}  // namespace
