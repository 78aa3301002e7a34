// Identity Services for GNUstep: users and groups by name, over the system's user and group database (NSS).
//
// An identity is a user or a group; a query is made, executed, its results copied, and stopped. Differs from macOS: the
// local authority is the whole NSS database (a directory service included), members of nested groups are found where a
// group names another group as member, and a user whose primary group is asked for counts as its member.
#pragma once
#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct __CSIdentityAuthority *CSIdentityAuthorityRef;
typedef struct __CSIdentity *CSIdentityRef;
typedef struct __CSIdentityQuery *CSIdentityQueryRef;
typedef CFIndex CSIdentityClass;
typedef CFIndex CSIdentityQueryStringComparisonMethod;
typedef CFOptionFlags CSIdentityQueryFlags;

enum { kCSIdentityClassUser = 1, kCSIdentityClassGroup = 2 };
enum { kCSIdentityQueryStringEquals = 1, kCSIdentityQueryStringBeginsWith = 2 };

// Borrowed, never NULL.
CF_EXPORT CSIdentityAuthorityRef CSGetLocalIdentityAuthority(void);
// A query that the caller releases, or NULL for a NULL name, an unknown class or an unknown comparison.
CF_EXPORT CSIdentityQueryRef CSIdentityQueryCreateForName(CFAllocatorRef allocator, CFStringRef name,
                                                          CSIdentityQueryStringComparisonMethod comparison,
                                                          CSIdentityClass identity_class,
                                                          CSIdentityAuthorityRef authority);
// A query for the users and groups that are members of group; the caller releases it. NULL when group is no group.
CF_EXPORT CSIdentityQueryRef CSIdentityCreateGroupMembershipQuery(CFAllocatorRef allocator, CSIdentityRef group);
// Fills the results; returns when they are complete. error may be NULL and is not set.
CF_EXPORT Boolean CSIdentityQueryExecute(CSIdentityQueryRef query, CSIdentityQueryFlags flags, CFErrorRef *error);
// A new array of identities, empty when nothing was found; NULL before the query was executed.
CF_EXPORT CFArrayRef CSIdentityQueryCopyResults(CSIdentityQueryRef query);
CF_EXPORT void CSIdentityQueryStop(CSIdentityQueryRef query);
// Borrowed from the identity.
CF_EXPORT CFStringRef CSIdentityGetPosixName(CSIdentityRef identity);

#ifdef __cplusplus
}
#endif
