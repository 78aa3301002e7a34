#import "support/InputStringChecker.h"

#include "support/code_unit_table.h"

#include <cstdlib>
#include <string>

static_assert(sizeof(unichar) == sizeof(char16_t), "both are UTF-16 code units");

@implementation InputStringChecker

- (id)init {
  self = [super init];
  if (self == nil) return nil;
  maxLength = NSUIntegerMax;
  acceptableCodeRange = NULL;
  return self;
}

- (void)dealloc {
  free(acceptableCodeRange);
  free(unAcceptableCodeRange);
  [super dealloc];
}

- (void)setMaxLength:(NSUInteger)length {
  maxLength = length;
}

- (void)setAcceptableCodeRange:(unichar const *)ranges {
  fax::set_code_unit_table(&acceptableCodeRange, reinterpret_cast<char16_t const *>(ranges));
}

- (void)setUnAcceptableCodeRange:(unichar const *)ranges {
  fax::set_code_unit_table(&unAcceptableCodeRange, reinterpret_cast<char16_t const *>(ranges));
}

- (NSString *)stringForObjectValue:(id)object {
  return [object isKindOfClass:[NSString class]] ? object : nil;
}

- (BOOL)getObjectValue:(id *)object forString:(NSString *)string errorDescription:(NSString **)error {
  (void)error;
  if (object != NULL) *object = string != nil ? [NSString stringWithString:string] : nil;
  return YES;
}

- (BOOL)isPartialStringValid:(NSString *)partial
            newEditingString:(NSString **)replacement
            errorDescription:(NSString **)error {
  (void)replacement;
  (void)error;
  std::u16string text([partial length], u'\0');
  // Nothing longer can be accepted, so a huge paste is refused before it is copied.
  if (text.size() > maxLength) return NO;
  [partial getCharacters:reinterpret_cast<unichar *>(text.data()) range:NSMakeRange(0, text.size())];
  fax::TextRule const rule{maxLength, acceptableCodeRange, unAcceptableCodeRange};
  return rule.accepts(text) ? YES : NO;
}

@end
