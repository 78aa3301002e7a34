#include <CoreServices/CoreServices.h>

#import <Foundation/Foundation.h>

#include <gmock/gmock.h>

#include <grp.h>
#include <set>

namespace {

class IdentityServices : public testing::Test {
protected:
  ~IdentityServices() override { [pool_ release]; }

  static CSIdentityQueryRef named(char const *name, CSIdentityClass kind) {
    CFStringRef const text = CFStringCreateWithCString(nullptr, name, kCFStringEncodingUTF8);
    CSIdentityQueryRef const query = CSIdentityQueryCreateForName(nullptr, text, kCSIdentityQueryStringEquals, kind,
                                                                  CSGetLocalIdentityAuthority());
    CFRelease(text);
    return query;
  }

  // Executes and releases the query.
  static CFArrayRef results(CSIdentityQueryRef query) {
    EXPECT_TRUE(CSIdentityQueryExecute(query, 0, nullptr));
    CFArrayRef const found = CSIdentityQueryCopyResults(query);
    CSIdentityQueryStop(query);
    CFRelease(query);
    return found;
  }

  static CSIdentityRef at(CFArrayRef array, CFIndex index) {
    return static_cast<CSIdentityRef>(const_cast<void *>(CFArrayGetValueAtIndex(array, index)));
  }

private:
  NSAutoreleasePool *pool_ = [NSAutoreleasePool new];
};

TEST_F(IdentityServices, MembersOfRootsGroup) {
  CFArrayRef const groups = results(named(getgrgid(0)->gr_name, kCSIdentityClassGroup));
  ASSERT_EQ(CFArrayGetCount(groups), 1);
  CFArrayRef const members = results(CSIdentityCreateGroupMembershipQuery(nullptr, at(groups, 0)));
  std::multiset<std::string> names;
  for (CFIndex index = 0; index < CFArrayGetCount(members); ++index)
    names.insert([(NSString *)CSIdentityGetPosixName(at(members, index)) UTF8String]);
  EXPECT_EQ(names.count("root"), 1u);
  CFRelease(members);
  CFRelease(groups);
}

TEST_F(IdentityServices, NothingFoundIsAnEmptyResult) {
  CFArrayRef const none = results(named("no such group here", kCSIdentityClassGroup));
  ASSERT_NE(none, nullptr);
  EXPECT_EQ(CFArrayGetCount(none), 0);
  CFRelease(none);
}

TEST_F(IdentityServices, AUserIsNoGroup) {
  CFArrayRef const users = results(named("root", kCSIdentityClassUser));
  ASSERT_EQ(CFArrayGetCount(users), 1);
  EXPECT_EQ(CSIdentityCreateGroupMembershipQuery(nullptr, at(users, 0)), nullptr);
  CFRelease(users);
}

TEST_F(IdentityServices, Refusals) {
  CSIdentityAuthorityRef const authority = CSGetLocalIdentityAuthority();
  EXPECT_NE(authority, nullptr);
  EXPECT_EQ(named(nullptr, kCSIdentityClassUser), nullptr);
  EXPECT_EQ(CSIdentityQueryCreateForName(nullptr, CFSTR("root"), 3, kCSIdentityClassUser, authority), nullptr);
  EXPECT_EQ(CSIdentityQueryCreateForName(nullptr, CFSTR("root"), kCSIdentityQueryStringEquals, 3, authority), nullptr);
  EXPECT_EQ(CSIdentityCreateGroupMembershipQuery(nullptr, nullptr), nullptr);
  EXPECT_FALSE(CSIdentityQueryExecute(nullptr, 0, nullptr));
  CSIdentityQueryRef const query = named("root", kCSIdentityClassUser);
  EXPECT_EQ(CSIdentityQueryCopyResults(query), nullptr);  // not executed
  CFRelease(query);
}

}  // namespace
