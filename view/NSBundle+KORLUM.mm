#import "view/NSBundle+KORLUM.h"

@implementation NSBundle (KORLUM)

- (NSString *)korlumLocalizedStringForKey:(NSString *)key value:(NSString *)value table:(NSString *)table {
  NSString *text = [self localizedStringForKey:key value:value table:table];
  if (table == nil || ![text isEqualToString:key]) return text;
  return [self localizedStringForKey:key value:value table:nil];
}

@end
