#import "toolkit/gnustep_texts.h"

#import <AppKit/AppKit.h>

#include <algorithm>
#include <iterator>
#include <string_view>

#include "platform/gnustep/repair.h"
#include "toolkit/controls.h"
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

// One of the tags is 0, which other controls have too.
NSButton *button_with_tag(NSView *row, NSInteger tag) {
  NSArray *views = [row subviews];
  for (NSUInteger at = 0; at < [views count]; ++at) {
    id const view = [views objectAtIndex:at];
    if ([view isKindOfClass:[NSButton class]] && [view tag] == tag) return view;
  }
  return nil;
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

void fit_buttons(NSSavePanel *panel) {
  constexpr CGFloat kBeside = 34;  // the button's edges, and the sign of the Return key in one of them
  constexpr CGFloat kBetween = 8;
  NSView *const row = [[[panel contentView] viewWithTag:NSFileHandlingPanelOKButton] superview];
  CGFloat right = 0;
  // From the right.
  for (NSInteger const tag : {NSFileHandlingPanelOKButton, NSFileHandlingPanelCancelButton,
                              NSFileHandlingPanelDiskEjectButton, NSFileHandlingPanelDiskButton,
                              NSFileHandlingPanelHomeButton}) {
    NSButton *const button = button_with_tag(row, tag);
    if (button == nil) continue;
    NSRect frame = [button frame];
    if (right == 0) right = NSMaxX(frame);
    bool const has_title = [button imagePosition] != NSImageOnly && [[button title] length] > 0;
    if (has_title) frame.size.width = std::max(frame.size.width, text_width([button title]) + kBeside);
    frame.origin.x = right - frame.size.width;
    [button setFrame:frame];
    right = frame.origin.x - kBetween;
  }
}

}  // namespace fax::toolkit
