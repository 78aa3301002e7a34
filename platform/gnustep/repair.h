// Repairs of the toolkit's own classes: a body put in the place of one method, with the toolkit's body at hand. The
// host's objects go through it too, so a body does what the toolkit does except for the fault it mends.
#pragma once
#include <dlfcn.h>
#include <objc/runtime.h>

#include <cstdlib>
#include <cstring>
#include <string>

namespace fax {

enum class MethodOf { instance, class_object };

// What becomes of a method that the host has put in the place of the toolkit's before the library is loaded: the repair's
// body goes around it, or, where it would not ask it, leaves it alone.
enum class HostsOwn { wrapped, kept };

template <typename Signature>
class Repair;

// A static object in the file of the repair. It takes effect while the library is loaded, linked or by dlopen, before
// any code of the program or the bundle runs: only runtime functions are used, no message is sent, so there need be no
// autorelease pool. Without the class or the method (another release of the toolkit) nothing is replaced.
template <typename Result, typename... Arguments>
class Repair<Result(Arguments...)> {
 public:
  using Body = Result (*)(id self, SEL command, Arguments...);

  Repair(char const *class_name, char const *selector_name, Body body, MethodOf side = MethodOf::instance,
         HostsOwn hosts_own = HostsOwn::wrapped) {
    Class owner = static_cast<Class>(objc_getClass(class_name));
    if (owner == Nil) return;
    if (side == MethodOf::class_object) owner = object_getClass(owner);
    SEL const selector = sel_registerName(selector_name);
    if (CompiledMethod *const own = method_of(owner, selector); own != nullptr) {
      if (hosts_own == HostsOwn::kept && !same_image(owner, own->body)) return;
      original_ = from_untyped(own->body);
      own->body = to_untyped(body);
      // Adding any method makes the runtime build the dispatch table anew, where there is one already.
      std::string const kept = std::string("directFaxRepaired_") + selector_name;
      class_addMethod(owner, sel_registerName(kept.c_str()), to_untyped(original_), own->types);
      return;
    }
    // A method that the class only inherits is added to it: its superclass keeps its own.
    CompiledMethod *inherited = nullptr;
    for (Class above = class_getSuperclass(owner); above != Nil && inherited == nullptr;
         above = class_getSuperclass(above)) {
      inherited = method_of(above, selector);
    }
    if (inherited == nullptr) return;
    original_ = from_untyped(inherited->body);
    class_addMethod(owner, selector, to_untyped(body), inherited->types);
  }
  Repair(Repair const &) = delete;
  Repair &operator=(Repair const &) = delete;

  // The toolkit's own body; to be called only from the repair's body.
  Result operator()(id self, SEL command, Arguments... arguments) const {
    return original_(self, command, arguments...);
  }

 private:
  using Untyped = void (*)();

  // A method as the compiler lays it out (module ABI 8 of the GNU runtime). It is read and written directly, because
  // the runtime's own calls do not suit a class that is not in use yet: class_getInstanceMethod may send it
  // +initialize, in a process that is not ready for that, and method_setImplementation writes into the one dispatch
  // table that all such classes share.
  struct CompiledMethod {
    SEL name;
    char const *types;
    IMP body;
  };

  static CompiledMethod *method_of(Class owner, SEL selector) {
    unsigned int count = 0;
    Method *const methods = class_copyMethodList(owner, &count);
    Method found = nullptr;
    for (unsigned int at = 0; at < count && found == nullptr; ++at) {
      if (sel_isEqual(method_getName(methods[at]), selector)) found = methods[at];
    }
    std::free(methods);
    return reinterpret_cast<CompiledMethod *>(found);
  }
  // Do a class and a method's body come from one library?
  static bool same_image(Class owner, IMP body) {
    Dl_info of_class{}, of_body{};
    return dladdr(reinterpret_cast<void const *>(owner), &of_class) != 0 &&
           dladdr(reinterpret_cast<void const *>(body), &of_body) != 0 && of_class.dli_fbase == of_body.dli_fbase;
  }
  static IMP to_untyped(Body body) { return reinterpret_cast<IMP>(reinterpret_cast<Untyped>(body)); }
  static Body from_untyped(IMP body) { return reinterpret_cast<Body>(reinterpret_cast<Untyped>(body)); }

  Body original_ = nullptr;
};

// True for the reader of Xcode's documents (xib format 3), whose defaults for attributes that are left out differ from
// the older archives'.
inline bool reads_xcode_document(id coder) {
  return std::strcmp(object_getClassName(coder), "GSXib5KeyedUnarchiver") == 0;
}

}  // namespace fax
