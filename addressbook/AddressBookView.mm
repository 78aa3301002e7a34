#import "addressbook/AddressBookView.h"

#import "addressbook/GroupFormatter.h"
#import "view/BasicPdeView+Hints.h"

#include <initializer_list>

namespace {

void show_groups_as(NSString *word, std::initializer_list<NSTableView *> tables) {
  GroupFormatter *formatter = [[GroupFormatter alloc] initWithWord:word];
  for (NSTableView *table : tables)
    [[[table tableColumnWithIdentifier:@"phoneNumber"] dataCell] setFormatter:formatter];
  [formatter release];
}

}  // namespace

@implementation AddressBookView

- (void)initializeControls {
  NSWindow *window = [self window];
  if (window != nil && thisBundle != nil)
    [window setTitle:[thisBundle localizedStringForKey:[window title] value:nil table:nil]];
  NSEnumerator *subviews = [[NSArray arrayWithArray:[self subviews]] objectEnumerator];
  while (NSView *subview = [subviews nextObject]) [self localizeControl:subview];
  show_groups_as([self translationOf:@"Group"], {pcTable, deviceTable});
  [self beginHints];
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

- (NSString *)hint {
  bool const printer = [self selectedTabIndex] == 1;
  if ([printer ? addDeviceButton : addPCButton isEnabled]) return @"Press Return to add the selected entries.";
  if ([printer ? deviceTable : pcTable numberOfRows] == 0) return @"There are no entries to show.";
  return @"Select entries to add them to the recipients.";
}

- (NSButton *)deleteButtonOfTable:(NSView *)table {
  return table == destinationTable ? removeButton : nil;
}

@end
