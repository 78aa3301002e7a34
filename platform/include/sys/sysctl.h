// sysctl for Linux, whose C library has none: the kernel release (CTL_KERN, KERN_OSRELEASE) by uname(2).
//
// Differs from macOS: the release is the numbers that uname's begins with ("6.1.0" of "6.1.0-25-amd64"), which is the
// form of a macOS release and fits into the 16 bytes that callers give it.
#pragma once
#ifdef __APPLE__
#error "platform/ stands in for system headers; on macOS keep it off the include path"
#endif
#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CTL_KERN 1
#define KERN_OSRELEASE 2

typedef unsigned int u_int;

// 0, with the text and its NUL in old and their length in *old_length; else -1 with errno: ENOENT for any other name,
// ENOMEM when *old_length is too small (as much as fits is stored), EPERM when new_value is given, EFAULT when old
// comes without old_length. old NULL asks for the length.
extern __attribute__((visibility("default"))) int sysctl(int *name, u_int name_length, void *old, size_t *old_length,
                                                         void *new_value, size_t new_length);

#ifdef __cplusplus
}
#endif
