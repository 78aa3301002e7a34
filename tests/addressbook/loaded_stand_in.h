// The stand-in inside a library that is loaded, or becomes so.
#pragma once

#include "stand_in.h"

#include <cstdlib>
#include <dlfcn.h>

namespace test {

inline StandIn &stand_in(char const *library = STAND_IN) {
  void *const handle = dlopen(library, RTLD_NOW | RTLD_LOCAL);
  if (handle == nullptr) std::abort();
  return *reinterpret_cast<GetStandIn *>(dlsym(handle, kStandIn))();
}

}  // namespace test
