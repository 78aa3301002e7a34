// Foundation and AppKit, with the methods that macOS declares there and GNUstep's headers do not.
#pragma once
#ifdef __APPLE__
#error "platform/ stands in for system headers; on macOS keep it off the include path"
#endif
#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>

@interface NSBundle (DirectFaxNibLoading)
// Loads a nib of this bundle for an owner. *objects (may be NULL) becomes the objects at its top, autoreleased: whoever
// keeps the array keeps them alive. NO when there is no such nib.
- (BOOL)loadNibNamed:(NSString *)name owner:(id)owner topLevelObjects:(NSArray **)objects;
@end
