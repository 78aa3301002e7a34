#import "addressbook/AddressBookView.h"

@implementation AddressBookView

- (void)initializeControls {
  NSWindow *window = [self window];
  if (window != nil && thisBundle != nil)
    [window setTitle:[thisBundle localizedStringForKey:[window title] value:nil table:nil]];
  NSEnumerator *subviews = [[NSArray arrayWithArray:[self subviews]] objectEnumerator];
  while (NSView *subview = [subviews nextObject]) [self localizeControl:subview];
}

- (void)selectTab:(int)index {
  if (index < 0) return;
  try {
    [addressSourceTabView selectTabViewItemAtIndex:index];
  } catch (...) {
    // There is no such tab.
  }
}

- (int)selectedTabIndex {
  NSTabViewItem *selected = [addressSourceTabView selectedTabViewItem];
  return selected != nil ? static_cast<int>([addressSourceTabView indexOfTabViewItem:selected]) : -1;
}

@end
