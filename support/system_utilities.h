// The operating system's version and its administrators. The version is read once a process; no locks: main thread.
#pragma once

#include "support/export.h"

#include <CoreFoundation/CoreFoundation.h>

// The minor version of macOS 10.x, which is the kernel's major release less 4 (release 12 -> 8); -1 while it cannot be
// read. On Linux the kernel release counts in the same way.
DIRECTFAX_EXPORT SInt32 getOSMinorVersion(void);

// The system's version by selector, into *result: 'sys1' major, 'sys2' minor, 'sys3' bug fix, 'sysv' the word 0x10MB
// with minor M and bug fix B (release 11.4.2 -> 0x1074). 0, or -1 with *result untouched: for any other selector, with
// a line on standard error, and for a NULL result. A kernel release that cannot be read leaves 0x1000 for good.
DIRECTFAX_EXPORT SInt32 Gestalt_ALT(OSType selector, UInt32 *result);

// Is the user of this process in the group "admin"? False when the user has no entry in the user database.
DIRECTFAX_EXPORT Boolean IsUserAdmin(void);

// Is group the user's primary group or does its member list name the user? Both are names, NUL-terminated. False for an
// unknown user or group and for NULL. Reads the group database from its start and leaves it open.
DIRECTFAX_EXPORT Boolean CheckUserGroups(char const *user, char const *group);
