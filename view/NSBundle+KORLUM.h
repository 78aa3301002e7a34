// The bundle's localised texts: the printer's own string table first, the default table after it.
#pragma once
#import <Foundation/Foundation.h>

@interface NSBundle (KORLUM)
// The text for key in table; where that table has none, or one that equals the key, the text in the default table; where
// that has none either, the key. table nil asks the default table alone. Borrowed.
- (NSString *)korlumLocalizedStringForKey:(NSString *)key value:(NSString *)value table:(NSString *)table;
@end
