// Text fields with formatters and bindings, typed into as a user does.
#import "fixture.h"

#include <gtest/gtest.h>

#include <string>

// Digits only, least to five of them. Refuses without a substitute, or with the digits that are there.
@interface DigitFormatter : NSFormatter {
 @public
  BOOL substitutes;
  NSUInteger least;
}
@end

@implementation DigitFormatter
- (NSString *)stringForObjectValue:(id)value {
  return [value isKindOfClass:[NSString class]] ? value : @"";
}
- (BOOL)getObjectValue:(id *)value forString:(NSString *)text errorDescription:(NSString **)error {
  if (value != nullptr) *value = text;
  return YES;
}
- (BOOL)isPartialStringValid:(NSString *)text
            newEditingString:(NSString **)substitute
            errorDescription:(NSString **)error {
  NSMutableString *digits = [NSMutableString string];
  for (NSUInteger at = 0; at < [text length]; ++at) {
    unichar const character = [text characterAtIndex:at];
    if (character >= '0' && character <= '9') [digits appendFormat:@"%c", character];
  }
  if ([digits length] == [text length] && [text length] >= least && [text length] <= 5) return YES;
  if (error != nullptr) *error = @"five digits";
  if (substitutes && substitute != nullptr) *substitute = digits;
  return NO;
}
@end

// Remembers every text that a control's delegate sees.
@interface FieldDelegate : NSObject {
 @public
  NSMutableArray *seen;
  int refusals;
}
@end

@implementation FieldDelegate
- (id)init {
  if ((self = [super init]) != nil) seen = [[NSMutableArray alloc] init];
  return self;
}
- (void)controlTextDidChange:(NSNotification *)note {
  [seen addObject:[[[[[note userInfo] objectForKey:@"NSFieldEditor"] string] copy] autorelease]];
}
- (void)control:(NSControl *)control
    didFailToValidatePartialString:(NSString *)text
                  errorDescription:(NSString *)error {
  if ([error isEqualToString:@"five digits"]) ++refusals;
}
@end

namespace {

std::string text(NSString *string) {
  return string != nil ? [string UTF8String] : "(nil)";
}

class TextFieldTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_NE(panel = open_panel(), nil);
    [panel->window makeFirstResponder:panel->nameField];
    formatter = [[[DigitFormatter alloc] init] autorelease];
    delegate = [[FieldDelegate alloc] init];
  }
  void TearDown() override {
    [panel->nameField setDelegate:nil];
    [panel->window orderOut:nil];
    [delegate release];
    [pool release];
  }
  void check_digits(BOOL substitutes = NO) {
    formatter->substitutes = substitutes;
    [panel->nameField setFormatter:formatter];
    [panel->nameField setDelegate:static_cast<id>(delegate)];
    [panel->window makeFirstResponder:panel->nameField];
  }
  NSTextView *editor() { return static_cast<NSTextView *>(static_cast<id>([panel->nameField currentEditor])); }
  std::string seen() { return text([delegate->seen componentsJoinedByString:@","]); }
  std::string selection() { return text(NSStringFromRange([editor() selectedRange])); }

  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  PanelOwner *panel = nil;
  DigitFormatter *formatter = nil;
  FieldDelegate *delegate = nil;
};

TEST_F(TextFieldTest, TypingReachesTheInstanceVariable) {
  type(panel->window, "Fax");
  EXPECT_EQ(text(panel->title), "Fax");
  press(panel->window, 0x7f);
  EXPECT_EQ(text(panel->title), "Fa");
}

TEST_F(TextFieldTest, RefusedKeyChangesNothing) {
  check_digits();
  type(panel->window, "12a");
  EXPECT_EQ(text([editor() string]), "12");
  EXPECT_EQ(selection(), "{location=2, length=0}");
  EXPECT_EQ(delegate->refusals, 1);
  type(panel->window, "3x");
  EXPECT_EQ(text([editor() string]), "123");
  EXPECT_EQ(text(panel->title), "123");
  EXPECT_EQ(seen(), "1,12,123") << "the delegate never saw the bad text";
}

TEST_F(TextFieldTest, RefusedKeyKeepsTheSelection) {
  check_digits();
  type(panel->window, "123");
  [editor() setSelectedRange:NSMakeRange(1, 2)];
  press(panel->window, 'x');
  EXPECT_EQ(text([editor() string]), "123");
  EXPECT_EQ(selection(), "{location=1, length=2}");
  press(panel->window, '9');
  EXPECT_EQ(text([editor() string]), "19");
}

TEST_F(TextFieldTest, RefusedPasteChangesNothing) {
  check_digits();
  type(panel->window, "12");
  NSPasteboard *board = [NSPasteboard generalPasteboard];
  [board declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:nil];
  [board setString:@"34-5" forType:NSStringPboardType];
  [editor() paste:nil];
  EXPECT_EQ(text([editor() string]), "12");
  [board declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:nil];
  [board setString:@"345" forType:NSStringPboardType];
  [editor() paste:nil];
  EXPECT_EQ(text([editor() string]), "12345");
  press(panel->window, '6');
  EXPECT_EQ(text([editor() string]), "12345") << "too long";
  press(panel->window, 0x7f);
  EXPECT_EQ(text([editor() string]), "1234");
  EXPECT_EQ(seen(), "1,12,12345,1234");
}

TEST_F(TextFieldTest, RefusedDeletionChangesNothing) {
  check_digits();
  type(panel->window, "123");
  formatter->least = 3;
  press(panel->window, 0x7f);
  EXPECT_EQ(text([editor() string]), "123");
  EXPECT_EQ(selection(), "{location=3, length=0}");
  [editor() selectAll:nil];
  [editor() cut:nil];
  EXPECT_EQ(text([editor() string]), "123");
  EXPECT_EQ(text(panel->title), "123");
}

TEST_F(TextFieldTest, ACharacterOfTwoHalvesIsOne) {
  NSString *const face = @"\U0001F600";
  unichar const half = [face characterAtIndex:0];
  [editor() insertText:[NSString stringWithFormat:@"a%@b", face]];
  [editor() insertText:[NSString stringWithCharacters:&half length:1]];
  EXPECT_EQ(text([editor() string]), "a\U0001F600b") << "half a character is none";
  struct {
    unichar key;
    char const *selection, *left;
  } const steps[] = {
      {NSLeftArrowFunctionKey, "{location=3, length=0}", "a\U0001F600b"},
      {NSLeftArrowFunctionKey, "{location=1, length=0}", "a\U0001F600b"},
      {NSRightArrowFunctionKey, "{location=3, length=0}", "a\U0001F600b"},
      {0x7f, "{location=1, length=0}", "ab"},
  };
  for (auto const &step : steps) {
    press(panel->window, step.key);
    EXPECT_EQ(selection(), step.selection);
    EXPECT_EQ(text(panel->title), step.left);
  }
  [editor() insertText:face];
  [editor() setSelectedRange:NSMakeRange(0, 2)];
  EXPECT_EQ(selection(), "{location=0, length=3}") << "not cut";
  [editor() setSelectedRange:NSMakeRange(1, 0)];
  [editor() deleteForward:nil];
  EXPECT_EQ(text(panel->title), "ab");
}

TEST_F(TextFieldTest, SubstituteIsUsed) {
  check_digits(YES);
  type(panel->window, "1a");
  EXPECT_EQ(text([editor() string]), "1");
  NSPasteboard *board = [NSPasteboard generalPasteboard];
  [board declareTypes:[NSArray arrayWithObject:NSStringPboardType] owner:nil];
  [board setString:@"2-3" forType:NSStringPboardType];
  [editor() paste:nil];
  EXPECT_EQ(text([editor() string]), "123");
  EXPECT_EQ(selection(), "{location=3, length=0}");
  EXPECT_EQ(text(panel->title), "123");
  EXPECT_EQ(seen(), "1,123");
}

// The hour and minute of a time of day, in the local zone: "14:05".
std::string local(NSDate *date) {
  if (date == nil) return "(nil)";
  NSDateComponents *parts = [[NSCalendar currentCalendar] components:NSHourCalendarUnit | NSMinuteCalendarUnit
                                                            fromDate:date];
  return std::to_string([parts hour]) + ":" + std::to_string([parts minute]);
}

struct TimeCase {
  char const *name;
  char const *typed;
  char const *time;   // in the model
  char const *shown;  // in the field
};

class TimeField : public testing::TestWithParam<TimeCase> {};

TEST_P(TimeField, TakesATimeOfDay) {
  TimeCase const &test = GetParam();
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  PanelOwner *panel = open_panel();
  ASSERT_NE(panel, nil);
  NSDateComponents *evening = [[[NSDateComponents alloc] init] autorelease];
  [evening setYear:2001];
  [evening setMonth:7];
  [evening setDay:2];
  [evening setHour:18];
  [evening setMinute:30];
  [panel setValue:[[NSCalendar currentCalendar] dateFromComponents:evening] forKey:@"time"];
  EXPECT_EQ(text([panel->timeField stringValue]), "18:30");
  [panel->window makeFirstResponder:panel->timeField];
  [[panel->timeField currentEditor] selectAll:nil];
  if (*test.typed == 0) {
    press(panel->window, 0x7f);
  } else {
    type(panel->window, test.typed);
  }
  press(panel->window, '\t');
  EXPECT_EQ(local(panel->time), test.time);
  NSText *editor = [panel->timeField currentEditor];
  EXPECT_EQ(text(editor != nil ? [editor string] : [panel->timeField stringValue]), test.shown);
  [panel->window orderOut:nil];
  [pool release];
}

INSTANTIATE_TEST_SUITE_P(Table, TimeField,
                         testing::Values(TimeCase{"afternoon", "14:05", "14:5", "14:05"},
                                         TimeCase{"one_digit_hour", "9:05", "9:5", "09:05"},
                                         TimeCase{"midnight", "00:00", "0:0", "00:00"},
                                         TimeCase{"no_such_hour", "99:05", "18:30", "99:05"},
                                         TimeCase{"end_of_day_is_24", "24:00", "18:30", "24:00"},
                                         TimeCase{"rest_after_it", "14:05x", "18:30", "14:05x"},
                                         TimeCase{"words", "noon", "18:30", "noon"},
                                         TimeCase{"emptied", "", "18:30", "18:30"}),
                         [](auto const &info) { return std::string{info.param.name}; });

TEST(DateFormatter, OldLanguageStaysAsItIs) {
  NSDateFormatter *old = [[[NSDateFormatter alloc] initWithDateFormat:@"%H-%M" allowNaturalLanguage:NO] autorelease];
  NSDate *date = nil;
  ASSERT_TRUE([old getObjectValue:&date forString:@"14-05" errorDescription:nullptr]);
  EXPECT_EQ(text([old stringForObjectValue:date]), "14-05");
}

}  // namespace
