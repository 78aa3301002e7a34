// A window with a line of text and a button, and nothing else: what start-up is compared with.
#import <AppKit/AppKit.h>

@interface Hello : NSObject {
  NSWindow *window;
}
@end

@implementation Hello
- (void)applicationDidFinishLaunching:(NSNotification *)notification {
  (void)notification;
  window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 480, 320)
                                       styleMask:NSTitledWindowMask | NSClosableWindowMask
                                         backing:NSBackingStoreBuffered
                                           defer:NO];
  NSTextField *text = [[[NSTextField alloc] initWithFrame:NSMakeRect(40, 120, 420, 80)] autorelease];
  [text setStringValue:@"Hello window"];
  [text setFont:[NSFont systemFontOfSize:48]];
  [text setEditable:NO];
  [text setBezeled:NO];
  [text setDrawsBackground:NO];
  NSButton *button = [[[NSButton alloc] initWithFrame:NSMakeRect(380, 10, 80, 28)] autorelease];
  [button setTitle:@"OK"];
  [[window contentView] addSubview:text];
  [[window contentView] addSubview:button];
  [window makeKeyAndOrderFront:nil];
}
@end

int main() {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [NSApplication sharedApplication];
  [NSApp setDelegate:(id)[Hello new]];
  [NSApp run];
  [pool release];
  return 0;
}
