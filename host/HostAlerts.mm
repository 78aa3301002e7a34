#import "host/HostAlerts.h"

#import "host/text.h"

@implementation HostAlerts

// The alert panel breaks no lines: it grows as wide as the text.
static NSString *Wrapped(NSString *text) {
  NSUInteger const width = 64;
  NSMutableString *wrapped = [NSMutableString string];
  NSUInteger line = 0;
  NSArray *words = [text componentsSeparatedByString:@" "];
  for (NSUInteger at = 0; at < [words count]; ++at) {
    NSString *word = [words objectAtIndex:at];
    if (at > 0) [wrapped appendString:line + [word length] + 1 > width ? @"\n" : @" "];
    line = line + [word length] + 1 > width ? [word length] : line + [word length] + 1;
    [wrapped appendString:word];
  }
  return wrapped;
}

- (void)tell:(NSString *)what advice:(NSString *)advice {
  NSAlert *alert = [[NSAlert alloc] init];
  NSString *text = Wrapped(what);
  if ([advice length]) text = [NSString stringWithFormat:@"%@\n\n%@", text, Wrapped(advice)];
  [alert setMessageText:HostText(@"Print")];
  [alert setInformativeText:text];
  // What nothing can be done about is news, not a warning.
  if (![advice length]) [alert setAlertStyle:NSInformationalAlertStyle];
  [alert addButtonWithTitle:HostText(@"OK")];
  [alert runModal];
  [alert release];
}

- (NSString *)askPathFor:(NSString *)proposedName {
  NSSavePanel *panel = [NSSavePanel savePanel];
  [panel setTitle:HostText(@"Save as File")];
  NSInteger const answer = [panel runModalForDirectory:NSHomeDirectory() file:proposedName];
  return answer == NSOKButton ? [panel filename] : nil;
}

@end
