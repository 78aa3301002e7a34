#include <SystemConfiguration/SystemConfiguration.h>

#include "platform/routes.h"

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

namespace {

class DynamicStore : public testing::Test {
protected:
  ~DynamicStore() override {
    CFRelease(store_);
    [pool_ release];
  }

  // The value, which ends with the test.
  NSDictionary *value(std::string const &key) {
    CFStringRef const name = CFStringCreateWithCString(nullptr, key.c_str(), kCFStringEncodingUTF8);
    CFPropertyListRef const own = SCDynamicStoreCopyValue(store_, name);
    CFRelease(name);
    return [(NSDictionary *)own autorelease];
  }

private:
  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
  SCDynamicStoreRef store_ = SCDynamicStoreCreate(nullptr, CFSTR("systempreference"), nullptr, nullptr);
};

TEST_F(DynamicStore, Loopback) {
  NSDictionary *link = value("State:/Network/Interface/lo/Link");
  EXPECT_EQ(static_cast<void const *>([link objectForKey:@"Active"]), kCFBooleanTrue);
  NSDictionary *service = value("State:/Network/Service/lo/IPv4");
  EXPECT_TRUE([[service objectForKey:@"InterfaceName"] isEqual:@"lo"]);
  EXPECT_TRUE([[service objectForKey:@"Addresses"] containsObject:@"127.0.0.1"]);
}

TEST_F(DynamicStore, GlobalIsTheDefaultRoute) {
  auto const route = fax::default_route(fax::system_route_table(), fax::system_interfaces());
  NSDictionary *global = value("State:/Network/Global/IPv4");
  ASSERT_EQ(global != nil, route.has_value());
  if (!route) GTEST_SKIP() << "this machine has no default route";
  NSString *name = [global objectForKey:@"PrimaryInterface"];
  EXPECT_EQ(route->interface, [name UTF8String]);
  EXPECT_TRUE([[global objectForKey:@"PrimaryService"] isEqual:name]);
  EXPECT_TRUE(CFEqual([value("State:/Network/Interface/" + route->interface + "/Link") objectForKey:@"Active"],
                      kCFBooleanTrue));
}

TEST_F(DynamicStore, KeysWithoutAValue) {
  for (char const *key : {"", "State:/Network/Interface/no-such/Link", "State:/Network/Interface//Link",
                          "State:/Network/Interface/Link", "State:/Network/Service/no-such/IPv4",
                          "State:/Network/Global/IPv6"})
    EXPECT_EQ(value(key), nil) << key;
  EXPECT_EQ(SCDynamicStoreCopyValue(nullptr, nullptr), nullptr);
}

}  // namespace
