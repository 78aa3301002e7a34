#import "addressbook/GroupFormatter.h"

@implementation GroupFormatter

- (id)initWithWord:(NSString *)theWord {
  self = [super init];
  if (self != nil) word = [theWord copy];
  return self;
}

- (void)dealloc {
  [word release];
  [super dealloc];
}

// Each cell of a list is drawn by a copy.
- (id)copyWithZone:(NSZone *)zone {
  return [[GroupFormatter allocWithZone:zone] initWithWord:word];
}

- (NSString *)stringForObjectValue:(id)value {
  return [value isEqual:@"Group"] ? word : [value description];
}

- (BOOL)getObjectValue:(id *)value forString:(NSString *)text errorDescription:(NSString **)error {
  (void)error;
  *value = [text isEqual:word] ? @"Group" : text;
  return YES;
}

@end
