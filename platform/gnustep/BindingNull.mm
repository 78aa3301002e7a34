// A bound value that becomes nil: change dictionaries carry NSNull for it, which the toolkit's bindings show as
// "<null>".
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<id(id, NSDictionary *)> transform_value{
    "GSKeyValueBinding", "transformValue:withOptions:",
    [](id self, SEL command, id value, NSDictionary *options) -> id {
      return transform_value(self, command, value == [NSNull null] ? nil : value, options);
    }};

}  // namespace
