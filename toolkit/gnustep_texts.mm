#import "toolkit/gnustep_texts.h"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "platform/gnustep/repair.h"
#include "toolkit/text.h"

namespace fax::toolkit {
namespace {

// As they stand in the toolkit.
constexpr char const *kTexts[] = {
    //: From here to "Paste": the panels that open and save files. %@ is the name of a file or a folder.
    mark("Open"),
    mark("Save"),
    mark("Name:"),
    mark("OK"),
    mark("Cancel"),
    mark("Home"),
    mark("Mount"),
    mark("Unmount"),
    mark("Show Hidden Files"),
    mark("Hide Hidden Files"),
    mark("The file '%@' in '%@' exists. Replace it?"),
    mark("Replace"),
    mark("The directory '%@' does not exist, do you want to create it?"),
    mark("Yes"),
    mark("No"),
    mark("The directory '%@' could not be created."),
    mark("The path '%@' is not a directory."),
    mark("Dismiss"),
    mark("Copy"),
    mark("Cut"),
    mark("Paste"),
};

bool on = false;

bool is_of_toolkit(NSBundle *bundle) {
  static NSBundle *const toolkit = [[NSBundle bundleForLibrary:@"gnustep-gui"] retain];
  return bundle == toolkit || [[bundle bundlePath] isEqual:[toolkit bundlePath]];
}

// "" where there is none.
std::string translation_of(std::string_view key) {
  auto const known = std::find(std::begin(kTexts), std::end(kTexts), key);
  if (known == std::end(kTexts)) return "";
  std::string const text = tr(*known);
  return text != key ? text : "";
}

Repair<NSString *(NSString *, NSString *, NSString *)> localized_string{
    "NSBundle", "localizedStringForKey:value:table:",
    [](id self, SEL command, NSString *key, NSString *value, NSString *table) -> NSString * {
      if (on && table == nil && is_of_toolkit(self))
        if (std::string const text = translation_of(utf8(key)); !text.empty()) return ns(text);
      return localized_string(self, command, key, value, table);
    }};

}  // namespace

void translate_gnustep() { on = true; }

}  // namespace fax::toolkit
