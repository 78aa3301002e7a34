// The user's environment (platform/languages.h) decides in which languages bundles speak, unless the user has set the
// default NSLanguages. The toolkit asks the C library instead, which knows none but the locales installed on this
// machine. Every language is listed by the name of its folder on macOS and by the toolkit's own ("ja", "Japanese"), so
// that a bundle may have either. A list that changes (+[NSUserDefaults setUserLanguages:]) holds for bundles whose texts
// were asked for before, too.
#import <Foundation/Foundation.h>

#include <array>
#include <cstdlib>
#include <utility>

#include "platform/gnustep/repair.h"
#include "platform/languages.h"

namespace {

constexpr std::array<std::pair<char const *, char const *>, 10> kToolkitNames = {{
    {"en", "English"}, {"ja", "Japanese"}, {"de", "German"}, {"fr", "French"}, {"es", "Spanish"},
    {"it", "Italian"}, {"nl", "Dutch"}, {"pt-BR", "BrasilPortuguese"}, {"zh-Hans", "SimplifiedChinese"}, {"ko", "Korean"},
}};

void add_once(NSMutableArray *names, NSString *name) {
  if (name != nil && ![names containsObject:name]) [names addObject:name];
}

// The name itself, then the two that a folder of its language may have.
void add_names(NSMutableArray *names, NSString *name) {
  add_once(names, name);
  char const *const bytes = [name UTF8String];
  std::string const given = bytes != nullptr ? bytes : "";
  std::string const known = fax::known_language(given);
  for (auto const &[folder, toolkit_name] : kToolkitNames) {
    if (known != folder && given != toolkit_name) continue;
    add_once(names, [NSString stringWithUTF8String:folder]);
    add_once(names, [NSString stringWithUTF8String:toolkit_name]);
  }
}

// What the user, or who set this machine up, says; nil when nobody does.
NSArray *users_own(NSUserDefaults *defaults) {
  NSDictionary *const domains[] = {[defaults volatileDomainForName:NSArgumentDomain],
                                   [defaults persistentDomainForName:[[NSProcessInfo processInfo] processName]],
                                   [defaults persistentDomainForName:NSGlobalDomain],
                                   [defaults volatileDomainForName:@"GSConfigDomain"]};
  for (NSDictionary *domain : domains) {
    NSArray *list = [domain objectForKey:@"NSLanguages"];
    if ([list isKindOfClass:[NSArray class]] && [list count] > 0) return list;
  }
  return nil;
}

void adopt(NSUserDefaults *defaults) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSMutableArray *names = [NSMutableArray array];
  if (NSArray *own = users_own(defaults)) {
    for (NSUInteger at = 0; at < [own count]; ++at)
      if ([[own objectAtIndex:at] isKindOfClass:[NSString class]]) add_names(names, [own objectAtIndex:at]);
  } else {
    for (auto const &language : fax::wanted_languages([](char const *name) { return std::getenv(name); }))
      add_names(names, [NSString stringWithUTF8String:language.c_str()]);
  }
  [NSUserDefaults setUserLanguages:names];
  [pool release];
}

// The defaults object whose list is ours.
NSUserDefaults *adopted = nil;

// Making the object, and changing its list, asks for it again.
class Turn {
 public:
  Turn() : outermost(!taken_) { taken_ = true; }
  ~Turn() { if (outermost) taken_ = false; }
  bool const outermost;

 private:
  static inline thread_local bool taken_ = false;
};

fax::Repair<NSUserDefaults *()> standard_defaults{
    "NSUserDefaults", "standardUserDefaults",
    [](id self, SEL command) -> NSUserDefaults * {
      Turn const turn;
      NSUserDefaults *const defaults = standard_defaults(self, command);
      if (turn.outermost && defaults != nil && defaults != adopted) {
        adopted = defaults;
        adopt(defaults);
      }
      return defaults;
    },
    fax::MethodOf::class_object};

fax::Repair<void()> reset_defaults{"NSUserDefaults", "resetStandardUserDefaults",
                                   [](id self, SEL command) {
                                     adopted = nil;
                                     reset_defaults(self, command);
                                   },
                                   fax::MethodOf::class_object};

// The toolkit keeps every table that a bundle has read for the life of the bundle.
void forget_tables_of_other_languages(NSBundle *bundle) {
  NSString *const kLanguages = @"\nlanguages";
  Ivar const variable = class_getInstanceVariable([NSBundle class], "_localizations");
  if (variable == nullptr) return;
  NSMutableDictionary *tables = object_getIvar(bundle, variable);
  NSArray *const languages = [NSUserDefaults userLanguages];
  if (languages == nil || [[tables objectForKey:kLanguages] isEqual:languages]) return;
  if (tables == nil) {
    tables = [[NSMutableDictionary alloc] init];
    object_setIvar(bundle, variable, tables);
  }
  [tables removeAllObjects];
  [tables setObject:languages forKey:kLanguages];
}

fax::Repair<NSString *(NSString *, NSString *, NSString *)> localized_string{
    "NSBundle", "localizedStringForKey:value:table:",
    [](id self, SEL command, NSString *key, NSString *value, NSString *table) -> NSString * {
      forget_tables_of_other_languages(self);
      return localized_string(self, command, key, value, table);
    }};

}  // namespace
