// Letters that a font lacks are drawn with one that has them. The toolkit finds that one, but then takes the name of its
// family, written as the user's language has it, for the name of a face, which few fonts share: it draws question marks.
// Bold letters stay bold where the family has them.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

// What is asked for a face by this name gets the face.
fax::Repair<NSFontDescriptor *(unichar)> substitute_descriptor{
    "NSMutableAttributedString", "_substituteFontDescriptorFor:",
    [](id self, SEL command, unichar letter) -> NSFontDescriptor * {
      NSFontDescriptor *found = substitute_descriptor(self, command, letter);
      NSString *face = [found objectForKey:NSFontNameAttribute];
      if ([NSFont fontWithName:face size:0] == nil) return found;
      return [found fontDescriptorByAddingAttributes:[NSDictionary dictionaryWithObject:face
                                                                                 forKey:NSFontFamilyAttribute]];
    }};

fax::Repair<NSFont *(NSString *, NSFont *)> substitute_font{
    "NSMutableAttributedString", "_substituteFontWithName:font:",
    [](id self, SEL command, NSString *name, NSFont *base) -> NSFont * {
      NSFont *face = substitute_font(self, command, name, base);
      NSFontManager *manager = [NSFontManager sharedFontManager];
      bool const bold = ([manager traitsOfFont:base] & NSBoldFontMask) != 0;
      return bold ? [manager convertFont:face toHaveTrait:NSBoldFontMask] : face;
    }};

}  // namespace
