#import "host/HostAlerts.h"

#import "toolkit/gnustep_texts.h"
#import "toolkit/text.h"

using namespace fax::toolkit;

@implementation HostAlerts

- (void)tell:(NSString *)what advice:(NSString *)advice {
  NSAlert *alert = [[NSAlert alloc] init];
  NSString *const text = [advice length] ? [NSString stringWithFormat:@"%@\n\n%@", what, advice] : what;
  //: The title of a message from the print dialog.
  [alert setMessageText:ns(tr("Print"))];
  [alert setInformativeText:text];
  // What nothing can be done about is news, not a warning.
  if (![advice length]) [alert setAlertStyle:NSInformationalAlertStyle];
  [alert addButtonWithTitle:ns(tr("OK"))];
  [alert runModal];
  [alert release];
}

- (NSString *)askPathFor:(NSString *)proposedName {
  NSSavePanel *panel = [NSSavePanel savePanel];
  [panel setTitle:ns(tr("Save as File"))];
  fit_buttons(panel);
  NSInteger const answer = [panel runModalForDirectory:NSHomeDirectory() file:proposedName];
  return answer == NSOKButton ? [panel filename] : nil;
}

@end
