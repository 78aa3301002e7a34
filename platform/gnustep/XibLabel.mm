// Labels in Xcode's documents: a text cell without the attribute editable is not editable. The toolkit takes what is
// left out as YES, and labels take the focus.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<id(NSCoder *)> init_with_coder{
    "NSTextFieldCell", "initWithCoder:", [](id self, SEL command, NSCoder *coder) -> id {
      bool const label = fax::reads_xcode_document(coder) && [coder decodeObjectForKey:@"editable"] == nil;
      NSTextFieldCell *cell = init_with_coder(self, command, coder);
      if (label) [cell setEditable:NO];
      return cell;
    }};

}  // namespace
