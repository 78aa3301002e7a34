// How the lists of entries show the fax number of a group, which is the English word "Group" (kGroupNumber): in the
// user's language. Every other number stands as it is.
#pragma once
#import <Foundation/Foundation.h>

#include "support/ClassNames.h"

@interface GroupFormatter : NSFormatter {
  NSString *word;
}
- (id)initWithWord:(NSString *)theWord;
@end
