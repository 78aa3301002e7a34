// Fonts in Xcode's documents: metaFont and usesAppearanceFont without a size give the size that the name stands for
// (the toolkit reads a size from nowhere), and the bold ones are bold.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

bool contains(NSString *text, NSString *part) {
  return text != nil && [text rangeOfString:part options:NSCaseInsensitiveSearch].location != NSNotFound;
}

CGFloat size_of(NSString *meta) {
  if (contains(meta, @"mini")) return [NSFont systemFontSizeForControlSize:NSMiniControlSize];
  if (contains(meta, @"small") || contains(meta, @"toolTip")) return [NSFont smallSystemFontSize];
  if (contains(meta, @"label")) return [NSFont labelFontSize];
  return [NSFont systemFontSize];
}

fax::Repair<id(NSCoder *)> init_with_coder{
    "NSFont", "initWithCoder:", [](id self, SEL command, NSCoder *coder) -> id {
      if (!fax::reads_xcode_document(coder)) return init_with_coder(self, command, coder);
      NSString *meta = [coder decodeObjectForKey:@"metaFont"];
      NSString *name = [coder decodeObjectForKey:@"name"];
      NSString *given = [coder decodeObjectForKey:@"size"];
      CGFloat size = given != nil ? [given doubleValue] : 0;
      if (size <= 0) size = size_of(meta);
      [self release];
      NSFont *font = meta == nil && name != nil ? [NSFont fontWithName:name size:size] : nil;
      if (font == nil) {
        bool const bold = contains(meta, @"bold") || (meta == nil && contains(name, @"bold"));
        font = bold ? [NSFont boldSystemFontOfSize:size] : [NSFont systemFontOfSize:size];
      }
      return [font retain];
    }};

}  // namespace
