// How a plain function of the bundle is made known to other programs: C linkage and default visibility, so that it can
// be looked up by its name. Everything that does not carry this mark stays hidden inside the bundle.
#pragma once

#ifdef __cplusplus
#define DIRECTFAX_EXPORT extern "C" __attribute__((visibility("default")))
#else
#define DIRECTFAX_EXPORT extern __attribute__((visibility("default")))
#endif
