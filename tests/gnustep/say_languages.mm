// A host that knows nothing of the library and uses a bundle in the user's language: prints a word, the folder of a page
// and the first of the bundle's preferred localizations. The word is asked for once before the library is loaded.
//
//   say_languages BUNDLE LIBRARY [LANGUAGE_TO_CHANGE_TO]
#import <Foundation/Foundation.h>

#include <cstdio>
#include <dlfcn.h>

static void say(NSBundle *bundle) {
  NSString *page = [bundle pathForResource:@"page" ofType:@"htm"];
  std::printf("%s %s %s\n", [[bundle localizedStringForKey:@"word" value:nil table:nil] UTF8String],
              [[[page stringByDeletingLastPathComponent] lastPathComponent] UTF8String],
              [[[bundle preferredLocalizations] objectAtIndex:0] UTF8String]);
}

int main(int count, char **arguments) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSBundle *bundle = [NSBundle bundleWithPath:[NSString stringWithUTF8String:arguments[1]]];
  [bundle localizedStringForKey:@"word" value:nil table:nil];
  if (dlopen(arguments[2], RTLD_NOW | RTLD_LOCAL) == nullptr) return 1;
  say(bundle);
  if (count > 3 && arguments[3][0] != '-') {
    [NSUserDefaults setUserLanguages:[NSArray arrayWithObject:[NSString stringWithUTF8String:arguments[3]]]];
    say(bundle);
  }
  [pool release];
  return 0;
}
