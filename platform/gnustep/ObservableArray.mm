// The wrapper around an array controller's arranged objects: what an array knows to do better than object by object is
// left to the array inside. One that makes its objects when they are asked for then makes none to be searched or observed.
#import <Foundation/Foundation.h>

#include "platform/gnustep/arranged_rows.h"
#include "platform/gnustep/repair.h"

namespace {

int unwalked = 0;

}  // namespace

namespace fax {

UnwalkedRows::UnwalkedRows() {
  ++unwalked;
}

UnwalkedRows::~UnwalkedRows() {
  --unwalked;
}

NSArray *arranged_rows(NSArray *array) {
  static Class const wrapper = NSClassFromString(@"GSObservableArray");
  if (wrapper == Nil || ![array isKindOfClass:wrapper]) return array;
  static Ivar const inside = class_getInstanceVariable(wrapper, "_array");
  return inside == nullptr ? array : static_cast<NSArray *>(object_getIvar(array, inside));
}

}  // namespace fax

namespace {

char const *const kWrapper = "GSObservableArray";

fax::Repair<NSUInteger(id)> index_of_identical{
    kWrapper, "indexOfObjectIdenticalTo:", [](id self, SEL, id object) -> NSUInteger {
      return [fax::arranged_rows(self) indexOfObjectIdenticalTo:object];
    }};

fax::Repair<NSUInteger(id, NSRange)> index_of_identical_in_range{
    kWrapper, "indexOfObjectIdenticalTo:inRange:", [](id self, SEL, id object, NSRange range) -> NSUInteger {
      return [fax::arranged_rows(self) indexOfObjectIdenticalTo:object inRange:range];
    }};

fax::Repair<id(NSString *)> value_for_key{
    kWrapper, "valueForKey:", [](id self, SEL command, NSString *key) -> id {
      return unwalked != 0 ? nil : value_for_key(self, command, key);
    }};

fax::Repair<void(id, NSIndexSet *, NSString *, NSKeyValueObservingOptions, void *)> add_observer{
    kWrapper, "addObserver:toObjectsAtIndexes:forKeyPath:options:context:",
    [](id self, SEL, id observer, NSIndexSet *indexes, NSString *path, NSKeyValueObservingOptions options,
       void *context) {
      if (unwalked != 0) return;
      [fax::arranged_rows(self) addObserver:observer
                         toObjectsAtIndexes:indexes
                                 forKeyPath:path
                                    options:options
                                    context:context];
    }};

fax::Repair<void(id, NSIndexSet *, NSString *)> remove_observer{
    kWrapper, "removeObserver:fromObjectsAtIndexes:forKeyPath:",
    [](id self, SEL, id observer, NSIndexSet *indexes, NSString *path) {
      if (unwalked != 0) return;
      [fax::arranged_rows(self) removeObserver:observer fromObjectsAtIndexes:indexes forKeyPath:path];
    }};

}  // namespace
