// System services that need objects. Class methods only; main thread.
#pragma once

#import <Foundation/Foundation.h>

#include "support/ClassNames.h"

@interface UtilityService : NSObject
// The text of a buffer of little-endian UTF-16 units up to its 0 unit; size in bytes. Autoreleased; nil for an empty
// text, a buffer without a 0 unit, and NULL.
+ (NSString *)stringFromUnicodeBuf:(unichar const *)buffer ofLength:(int)size;
// Does the process run in an application sandbox (a home folder under "Containers")? Computed once a process.
+ (BOOL)isSandboxed;
// Takes the help book of the bundle with that identifier out of the user's help preferences
// (~/Library/Preferences/com.apple.help.plist) when it is registered with a page inside a localisation folder
// (".lproj"). In every other case, and when the file is damaged or not of the expected shape, leaves the file alone. The
// file is replaced atomically and keeps its permissions; when it cannot be written it stays as it was.
+ (void)removeHelpCacheForBundleID:(NSString *)identifier;
// Is the user of that (POSIX) name a member of the group "admin", by the Identity Services? NO, with a line in the log,
// when they fail.
+ (BOOL)checkIfAdminUser:(NSString *)user;
// The first IPv4 address of the primary interface, dotted, as a new string that the caller releases; nil when there is
// no active one.
+ (NSString *)copyHostIPv4Address;
@end
