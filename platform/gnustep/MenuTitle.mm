// Menus without a title. Xcode writes none for the menu of a pop-up; the toolkit then measures a title that is not there,
// gets garbage for its width, and the menu opens wider than any screen and unseen.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<id(NSString *)> init_with_title{
    "NSMenu", "initWithTitle:", [](id self, SEL command, NSString *title) -> id {
      return init_with_title(self, command, title != nil ? title : @"");
    }};

}  // namespace
