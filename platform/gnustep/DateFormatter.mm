// NSDateFormatter with a Unicode pattern ("HH:mm") inside a cell and in Xcode's documents. The toolkit formats so in
// stringFromDate: only; a cell's text is made with the old "%H:%M" language, and dateFormat in a document is not read.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

#include <cctype>
#include <string>

namespace {

// The old language: asked for by its behaviour, or by a pattern that is written in it.
bool speaks_old_language(NSDateFormatter *formatter) {
  if ([formatter formatterBehavior] == NSDateFormatterBehavior10_4) return false;
  if ([formatter formatterBehavior] == NSDateFormatterBehavior10_0) return true;
  NSString *pattern = [formatter dateFormat];
  return pattern != nil && [pattern rangeOfString:@"%"].location != NSNotFound;
}

// "09:05 " and "9:05" -> "9:5": what may differ between a date as typed and as printed.
std::string plain_form(NSString *text) {
  std::string const bytes = [text UTF8String];
  std::string form;
  bool in_number = false;
  for (std::size_t at = 0; at < bytes.size(); ++at) {
    auto const byte = static_cast<unsigned char>(bytes[at]);
    if (std::isspace(byte) != 0) continue;
    bool const digit = std::isdigit(byte) != 0;
    bool const more_digits = at + 1 < bytes.size() && std::isdigit(static_cast<unsigned char>(bytes[at + 1])) != 0;
    if (digit && byte == '0' && !in_number && more_digits) continue;
    in_number = digit;
    form.push_back(static_cast<char>(std::tolower(byte)));
  }
  return form;
}

bool has_letter_of(NSString *pattern, NSString *letters) {
  NSCharacterSet *set = [NSCharacterSet characterSetWithCharactersInString:letters];
  return [pattern rangeOfCharacterFromSet:set].location != NSNotFound;
}

// A time without a day is one of 1 January 2000, as on macOS.
NSDate *on_first_day(NSDate *time, NSTimeZone *zone) {
  NSCalendar *calendar = [[[NSCalendar alloc] initWithCalendarIdentifier:NSGregorianCalendar] autorelease];
  [calendar setTimeZone:zone];
  NSDateComponents *parts = [calendar components:NSHourCalendarUnit | NSMinuteCalendarUnit | NSSecondCalendarUnit
                                        fromDate:time];
  [parts setYear:2000];
  [parts setMonth:1];
  [parts setDay:1];
  return [calendar dateFromComponents:parts];
}

fax::Repair<NSString *(id)> string_for_object{
    "NSDateFormatter", "stringForObjectValue:", [](id self, SEL command, id date) -> NSString * {
      if (speaks_old_language(self) || ![date isKindOfClass:[NSDate class]]) {
        return string_for_object(self, command, date);
      }
      return [self stringFromDate:date];
    }};

// The whole text must be a date: the toolkit's reader alone takes "14:05 or so" and, when lenient, "99:05".
fax::Repair<BOOL(id *, NSString *, NSString **)> object_for_string{
    "NSDateFormatter", "getObjectValue:forString:errorDescription:",
    [](id self, SEL command, id *object, NSString *string, NSString **error) -> BOOL {
      NSDateFormatter *formatter = self;
      if (speaks_old_language(formatter)) return object_for_string(self, command, object, string, error);
      NSString *text = [string stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceAndNewlineCharacterSet]];
      NSDate *date = nil;
      if ([text length] != 0) {
        BOOL const lenient = [formatter isLenient];
        [formatter setLenient:NO];
        date = [formatter dateFromString:text];
        [formatter setLenient:lenient];
      }
      if (date != nil && plain_form([formatter stringFromDate:date]) != plain_form(text)) date = nil;
      if (date == nil) {
        if (error != nullptr) *error = @"Couldn't convert to date";
        return NO;
      }
      NSString *pattern = [formatter dateFormat];
      bool const has_day = pattern == nil || has_letter_of(pattern, @"GyYuUMLdDwWFgEec");
      if (!has_day) date = on_first_day(date, [formatter timeZone]);
      if (object != nullptr) *object = date;
      return YES;
    }};

NSDateFormatterStyle style_of(NSString *name) {
  if ([name isEqualToString:@"short"]) return NSDateFormatterShortStyle;
  if ([name isEqualToString:@"medium"]) return NSDateFormatterMediumStyle;
  if ([name isEqualToString:@"long"]) return NSDateFormatterLongStyle;
  if ([name isEqualToString:@"full"]) return NSDateFormatterFullStyle;
  return NSDateFormatterNoStyle;
}

fax::Repair<id(NSCoder *)> init_with_coder{
    "NSDateFormatter", "initWithCoder:", [](id self, SEL command, NSCoder *coder) -> id {
      if (!fax::reads_xcode_document(coder)) return init_with_coder(self, command, coder);
      NSDateFormatter *formatter = [self init];
      NSString *behaviour = [coder decodeObjectForKey:@"formatterBehavior"];
      if ([behaviour hasSuffix:@"10_4"]) [formatter setFormatterBehavior:NSDateFormatterBehavior10_4];
      if ([behaviour hasSuffix:@"10_0"]) [formatter setFormatterBehavior:NSDateFormatterBehavior10_0];
      NSDateFormatterStyle const date = style_of([coder decodeObjectForKey:@"dateStyle"]);
      NSDateFormatterStyle const time = style_of([coder decodeObjectForKey:@"timeStyle"]);
      [formatter setDateStyle:date];
      [formatter setTimeStyle:time];
      // Where styles are given, Xcode writes the pattern only for information, unless it is a custom one.
      bool const styled = date != NSDateFormatterNoStyle || time != NSDateFormatterNoStyle;
      NSString *pattern = [coder decodeObjectForKey:@"dateFormat"];
      if ([pattern length] != 0 && (!styled || [behaviour hasPrefix:@"custom"])) [formatter setDateFormat:pattern];
      return formatter;
    }};

// A date field that was emptied goes back to its date when editing ends: there is no date to give to its binding.
fax::Repair<void()> validate_editing{
    "NSTextField", "validateEditing", [](id self, SEL command) {
      NSTextField *field = self;
      NSFormatter *formatter = [[field cell] formatter];
      NSText *editor = [formatter isKindOfClass:[NSDateFormatter class]] ? [field currentEditor] : nil;
      if (editor != nil && [[editor string] length] == 0) {
        id date = nil;
        if (![formatter getObjectValue:&date forString:@"" errorDescription:nullptr]) return;
      }
      validate_editing(self, command);
    }};

}  // namespace
