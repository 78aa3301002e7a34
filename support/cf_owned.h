// A Core Foundation object that its holder releases. For results of Create and Copy functions only.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace fax {

template <typename Ref>
struct CFDrop {
  using pointer = Ref;
  void operator()(Ref object) const { CFRelease(object); }
};

template <typename Ref>
using CFOwned = std::unique_ptr<std::remove_pointer_t<Ref>, CFDrop<Ref>>;

}  // namespace fax
