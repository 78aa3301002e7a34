// Backspace, Delete, the arrows and the mouse take a character beyond the first plane as one. The toolkit takes it in two
// halves; a text with half a character in it is no text for it either, and the next edit raises an exception.
#import <AppKit/AppKit.h>

#include "platform/bridge.h"
#include "platform/gnustep/repair.h"
#include "platform/gnustep/whole_characters.h"

#include <algorithm>

namespace {

// Wider where it cuts a character; an insertion point goes on in the direction in which it moves.
NSRange whole_range(NSTextView *view, NSRange range) {
  std::u16string const text = fax::to_units([view string]);
  if (NSMaxRange(range) > text.size()) return range;
  NSUInteger start = range.location, end = NSMaxRange(range);
  if (range.length == 0) {
    bool const forward = start > [view selectedRange].location;
    if (fax::inside_character(text, start)) start = forward ? start + 1 : start - 1;
    return NSMakeRange(start, 0);
  }
  if (fax::inside_character(text, start)) --start;
  if (fax::inside_character(text, end)) ++end;
  return NSMakeRange(start, end - start);
}

fax::Repair<void(NSRange, NSSelectionAffinity, BOOL)> set_selection{
    "NSTextView", "setSelectedRange:affinity:stillSelecting:",
    [](id self, SEL command, NSRange range, NSSelectionAffinity affinity, BOOL selecting) {
      set_selection(self, command, whole_range(self, range), affinity, selecting);
    }};

// With both halves selected the toolkit deletes the selection.
void select_character(NSTextView *view, std::ptrdiff_t middle) {
  NSRange const selection = [view selectedRange];
  if (selection.length > 0) return;
  auto const place = static_cast<std::ptrdiff_t>(selection.location) + middle;
  if (place < 1 || !fax::inside_character(fax::to_units([view string]), static_cast<std::size_t>(place))) return;
  [view setSelectedRange:NSMakeRange(static_cast<NSUInteger>(place - 1), 2)];
}

fax::Repair<void(id)> delete_backward{"NSTextView", "deleteBackward:", [](id self, SEL command, id sender) {
                                        select_character(self, -1);
                                        delete_backward(self, command, sender);
                                      }};

fax::Repair<void(id)> delete_forward{"NSTextView", "deleteForward:", [](id self, SEL command, id sender) {
                                       select_character(self, 1);
                                       delete_forward(self, command, sender);
                                     }};

}  // namespace
