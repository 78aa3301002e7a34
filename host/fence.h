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

#include <exception>
#include <type_traits>

namespace fax::host {

// The same for any callable. A C++ exception comes back as an NSException that carries its text.
template <typename Work>
NSException *fenced(Work &&work) {
  using Body = std::remove_reference_t<Work>;
  struct Call {
    Body &body;
    NSException *foreign;
  } call{work, nil};
  NSException *caught = HostFence(
      [](void *context) {
        auto *it = static_cast<Call *>(context);
        try {
          it->body();
        } catch (std::exception const &error) {
          it->foreign = [NSException exceptionWithName:NSGenericException
                                                reason:[NSString stringWithUTF8String:error.what()]
                                              userInfo:nil];
        }
      },
      &call);
  return caught ? caught : call.foreign;
}

}  // namespace fax::host
#endif
