// The one place where the platform's functions catch an NSException: plain Objective-C, because an @catch in
// Objective-C++ crashes with GCC.
#pragma once

#ifdef __cplusplus
extern "C" {
#endif

// Runs work(context). 0 when it threw an NSException, which is then logged with the name of the function; else 1.
// C++ exceptions pass.
int fax_platform_fence(const char *function, void (*work)(void *), void *context);

#ifdef __cplusplus
}
#endif
