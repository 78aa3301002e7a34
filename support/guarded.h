// The way back to the host: whatever is thrown inside, by the toolkit, by the host's own callback or by us, ends here.
#pragma once
#import <Foundation/Foundation.h>

#include <type_traits>

namespace fax {

// work()'s result, or failed, with a line in the log, when an Objective-C or C++ exception came out of it. operation is
// "class name - operation".
template <typename Work>
std::invoke_result_t<Work &> guarded(char const *operation, std::type_identity_t<std::invoke_result_t<Work &>> failed,
                                     Work work) {
  try {
    return work();
  } catch (...) {
    NSLog(@"%s failed.", operation);
    return failed;
  }
}

}  // namespace fax
