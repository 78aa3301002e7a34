// Dependent keys: +keyPathsForValuesAffectingValueForKey: and +keyPathsForValuesAffecting<Key> are consulted when a key
// is first observed. The toolkit never asks for them, and its own answer holds keys that have nothing to do with the
// one asked for. Key paths with a dot are not followed.
#import <Foundation/Foundation.h>

#include "platform/gnustep/repair.h"

#include <map>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

@interface DirectFaxSilentObserver : NSObject
@end

@implementation DirectFaxSilentObserver
- (void)observeValueForKeyPath:(NSString *)path
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context {
}
@end

namespace {

using Key = std::pair<Class, std::string>;

std::mutex lock;
std::map<Key, std::vector<std::string>> &affecting() {
  static std::map<Key, std::vector<std::string>> keys;
  return keys;
}

// True when name is key or affects it, as far as is known.
bool affects(Class owner, std::string const &name, std::string const &key) {
  if (name == key) return true;
  auto const found = affecting().find({owner, key});
  if (found == affecting().end()) return false;
  for (std::string const &nearer : found->second) {
    if (affects(owner, name, nearer)) return true;
  }
  return false;
}

// Makes the toolkit tell of key when a key that it depends on changes; collects those keys, the indirect ones too.
// A dependency that would close a circle is left out.
void learn(Class owner, std::string const &key, std::set<std::string> &sources) {
  {
    std::lock_guard<std::mutex> const guard(lock);
    if (!affecting().emplace(Key{owner, key}, std::vector<std::string>{}).second) return;
  }
  NSString *dependent = [NSString stringWithUTF8String:key.c_str()];
  NSEnumerator *paths = [[owner keyPathsForValuesAffectingValueForKey:dependent] objectEnumerator];
  std::vector<std::string> found;
  while (NSString *path = [paths nextObject]) {
    if ([path length] != 0 && [path rangeOfString:@"."].location == NSNotFound) found.push_back([path UTF8String]);
  }
  for (std::string const &name : found) {
    {
      std::lock_guard<std::mutex> const guard(lock);
      if (affects(owner, key, name)) continue;
      affecting()[{owner, key}].push_back(name);
    }
    NSArray *trigger = [NSArray arrayWithObject:[NSString stringWithUTF8String:name.c_str()]];
    [owner setKeys:trigger triggerChangeNotificationsForDependentKey:dependent];
    sources.insert(name);
    learn(owner, name, sources);
  }
}

fax::Repair<NSSet *(NSString *)> key_paths{
    "NSObject", "keyPathsForValuesAffectingValueForKey:",
    [](id self, SEL, NSString *key) -> NSSet * {
      if ([key length] == 0) return [NSSet set];
      NSString *first = [[key substringToIndex:1] uppercaseString];
      NSString *name = [NSString stringWithFormat:@"keyPathsForValuesAffecting%@%@", first, [key substringFromIndex:1]];
      SEL const of_key = NSSelectorFromString(name);
      return [self respondsToSelector:of_key] ? [self performSelector:of_key] : [NSSet set];
    },
    fax::MethodOf::class_object};

fax::Repair<void(NSObject *, NSString *, NSKeyValueObservingOptions, void *)> add_observer{
    "NSObject", "addObserver:forKeyPath:options:context:",
    [](id self, SEL command, NSObject *observer, NSString *path, NSKeyValueObservingOptions options, void *context) {
      std::set<std::string> sources;
      if ([path length] != 0 && [path rangeOfString:@"."].location == NSNotFound) {
        learn([self class], [path UTF8String], sources);
      }
      add_observer(self, command, observer, path, options, context);
      if (sources.empty()) return;
      // The toolkit watches the setter of a key once that key itself has had an observer.
      DirectFaxSilentObserver *silent = [[DirectFaxSilentObserver alloc] init];
      for (std::string const &name : sources) {
        NSString *source = [NSString stringWithUTF8String:name.c_str()];
        add_observer(self, command, silent, source, 0, nullptr);
        [self removeObserver:silent forKeyPath:source];
      }
      [silent release];
    }};

}  // namespace
