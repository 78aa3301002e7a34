// A window that goes while a field in it is being edited takes the field's editor along. The toolkit leaves the editor to
// the timer of its insertion point, which blinks for ever, and the field among the editor's observers, where the next
// editor at the same address finds it.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

namespace {

// What was typed is not handed on: whoever would get it may be gone.
void abort_editing(NSWindow *window) {
  id const editor = [window firstResponder];
  if (![editor isKindOfClass:[NSTextView class]] || ![editor isFieldEditor]) return;
  id const field = [editor delegate];
  if ([field isKindOfClass:[NSControl class]]) [field abortEditing];
  [window makeFirstResponder:nil];
}

fax::Repair<void()> dealloc{"NSWindow", "dealloc", [](id self, SEL command) {
                              abort_editing(self);
                              dealloc(self, command);
                            }};

}  // namespace
