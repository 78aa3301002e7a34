// Whether a document is one of Xcode's, asked without leaving the whole document in memory, as the toolkit does for every
// window that is loaded.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

fax::Repair<BOOL(NSData *)> check_xib{
    "GSXibKeyedUnarchiver", "checkXib5:",
    [](id, SEL, NSData *data) -> BOOL {
      NSXMLDocument *document = [[[NSXMLDocument alloc] initWithData:data options:0 error:nullptr] autorelease];
      return document != nil && [[document nodesForXPath:@"/document" error:nullptr] count] != 0;
    },
    fax::MethodOf::class_object};

}  // namespace
