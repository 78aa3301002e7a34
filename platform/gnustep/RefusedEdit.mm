// What a text field's formatter says of text that is being typed, pasted or deleted, asked before the text changes: a
// refused edit leaves text and selection as they are, and neither the control's delegate nor its binding sees it. The
// toolkit asks afterwards, when all have seen the bad text, and cannot take it back.
#import <AppKit/AppKit.h>

#include "platform/bridge.h"
#include "platform/gnustep/repair.h"
#include "platform/gnustep/whole_characters.h"

#include <algorithm>

namespace {

// The long question, for formatters that answer only the short one. A substitute counts also where the short answer was
// YES: the toolkit has always used it.
fax::Repair<BOOL(NSString **, NSRange *, NSString *, NSRange, NSString **)> ask_short{
    "NSFormatter", "isPartialStringValid:proposedSelectedRange:originalString:originalSelectedRange:errorDescription:",
    [](id self, SEL, NSString **text, NSRange *selection, NSString *, NSRange, NSString **error) -> BOOL {
      NSString *substitute = nil;
      NSString *reason = nil;
      BOOL const valid = [self isPartialStringValid:*text newEditingString:&substitute errorDescription:&reason];
      if (error != nullptr) *error = reason;
      if (substitute != nil && ![substitute isEqualToString:*text]) {
        *text = substitute;
        *selection = NSMakeRange([substitute length], 0);
      }
      return valid;
    }};

// The text that the last question allowed; the control need not ask again when it arrives.
NSString *allowed_text = nil;

void allow(NSString *text) {
  [text retain];
  [allowed_text release];
  allowed_text = text;
}

NSFormatter *formatter_of(NSTextView *editor) {
  id control = [editor isFieldEditor] ? [editor delegate] : nil;
  return [control isKindOfClass:[NSTextField class]] ? [[control cell] formatter] : nil;
}

void report_refusal(NSTextField *field, NSString *text, NSString *error) {
  id delegate = [field delegate];
  if ([delegate respondsToSelector:@selector(control:didFailToValidatePartialString:errorDescription:)]) {
    [delegate control:field didFailToValidatePartialString:text errorDescription:error];
  }
}

fax::Repair<BOOL(NSRange, NSString *)> should_change{
    "NSTextView", "shouldChangeTextInRange:replacementString:",
    [](id self, SEL command, NSRange range, NSString *replacement) -> BOOL {
      NSTextView *editor = self;
      if (replacement != nil && !fax::is_whole(fax::to_units(replacement))) {
        NSBeep();
        return NO;
      }
      NSFormatter *formatter = replacement != nil && [editor isEditable] ? formatter_of(editor) : nil;
      NSString *present = [editor string];
      if (formatter == nil || NSMaxRange(range) > [present length]) {
        return should_change(self, command, range, replacement);
      }
      present = [[present copy] autorelease];
      NSString *const proposed = [present stringByReplacingCharactersInRange:range withString:replacement];
      NSString *text = proposed;
      NSRange selection = NSMakeRange(range.location + [replacement length], 0);
      NSString *error = nil;
      BOOL const valid = [formatter isPartialStringValid:&text
                                   proposedSelectedRange:&selection
                                          originalString:present
                                   originalSelectedRange:[editor selectedRange]
                                        errorDescription:&error];
      bool const substituted = text != nil && ![text isEqualToString:proposed];
      if (!valid) report_refusal(static_cast<NSTextField *>([editor delegate]), proposed, error);
      if (valid && !substituted) {
        allow(proposed);
        return should_change(self, command, range, replacement);
      }
      if (!substituted || [text isEqualToString:present]) {
        NSBeep();
        return NO;
      }
      NSRange const whole = NSMakeRange(0, [present length]);
      if (!should_change(self, command, whole, text)) return NO;
      allow(text);
      [editor replaceCharactersInRange:whole withString:text];
      NSUInteger const length = [[editor string] length];
      NSUInteger const start = std::min(selection.location, length);
      [editor setSelectedRange:NSMakeRange(start, std::min(selection.length, length - start))];
      [editor didChangeText];
      return NO;
    }};

fax::Repair<void(NSNotification *)> text_did_change{
    "NSTextField", "textDidChange:", [](id self, SEL command, NSNotification *change) {
      NSTextView *editor = [change object];
      bool const asked = allowed_text != nil && [editor isKindOfClass:[NSTextView class]] &&
                         formatter_of(editor) != nil && [[editor string] isEqualToString:allowed_text];
      if (!asked) {
        text_did_change(self, command, change);
        return;
      }
      auto const of_control = reinterpret_cast<void (*)(id, SEL, NSNotification *)>(
          reinterpret_cast<void (*)()>(class_getMethodImplementation([NSControl class], command)));
      of_control(self, command, change);
    }};

}  // namespace
