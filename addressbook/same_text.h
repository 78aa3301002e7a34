// When two destinations are the same.
#pragma once

#import <Foundation/Foundation.h>

namespace fax {

// Character by character: letter case counts, and so does how an accent is written. (isEqualToString: does not tell
// every pair of such texts apart on every system.) nil is like nil alone.
inline bool same_text(NSString *one, NSString *other) {
  if (one == nil || other == nil) return one == other;
  return [one length] == [other length] && [one compare:other options:NSLiteralSearch] == NSOrderedSame;
}

}  // namespace fax
