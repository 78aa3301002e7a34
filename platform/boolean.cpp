// kCFBooleanTrue and kCFBooleanFalse: Foundation's two boolean numbers, set when the library is loaded, which is before
// any code of a bundle that depends on it. Messages go by way of the runtime's functions: a constructor may run before
// this module's own selectors are registered, an @-expression would use them.
#include <CoreFoundation/CoreFoundation.h>

#include <objc/message.h>
#include <objc/runtime.h>

namespace {

CFBooleanRef shared_number(bool value) {
  id const number_class = reinterpret_cast<id>(objc_getClass("NSNumber"));
  SEL const selector = sel_registerName("numberWithBool:");
  using NumberWithBool = id (*)(id, SEL, BOOL);
  auto const method = reinterpret_cast<NumberWithBool>(objc_msg_lookup(number_class, selector));
  return reinterpret_cast<CFBooleanRef>(method(number_class, selector, value));
}

}  // namespace

const CFBooleanRef kCFBooleanTrue = shared_number(true);
const CFBooleanRef kCFBooleanFalse = shared_number(false);
