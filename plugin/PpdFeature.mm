#import "plugin/PpdFeature.h"

#include <cstring>

#include "plugin/ppd_choices.h"

@implementation PpdFeature

- (id)initWithPPD:(ppd_file_t *)file andKeyowrd:(NSString *)key {
  self = [super init];
  if (self == nil) return nil;
  ppd = file;
  char const *text = [key UTF8String];
  std::strncpy(keyword, text != NULL ? text : "", 254);
  ppd_option_t *option = ppd != NULL ? ppdFindOption(ppd, keyword) : NULL;
  if (option == NULL) return self;
  title = option->text;
  curChoice = fax::initial_choice(*option);
  return self;
}

- (void)setSummaryInfo:(NSMutableDictionary *)summary {
  NSString *name = [self title];
  NSString *value = [self curValue];
  if (name != nil && value != nil) [summary setObject:value forKey:name];
}

- (void)setSummaryInfo:(NSMutableDictionary *)summary andOrder:(NSMutableArray *)order {
  [self setSummaryInfo:summary];
  NSString *name = [self title];
  if (name != nil) [order addObject:name];
}

- (void)setDefault {
  ppd_option_t *option = ppd != NULL ? ppdFindOption(ppd, keyword) : NULL;
  if (option == NULL) return;
  if (ppd_choice_t *choice = fax::default_choice(*option)) curChoice = choice;
}

- (NSString *)keyword {
  return [NSString stringWithUTF8String:keyword];
}

- (NSString *)title {
  return title != NULL ? [NSString stringWithUTF8String:title] : nil;
}

- (NSString *)curValue {
  return curChoice != NULL ? [NSString stringWithUTF8String:curChoice->text] : nil;
}

- (NSString *)curChoice {
  return curChoice != NULL ? [NSString stringWithUTF8String:curChoice->choice] : nil;
}

- (void)setCurChoice:(ppd_choice_t *)choice {
  curChoice = choice;
}

@end
