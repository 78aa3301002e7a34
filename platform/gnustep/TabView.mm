// NSTabView from Xcode's documents has a selected tab: the one marked, else the first. Selecting the tab that is
// selected tells the delegate nothing, as on macOS. Selecting another leaves the order of its views for the keyboard as the
// document has it: the toolkit would join the last of them to the first, and the keyboard could not leave the tab. After a
// last view that has no next one comes what came after the tab that was selected before.
#import <AppKit/AppKit.h>

#include "platform/gnustep/repair.h"

#include <unordered_set>

namespace {

// The last of the views that the keyboard visits from first on within the tab's own view.
NSView *last_key_view(NSView *first, NSView *within) {
  NSView *last = nil;
  std::unordered_set<NSView *> seen;
  for (NSView *view = first; [view isDescendantOf:within] && seen.insert(view).second; view = [view nextKeyView])
    last = view;
  return last;
}

// What NSView itself does; a tab view hands it on to its selected tab.
void set_own_next_key_view(NSView *view, NSView *next) {
  SEL const command = @selector(setNextKeyView:);
  auto const of_view = reinterpret_cast<void (*)(id, SEL, NSView *)>(
      reinterpret_cast<void (*)()>(class_getMethodImplementation([NSView class], command)));
  of_view(view, command, next);
}

fax::Repair<id(NSCoder *)> init_with_coder{
    "NSTabView", "initWithCoder:", [](id self, SEL command, NSCoder *coder) -> id {
      NSTabView *view = init_with_coder(self, command, coder);
      if (fax::reads_xcode_document(coder) && [view selectedTabViewItem] == nil && [view numberOfTabViewItems] > 0) {
        [view selectTabViewItemAtIndex:0];
      }
      return view;
    }};

fax::Repair<void(NSTabViewItem *)> select_item{
    "NSTabView", "selectTabViewItem:", [](id self, SEL command, NSTabViewItem *item) {
      NSTabView *view = self;
      if (item != nil && item == [view selectedTabViewItem]) return;
      NSView *first = [item initialFirstResponder];
      NSView *last = last_key_view(first, [item view]);
      NSView *next = [last nextKeyView];
      if (next == nil) {
        NSTabViewItem *before = [view selectedTabViewItem];
        next = [last_key_view([before initialFirstResponder], [before view]) nextKeyView];
      }
      select_item(self, command, item);
      if (last == nil || [view selectedTabViewItem] != item) return;
      [last setNextKeyView:next];
      set_own_next_key_view(view, first);
    }};

// The document joins the selected tab's views to the tab view's place among the others only now.
fax::Repair<void(NSView *)> set_initial_first_responder{
    "NSTabViewItem", "setInitialFirstResponder:", [](id self, SEL command, NSView *first) {
      set_initial_first_responder(self, command, first);
      NSTabView *view = [self tabView];
      if (view != nil && [view selectedTabViewItem] == self) set_own_next_key_view(view, first);
    }};

}  // namespace
