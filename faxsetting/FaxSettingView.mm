#import "faxsetting/FaxSettingView.h"

#import "view/BasicPdeView+Hints.h"

@implementation FaxSettingView

- (void)initializeControls {
  NSWindow *window = [self window];
  if (window != nil && thisBundle != nil)
    [window setTitle:[thisBundle localizedStringForKey:[window title] value:nil table:nil]];
  NSEnumerator *subviews = [[NSArray arrayWithArray:[self subviews]] objectEnumerator];
  while (NSView *subview = [subviews nextObject]) [self localizeControl:subview];
  [self beginHints];
}

// By the buttons themselves, so that it never says anything else than they do.
- (NSString *)hint {
  if ([addAddressButton isEnabled]) return @"Press Return to add the recipient.";
  if ([destinationTable numberOfRows] == 0) return @"Type a fax number, or take recipients from an address book.";
  if (![deleteAddressButton isEnabled]) return @"Select a recipient to edit or delete it.";
  if (![editAddressButton isEnabled]) return @"Select only one recipient to edit it.";
  if (![addToAddressBookButton isEnabled]) return @"There is no address-book file to add recipients to.";
  return nil;
}

- (NSButton *)deleteButtonOfTable:(NSView *)table {
  return table == destinationTable ? deleteAddressButton : nil;
}

@end
