#import "faxsetting/FaxSettingView.h"

@implementation FaxSettingView

- (void)initializeControls {
  NSWindow *window = [self window];
  if (window != nil && thisBundle != nil)
    [window setTitle:[thisBundle localizedStringForKey:[window title] value:nil table:nil]];
  NSEnumerator *subviews = [[NSArray arrayWithArray:[self subviews]] objectEnumerator];
  while (NSView *subview = [subviews nextObject]) [self localizeControl:subview];
}

@end
