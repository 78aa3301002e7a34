// Bindings to a key of an array controller's rows.
#pragma once
#import <AppKit/AppKit.h>

namespace fax {

// The rest of an array controller's path: "arrangedObjects.name" -> "name"; nil for other paths and objects.
inline NSString *path_in_row(id object, NSString *path) {
  NSString *const arranged = @"arrangedObjects.";
  if (![object isKindOfClass:[NSArrayController class]] || ![path hasPrefix:arranged]) return nil;
  return [path substringFromIndex:[arranged length]];
}

}  // namespace fax
