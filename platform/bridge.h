// What the platform's C functions share: a fence around each body, and text to and from Foundation's strings.
#pragma once

#include "platform/fence.h"

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace fax {

// Temporaries of one call: a caller on a bare thread has no pool.
class Pool {
public:
  Pool() : pool_([NSAutoreleasePool new]) {}
  ~Pool() {
    // An object of the host's may end here, with whatever its dealloc does.
    try {
      [pool_ release];
    } catch (...) {
    }
  }
  Pool(Pool const &) = delete;
  Pool &operator=(Pool const &) = delete;

private:
  NSAutoreleasePool *pool_;
};

// work()'s result, or failed when an Objective-C or C++ exception came out of it: nothing leaves a C function.
template <typename Work>
auto fenced(char const *function, std::type_identity_t<std::invoke_result_t<Work &>> failed, Work work) noexcept {
  struct Call {
    Work &work;
    decltype(failed) result;
  } call{work, failed};
  try {
    bool const returned = fax_platform_fence(
        function,
        [](void *context) {
          auto &own = *static_cast<Call *>(context);
          own.result = own.work();
        },
        &call);
    return returned ? call.result : failed;
  } catch (...) {
    return failed;
  }
}

// The same inside a pool. The result must not be autoreleased. The pool is outside the fence: the exception may live in
// it.
template <typename Work>
auto pooled(char const *function, std::type_identity_t<std::invoke_result_t<Work &>> failed, Work work) noexcept {
  Pool const pool;
  return fenced(function, failed, work);
}

inline std::u16string to_units(NSString *string) {
  std::u16string units([string length], u'\0');
  if (!units.empty())
    [string getCharacters:reinterpret_cast<unichar *>(units.data()) range:NSMakeRange(0, units.size())];
  return units;
}

// A new string; call it inside a pool.
inline NSString *new_string(std::u16string_view units) {
  auto const made = [](std::u16string_view all) {
    return [[NSString alloc] initWithCharacters:reinterpret_cast<unichar const *>(all.data()) length:all.size()];
  };
  if (!units.starts_with(u'\xFEFF') && !units.starts_with(u'\xFFFE')) return made(units);
  // GNUstep takes these for a byte order mark, drops it and may swap the rest; not behind another character.
  NSString *longer = [made(std::u16string(1, u'-').append(units)) autorelease];
  return [[longer substringFromIndex:1] retain];
}

// An autoreleased string; nil when text is not UTF-8.
inline NSString *to_string(std::string_view utf8) {
  return [[[NSString alloc] initWithBytes:utf8.data() length:utf8.size() encoding:NSUTF8StringEncoding] autorelease];
}

// nullopt for nil and for half a surrogate pair.
inline std::optional<std::string> to_utf8(NSString *string) {
  char const *text = string == nil ? nullptr : [string UTF8String];
  if (text == nullptr) return std::nullopt;
  return std::string(text, [string lengthOfBytesUsingEncoding:NSUTF8StringEncoding]);
}

// The object behind a reference of the C interface, or nil when it is NULL or of another class.
template <typename Object>
Object *object_of(void const *reference, Class expected) {
  id const object = static_cast<id>(const_cast<void *>(reference));
  return [object isKindOfClass:expected] ? static_cast<Object *>(object) : nil;
}

}  // namespace fax
