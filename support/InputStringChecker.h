// A text field's formatter that refuses an edit whose result would be too long or would hold a character that is not
// allowed. It never changes a text and gives no error text. Main thread.
#pragma once

#import <Foundation/Foundation.h>

#include "support/ClassNames.h"

@interface InputStringChecker : NSFormatter {
@public
  // The most UTF-16 units and the most UTF-8 bytes of a text; all bits set: no limit.
  NSUInteger maxLength;
  // Tables of 65,536 bytes, owned, or NULL: byte c is 1 for each UTF-16 unit c that is allowed, or refused. Where there
  // is a table of refused units, the other one is not consulted.
  unsigned char *acceptableCodeRange;
  unsigned char *unAcceptableCodeRange;
}
// No limit and no table.
- (id)init;
- (void)dealloc;
- (void)setMaxLength:(NSUInteger)length;
// ranges: pairs of UTF-16 units (first, last), both inclusive, up to a pair whose first is 0; read now, not kept. A
// pair whose first is above its last marks nothing. Each call replaces what an earlier one set. NULL is an empty list.
// Without memory for the table nothing is checked.
- (void)setAcceptableCodeRange:(unichar const *)ranges;
- (void)setUnAcceptableCodeRange:(unichar const *)ranges;
@end
