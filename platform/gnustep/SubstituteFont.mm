// Letters that a font lacks are drawn with one that has them. The toolkit looks for that one by the name of a family but
// takes the name for that of a face, which few families share, and so draws a question mark.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

// The family's font that is most like the base; of a family without such a weight its first; nil when there is none.
NSFont *font_of_family(NSString *family, NSFont *base) {
  NSFontManager *manager = [NSFontManager sharedFontManager];
  NSFont *const alike = [manager convertFont:base toFamily:family];
  if (alike != base) return alike;
  NSArray *members = [manager availableMembersOfFontFamily:family];
  if ([members count] == 0) return nil;
  return [NSFont fontWithName:[[members objectAtIndex:0] objectAtIndex:0] size:[base pointSize]];
}

fax::Repair<NSFont *(NSString *, NSFont *)> substitute_font{
    "NSMutableAttributedString", "_substituteFontWithName:font:",
    [](id self, SEL command, NSString *name, NSFont *base) -> NSFont * {
      NSFont *face = substitute_font(self, command, name, base);
      if (face != base) return face;
      NSFont *found = font_of_family(name, base);
      return found != nil ? found : base;
    }};

}  // namespace
