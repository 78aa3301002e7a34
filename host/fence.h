// Runs work and answers the exception that came out of it. The catching is done in a plain Objective-C file: an
// NSException that reaches an @catch compiled by g++ ends the process.
#pragma once
#import <Foundation/Foundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// nil when work returned; otherwise the exception, autoreleased. C++ exceptions pass through.
NSException *HostFence(void (*work)(void *), void *context);

#ifdef __cplusplus
}

#include <cxxabi.h>

#include <exception>
#include <type_traits>
#include <typeinfo>

namespace fax::host {

inline NSException *foreign_exception(char const *what) {
  return [NSException exceptionWithName:NSGenericException reason:[NSString stringWithUTF8String:what] userInfo:nil];
}

// The same for any callable, and for everything that can be thrown: what is no NSException comes back as one that
// carries its text, or else the name of its type.
template <typename Work>
NSException *fenced(Work &&work) {
  using Body = std::remove_reference_t<Work>;
  try {
    return HostFence([](void *body) { (*static_cast<Body *>(body))(); }, &work);
  } catch (std::exception const &error) {
    return foreign_exception(error.what());
  } catch (...) {
    std::type_info const *const type = abi::__cxa_current_exception_type();
    return foreign_exception(type ? type->name() : "id");
  }
}

}  // namespace fax::host
#endif
