#import "support/UtilityService.h"

#include "cf_text.h"

#include <CoreServices/CoreServices.h>
#include <SystemConfiguration/SystemConfiguration.h>
#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <objc/runtime.h>
#include <optional>
#include <string>
#include <vector>

// An object whose life is counted, for what the functions below hand out.
static int living = 0;
@interface CountedObject : NSObject {
 @public
  NSString *name;  // borrowed
  BOOL stopped;
}
@end
@implementation CountedObject
- (id)init {
  ++living;
  return [super init];
}
- (void)dealloc {
  --living;
  [super dealloc];
}
@end

namespace {

// What the process takes for its home folder; nullopt: HOME, where the toolkit itself would ask the user database.
std::optional<NSString *> home;

// How the Identity Services answer.
struct Services {
  bool authority = true, query = true, executes = true, results = true, groups = true, members_query = true,
       members_results = true;
  std::vector<NSString *> members = {};
  int stopped = 0;
  CSIdentityQueryRef membership = nullptr;
} services;

// What the dynamic store holds; nil for the store: no session.
NSDictionary *store_values = nil;

NSArray *counted_array(std::vector<NSString *> const &names) {
  NSMutableArray *array = [[NSMutableArray alloc] init];
  for (NSString *name : names) {
    CountedObject *object = [CountedObject new];
    object->name = name;
    [array addObject:object];
    [object release];
  }
  return array;
}

}  // namespace

// Exported, so that the toolkit's expansion of "~" finds it too.
__attribute__((visibility("default"))) NSString *NSHomeDirectory(void) {
  return home ? *home : [NSString stringWithUTF8String:std::getenv("HOME")];
}

CSIdentityAuthorityRef CSGetLocalIdentityAuthority(void) {
  return services.authority ? reinterpret_cast<CSIdentityAuthorityRef>(&services) : nullptr;
}
CSIdentityQueryRef CSIdentityQueryCreateForName(CFAllocatorRef, CFStringRef name,
                                                CSIdentityQueryStringComparisonMethod comparison,
                                                CSIdentityClass identity_class, CSIdentityAuthorityRef) {
  EXPECT_EQ(text_of(name), "admin");
  EXPECT_EQ(comparison, kCSIdentityQueryStringEquals);
  EXPECT_EQ(identity_class, kCSIdentityClassGroup);
  return services.query ? (CSIdentityQueryRef)[CountedObject new] : nullptr;
}
CSIdentityQueryRef CSIdentityCreateGroupMembershipQuery(CFAllocatorRef, CSIdentityRef group) {
  EXPECT_TRUE([((CountedObject *)group)->name isEqual:@"first"]);
  return services.membership = services.members_query ? (CSIdentityQueryRef)[CountedObject new] : nullptr;
}
Boolean CSIdentityQueryExecute(CSIdentityQueryRef query, CSIdentityQueryFlags flags, CFErrorRef *) {
  EXPECT_EQ(flags, 0u);
  return query != services.membership && services.executes;
}
CFArrayRef CSIdentityQueryCopyResults(CSIdentityQueryRef query) {
  if (query == services.membership)
    return services.members_results ? (CFArrayRef)counted_array(services.members) : nullptr;
  if (!services.results) return nullptr;
  return (CFArrayRef)counted_array(services.groups ? std::vector<NSString *>{@"first", @"second"}
                                                   : std::vector<NSString *>{});
}
void CSIdentityQueryStop(CSIdentityQueryRef) { ++services.stopped; }
CFStringRef CSIdentityGetPosixName(CSIdentityRef identity) { return (CFStringRef)((CountedObject *)identity)->name; }

SCDynamicStoreRef SCDynamicStoreCreate(CFAllocatorRef, CFStringRef name, SCDynamicStoreCallBack callback,
                                       SCDynamicStoreContext *) {
  EXPECT_EQ(text_of(name), "systempreference");
  EXPECT_EQ(callback, nullptr);
  return store_values != nil ? (SCDynamicStoreRef)[CountedObject new] : nullptr;
}
CFPropertyListRef SCDynamicStoreCopyValue(SCDynamicStoreRef, CFStringRef key) {
  return (CFPropertyListRef)[[store_values objectForKey:(NSString *)key] retain];
}

namespace {

class Service : public testing::Test {
 protected:
  void SetUp() override {
    pool = [NSAutoreleasePool new];
    services = {};
    living = 0;
  }
  void TearDown() override {
    [pool release];
    EXPECT_EQ(living, 0) << "objects that nobody released";
  }
  NSAutoreleasePool *pool;
};

std::string utf8(NSString *text) { return text != nil ? [text UTF8String] : "(nil)"; }

TEST_F(Service, HasNoFields) {
  EXPECT_STREQ(class_getName([UtilityService class]), "com_norvalt_tk_o_pde_vexolinddirectfax_UtilityService");
  EXPECT_EQ([UtilityService superclass], [NSObject class]);
  EXPECT_EQ(class_getInstanceSize([UtilityService class]), class_getInstanceSize([NSObject class]));
}

TEST_F(Service, TextOfABuffer) {
  struct {
    std::vector<unichar> units;
    int size;
    char const *text;
  } const cases[] = {
      {{0x41, 0}, 4, "A"},
      {{0x3042, 0xD83D, 0xDE00, 0, 0x42}, 10, "\xE3\x81\x82\xF0\x9F\x98\x80"},
      {{0, 0x41}, 4, "(nil)"},
      {{0x41, 0x42}, 4, "(nil)"},
      {{0x41, 0}, 1, "(nil)"},
      {{0x41, 0}, 0, "(nil)"},
      {{0x41, 0}, -2, "(nil)"},
  };
  for (auto const &c : cases)
    EXPECT_EQ(utf8([UtilityService stringFromUnicodeBuf:c.units.data() ofLength:c.size]), c.text);
  EXPECT_EQ([UtilityService stringFromUnicodeBuf:NULL ofLength:4], nil);
}

// The answer is kept for the process, so each case has one of its own.
TEST_F(Service, SandboxByHomeOfTheFirstCall) {
  struct {
    NSString *first, *later;
    bool sandboxed;
  } const cases[] = {{@"/Users/x/Library/Containers/y/Data", @"/Users/x", true},
                     {@"/Users/x", @"/Users/x/Library/Containers/y/Data", false},
                     {@"/home/containers", @"/", false},
                     {nil, @"/Containers", false}};
  for (auto const &c : cases) {
    EXPECT_EXIT(
        {
          home = c.first;
          bool const first = [UtilityService isSandboxed];
          home = c.later;
          std::exit(first == c.sandboxed && [UtilityService isSandboxed] == c.sandboxed ? 0 : 1);
        },
        testing::ExitedWithCode(0), "")
        << utf8(c.first);
  }
}

// The user's help preferences, in the home folder that the test runs in.
class HelpCache : public Service {
 protected:
  void SetUp() override {
    Service::SetUp();
    path = std::filesystem::path(std::getenv("HOME")) / "Library/Preferences/com.apple.help.plist";
    // Never the preferences of whoever runs the test.
    ASSERT_EQ(utf8([@"~" stringByExpandingTildeInPath]), std::getenv("HOME"));
    ASSERT_FALSE(std::filesystem::exists(path));
    std::filesystem::create_directories(path.parent_path());
  }
  void TearDown() override {
    if (!HasFatalFailure()) std::filesystem::remove_all(path);
    Service::TearDown();
  }
  void write(std::string const &text) { std::ofstream(path, std::ios::binary) << text; }
  std::string read() {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }
  NSDictionary *preferences() {
    return [NSDictionary dictionaryWithContentsOfFile:[NSString stringWithUTF8String:path.c_str()]];
  }
  void remove() { [UtilityService removeHelpCacheForBundleID:@"com.norvalt.fax"]; }
  std::filesystem::path path;
};

std::string plist(std::string const &content) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
         "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
         "<plist version=\"1.0\">" + content + "</plist>\n";
}

std::string dictionary(std::string const &books, std::string const &order) {
  return plist("<dict><key>Other</key><integer>7</integer><key>RegisteredBooks</key>" + books +
               "<key>RegistrationOrder</key>" + order + "</dict>");
}

std::string const kOther = "<key>com.other</key><array><dict><key>url</key><string>a.lproj/b</string></dict></array>";
std::string const kStale =
    "<key>com.norvalt.fax</key><array><dict><key>url</key><string>file:///x/en.lproj/Help/</string></dict></array>";
std::string const kOrder =
    "<array><string>com.other</string><string>com.norvalt.fax</string><string>com.norvalt.fax</string></array>";

TEST_F(HelpCache, StaleRegistrationIsTakenOut) {
  write(dictionary("<dict>" + kOther + kStale + "</dict>", kOrder));
  remove();
  NSDictionary *left = preferences();
  EXPECT_TRUE([[[left objectForKey:@"RegisteredBooks"] allKeys] isEqual:[NSArray arrayWithObject:@"com.other"]]);
  NSArray *order = [left objectForKey:@"RegistrationOrder"];
  EXPECT_TRUE([order isEqual:([NSArray arrayWithObjects:@"com.other", @"com.norvalt.fax", nil])])
      << utf8([order description]);
  EXPECT_EQ([[left objectForKey:@"Other"] intValue], 7);
  EXPECT_EQ(read().rfind("<?xml", 0), 0u);
  std::string const after = read();
  remove();
  EXPECT_EQ(read(), after);
}

TEST_F(HelpCache, OrderMayBeMissingOrOdd) {
  for (auto const &order : {std::string("<array/>"), std::string("<string>x</string>"), std::string("<dict/>"),
                            std::string("<array><integer>1</integer></array>")}) {
    write(dictionary("<dict>" + kStale + "</dict>", order));
    remove();
    EXPECT_EQ([[preferences() objectForKey:@"RegisteredBooks"] count], 0u) << order;
    EXPECT_NE([preferences() objectForKey:@"RegistrationOrder"], nil) << order;
  }
  write(plist("<dict><key>RegisteredBooks</key><dict>" + kStale + "</dict></dict>"));
  remove();
  EXPECT_EQ([[preferences() objectForKey:@"RegisteredBooks"] count], 0u);
}

std::string with_registration(std::string const &registration) {
  return dictionary("<dict>" + kOther + "<key>com.norvalt.fax</key>" + registration + "</dict>", kOrder);
}

TEST_F(HelpCache, EverythingElseIsLeftAsItIs) {
  std::string const good = dictionary("<dict>" + kOther + kStale + "</dict>", kOrder);
  std::vector<std::string> files = {
      "",
      "no property list",
      "{ RegisteredBooks = (",
      "bplist00",
      "bplist00" + std::string(40, '\0'),
      "bplist00" + std::string(40, '\1'),
      std::string("\x01\x02\x03\x04", 4),
      plist("<array><string>x</string></array>"),
      plist("<string>x</string>"),
      plist("<dict/>"),
      dictionary("<array/>", kOrder),
      dictionary("<string>com.norvalt.fax</string>", kOrder),
      dictionary("<dict>" + kOther + "</dict>", kOrder),
      with_registration("<array><dict><key>url</key><string>file:///x/Help/</string></dict></array>"),
      with_registration("<array><dict><key>url</key><integer>1</integer></dict></array>"),
      with_registration("<array><dict/></array>"),
      with_registration("<array><string>en.lproj</string></array>"),
      with_registration("<array/>"),
      with_registration("<dict><key>url</key><string>en.lproj</string></dict>"),
      with_registration("<string>en.lproj</string>"),
  };
  for (std::size_t end = 0; end + 10 < good.size(); end += 29) files.push_back(good.substr(0, end));
  for (auto const &file : files) {
    write(file);
    remove();
    EXPECT_EQ(read(), file);
  }
  write(good);
  [UtilityService removeHelpCacheForBundleID:nil];
  [UtilityService removeHelpCacheForBundleID:@"com.norvalt"];
  EXPECT_EQ(read(), good);
}

TEST_F(HelpCache, NoFileStaysNone) {
  remove();
  EXPECT_FALSE(std::filesystem::exists(path));
  std::filesystem::create_directories(path);
  remove();
  EXPECT_TRUE(std::filesystem::is_directory(path));
}

struct AdminCase {
  char const *name;
  Services services;
  NSString *user;
  bool admin;
  int stopped;
  char const *message;  // "" for none
};

class Admin : public Service, public testing::WithParamInterface<AdminCase> {};

TEST_P(Admin, ByIdentityServices) {
  auto const &c = GetParam();
  services = c.services;
  testing::internal::CaptureStderr();
  EXPECT_EQ([UtilityService checkIfAdminUser:c.user], c.admin);
  std::string const log = testing::internal::GetCapturedStderr();
  if (*c.message == '\0') {
    EXPECT_EQ(log, "");
  } else {
    EXPECT_THAT(log, testing::HasSubstr(std::string("UtilityService - ") + c.message + " failed.\n"));
  }
  EXPECT_EQ(services.stopped, c.stopped);
}

AdminCase const kAdminCases[] = {
    {"member", {.members = {@"root", @"ann"}}, @"ann", true, 2, ""},
    {"no_member", {.members = {@"root", @"anna"}}, @"ann", false, 2, ""},
    {"member_without_a_name", {.members = {nil, @"", @"ann"}}, @"ann", true, 2, ""},
    {"empty_name_is_nobody", {.members = {@""}}, @"", false, 2, ""},
    {"no_members", {}, @"ann", false, 2, ""},
    {"no_user", {.members = {@"ann"}}, nil, false, 0, ""},
    {"no_authority", {.authority = false}, @"ann", false, 0, ""},
    {"no_query", {.query = false}, @"ann", false, 0, "CSIdentityQueryCreateForName"},
    {"query_fails", {.executes = false}, @"ann", false, 0, "CSIdentityQueryExecute"},
    {"no_results", {.results = false}, @"ann", false, 1, "CSIdentityQueryCopyResults"},
    {"no_group", {.groups = false}, @"ann", false, 1, ""},
    {"no_members_query", {.members_query = false}, @"ann", false, 1, "CSIdentityCreateGroupMembershipQuery"},
    {"no_members_results", {.members_results = false}, @"ann", false, 2, ""},
};
INSTANTIATE_TEST_SUITE_P(Table, Admin, testing::ValuesIn(kAdminCases),
                         [](auto const &i) { return std::string(i.param.name); });

// nil and nullopt: not in the store.
struct Network {
  NSString *interface = @"en0", *service = @"S1";
  std::optional<bool> active = true;
  std::optional<std::vector<NSString *>> addresses = std::vector<NSString *>{@"10.0.0.7", @"10.0.0.8"};

  NSDictionary *values() const {
    NSMutableDictionary *global = [NSMutableDictionary dictionary], *link = [NSMutableDictionary dictionary],
                        *ipv4 = [NSMutableDictionary dictionary];
    if (interface != nil) [global setObject:interface forKey:@"PrimaryInterface"];
    if (service != nil) [global setObject:service forKey:@"PrimaryService"];
    if (active) [link setObject:[NSNumber numberWithBool:*active] forKey:@"Active"];
    if (addresses)
      [ipv4 setObject:[NSArray arrayWithObjects:addresses->data() count:addresses->size()] forKey:@"Addresses"];
    return [NSDictionary dictionaryWithObjectsAndKeys:global, @"State:/Network/Global/IPv4", link,
                                                      @"State:/Network/Interface/en0/Link", ipv4,
                                                      @"State:/Network/Service/S1/IPv4", nil];
  }
};

struct AddressCase {
  char const *name;
  Network network;
  char const *address;
};

class HostAddress : public Service, public testing::WithParamInterface<AddressCase> {
 protected:
  void TearDown() override {
    store_values = nil;
    Service::TearDown();
  }
};

TEST_P(HostAddress, OfThePrimaryInterface) {
  store_values = GetParam().network.values();
  NSString *address = [UtilityService copyHostIPv4Address];
  EXPECT_EQ(utf8(address), GetParam().address);
  [address release];
}

AddressCase const kAddressCases[] = {
    {"first_of_the_service", {}, "10.0.0.7"},
    {"no_interface", {.interface = nil}, "(nil)"},
    {"no_service", {.service = nil}, "(nil)"},
    {"interface_without_a_link", {.interface = @"en1"}, "(nil)"},
    {"inactive", {.active = false}, "(nil)"},
    {"activity_unknown", {.active = std::nullopt}, "(nil)"},
    {"service_without_addresses", {.service = @"S2"}, "(nil)"},
    {"addresses_missing", {.addresses = std::nullopt}, "(nil)"},
    {"addresses_empty", {.addresses = std::vector<NSString *>{}}, "(nil)"},
};
INSTANTIATE_TEST_SUITE_P(Table, HostAddress, testing::ValuesIn(kAddressCases),
                         [](auto const &i) { return std::string(i.param.name); });

TEST_F(Service, NoHostAddressWithoutASession) {
  store_values = nil;
  EXPECT_EQ([UtilityService copyHostIPv4Address], nil);
}

TEST_F(Service, ValuesOfAnotherClassAreNoHostAddress) {
  for (NSString *key : {@"State:/Network/Global/IPv4", @"State:/Network/Interface/en0/Link",
                        @"State:/Network/Service/S1/IPv4"}) {
    NSMutableDictionary *odd = [NSMutableDictionary dictionaryWithDictionary:Network{}.values()];
    [odd setObject:@"text" forKey:key];
    store_values = odd;
    EXPECT_EQ([UtilityService copyHostIPv4Address], nil) << utf8(key);
  }
  store_values = nil;
}

}  // namespace
