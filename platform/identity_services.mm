#include <CoreServices/CoreServices.h>

#include "platform/bridge.h"
#include "platform/identity.h"

using fax::fenced;
using fax::pooled;

@interface FaxPlatformIdentity : NSObject {
@public
  NSString *name;
  BOOL isGroup;
}
@end

@implementation FaxPlatformIdentity

- (void)dealloc {
  [name release];
  [super dealloc];
}

@end

// What a query looks for; its results once it was executed.
@interface FaxPlatformIdentityQuery : NSObject {
@public
  NSString *name;
  BOOL wantsMembers;  // of the group with that name; else identities of that name
  BOOL wantsGroups;
  BOOL beginsWith;
  NSArray *results;
}
@end

@implementation FaxPlatformIdentityQuery

- (void)dealloc {
  [name release];
  [results release];
  [super dealloc];
}

@end

namespace {

FaxPlatformIdentityQuery *query_of(CSIdentityQueryRef query) {
  return fax::object_of<FaxPlatformIdentityQuery>(query, [FaxPlatformIdentityQuery class]);
}

FaxPlatformIdentity *identity_of(CSIdentityRef identity) {
  return fax::object_of<FaxPlatformIdentity>(identity, [FaxPlatformIdentity class]);
}

std::vector<fax::Identity> answer(FaxPlatformIdentityQuery *query) {
  auto const name = fax::to_utf8(query->name);
  // The database's names end at a NUL.
  if (!name || name->find('\0') != std::string::npos) return {};
  if (query->wantsMembers) return fax::group_members(fax::system_accounts(), *name);
  return fax::find_identities(fax::system_accounts(), *name,
                              query->beginsWith ? fax::NameMatch::BeginsWith : fax::NameMatch::Equals,
                              query->wantsGroups ? fax::Identity::Kind::Group : fax::Identity::Kind::User);
}

NSArray *to_objects(std::vector<fax::Identity> const &identities) {
  NSMutableArray *objects = [NSMutableArray array];
  for (auto const &identity : identities) {
    NSString *name = fax::to_string(identity.name);
    if (name == nil) continue;  // not UTF-8: no string could name it
    FaxPlatformIdentity *object = [[FaxPlatformIdentity new] autorelease];
    object->name = [name copy];
    object->isGroup = identity.kind == fax::Identity::Kind::Group;
    [objects addObject:object];
  }
  return objects;
}

}  // namespace

CSIdentityAuthorityRef CSGetLocalIdentityAuthority(void) {
  // Only told apart from NULL, and an object so that it may be retained.
  return reinterpret_cast<CSIdentityAuthorityRef>(const_cast<void *>(static_cast<void const *>(CFSTR("local"))));
}

CSIdentityQueryRef CSIdentityQueryCreateForName(CFAllocatorRef, CFStringRef name,
                                                CSIdentityQueryStringComparisonMethod comparison,
                                                CSIdentityClass identity_class, CSIdentityAuthorityRef) {
  bool const known = (comparison == kCSIdentityQueryStringEquals || comparison == kCSIdentityQueryStringBeginsWith) &&
                     (identity_class == kCSIdentityClassUser || identity_class == kCSIdentityClassGroup);
  return pooled(__func__, nullptr, [&]() -> CSIdentityQueryRef {
    NSString *text = fax::object_of<NSString>(name, [NSString class]);
    if (text == nil || !known) return nullptr;
    FaxPlatformIdentityQuery *query = [FaxPlatformIdentityQuery new];
    query->name = [text copy];
    query->wantsGroups = identity_class == kCSIdentityClassGroup;
    query->beginsWith = comparison == kCSIdentityQueryStringBeginsWith;
    return reinterpret_cast<CSIdentityQueryRef>(query);
  });
}

CSIdentityQueryRef CSIdentityCreateGroupMembershipQuery(CFAllocatorRef, CSIdentityRef group) {
  return pooled(__func__, nullptr, [&]() -> CSIdentityQueryRef {
    FaxPlatformIdentity *own = identity_of(group);
    if (own == nil || !own->isGroup) return nullptr;
    FaxPlatformIdentityQuery *query = [FaxPlatformIdentityQuery new];
    query->name = [own->name copy];
    query->wantsMembers = YES;
    return reinterpret_cast<CSIdentityQueryRef>(query);
  });
}

Boolean CSIdentityQueryExecute(CSIdentityQueryRef query, CSIdentityQueryFlags, CFErrorRef *) {
  return pooled(__func__, false, [&] {
    FaxPlatformIdentityQuery *own = query_of(query);
    if (own == nil) return false;
    NSArray *found = [to_objects(answer(own)) copy];
    [own->results release];
    own->results = found;
    return true;
  });
}

CFArrayRef CSIdentityQueryCopyResults(CSIdentityQueryRef query) {
  return pooled(__func__, nullptr, [&]() -> CFArrayRef {
    FaxPlatformIdentityQuery *own = query_of(query);
    return own == nil ? nullptr : reinterpret_cast<CFArrayRef>([own->results copy]);
  });
}

// A query is complete when it was executed: there is nothing left to stop.
void CSIdentityQueryStop(CSIdentityQueryRef) {}

CFStringRef CSIdentityGetPosixName(CSIdentityRef identity) {
  return fenced(__func__, nullptr, [&]() -> CFStringRef {
    FaxPlatformIdentity *own = identity_of(identity);
    return own == nil ? nullptr : reinterpret_cast<CFStringRef>(own->name);
  });
}
