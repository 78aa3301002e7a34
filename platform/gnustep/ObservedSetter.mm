// A setter that answers (BOOL)setSelectionIndexes: loses its answer while its key is observed: the toolkit's stand-in
// setters return nothing. These do the same and hand the answer back.
#import <Foundation/Foundation.h>

#include "platform/gnustep/repair.h"

#include <cctype>
#include <string>

namespace {

// setSelectionIndexes: and _setSelectionIndexes: -> selectionIndexes
NSString *key_of(SEL setter) {
  std::string name = sel_getName(setter);
  if (name.front() == '_') name.erase(0, 1);
  name = name.substr(3, name.size() - 4);
  NSString *key = [NSString stringWithUTF8String:name.c_str()];
  if (static_cast<unsigned char>(name.front()) < 0x80) {
    name.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(name.front())));
    return [NSString stringWithUTF8String:name.c_str()];
  }
  return [[[key substringToIndex:1] lowercaseString] stringByAppendingString:[key substringFromIndex:1]];
}

// Argument and answer fill one register each; an answer that the setter does not give is whatever the register holds.
void *set_and_answer(id self, SEL setter, void *value) {
  Class const stands_for = [self class];
  auto const set = reinterpret_cast<void *(*)(id, SEL, void *)>([stands_for instanceMethodForSelector:setter]);
  NSString *key = key_of(setter);
  if (![stands_for automaticallyNotifiesObserversForKey:key]) return set(self, setter, value);
  [self willChangeValueForKey:key];
  void *const answer = set(self, setter, value);
  [self didChangeValueForKey:key];
  return answer;
}

fax::Repair<void *(void *)> set_object{"GSKVOSetter", "setter:", set_and_answer};
fax::Repair<void *(void *)> set_long{"GSKVOSetter", "setterLong:", set_and_answer};
fax::Repair<void *(void *)> set_long_long{"GSKVOSetter", "setterLongLong:", set_and_answer};

}  // namespace
