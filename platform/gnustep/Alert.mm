// An alert without an informative text shows none. The toolkit writes "No information" there.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<id()> init{"NSAlert", "init", [](id self, SEL command) -> id {
                         NSAlert *alert = init(self, command);
                         [alert setInformativeText:@""];
                         return alert;
                       }};

}  // namespace
