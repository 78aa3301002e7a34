#import "fixture.h"

#include <cstdlib>
#include <initializer_list>
#include <string>

#include <unistd.h>

@implementation PanelOwner
+ (NSSet *)keyPathsForValuesAffectingReady {
  return [NSSet setWithObject:@"title"];
}
- (BOOL)ready {
  return [title length] > 2;
}
- (void)accept:(id)sender {
  ++accepted;
  [NSApp stopModal];
}
- (void)refuse:(id)sender {
  ++refused;
  [NSApp stopModal];
}
- (BOOL)tabView:(NSTabView *)view shouldSelectTabViewItem:(NSTabViewItem *)item {
  ++selections;
  return YES;
}
@end

NSBundle *fixture_bundle() {
  return [NSBundle bundleWithPath:[NSString stringWithUTF8String:FIXTURE_BUNDLE]];
}

PanelOwner *open_panel(NSString *name, bool show) {
  PanelOwner *owner = [[[PanelOwner alloc] init] autorelease];
  owner->choices = [[NSArray arrayWithObjects:@"Fine", @"Standard", nil] retain];
  NSArray *objects = nil;
  if (![fixture_bundle() loadNibNamed:name owner:owner topLevelObjects:&objects]) return nil;
  // The panel's objects live as long as the test: they observe each other.
  [objects retain];
  [owner retain];
  if (!show) return owner;
  [owner->window orderFront:nil];
  [owner->window makeKeyWindow];
  return owner;
}

static void pump(NSTimeInterval seconds) {
  NSDate *end = [NSDate dateWithTimeIntervalSinceNow:seconds];
  while ([end timeIntervalSinceNow] > 0) {
    NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.02]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil) [NSApp sendEvent:event];
  }
}

void press(NSWindow *window, unichar character, unsigned modifiers) {
  NSString *characters = [NSString stringWithCharacters:&character length:1];
  for (NSEventType const kind : {NSKeyDown, NSKeyUp}) {
    [window sendEvent:[NSEvent keyEventWithType:kind
                                       location:NSZeroPoint
                                  modifierFlags:modifiers
                                      timestamp:0
                                   windowNumber:[window windowNumber]
                                        context:[window graphicsContext]
                                     characters:characters
                    charactersIgnoringModifiers:characters
                                      isARepeat:NO
                                        keyCode:0]];
  }
}

void type(NSWindow *window, char const *text) {
  for (; *text != 0; ++text) press(window, static_cast<unsigned char>(*text));
}

void click(NSView *view, NSPoint point) {
  NSWindow *window = [view window];
  [window makeKeyAndOrderFront:nil];
  // The window manager may still be placing the window.
  pump(0.4);
  NSPoint const place = [window convertBaseToScreen:[view convertPoint:point toView:nil]];
  int const down = static_cast<int>(NSHeight([[window screen] frame]) - place.y);
  std::string const command = "xdotool mousemove " + std::to_string(static_cast<int>(place.x)) + " " +
                              std::to_string(down) + " mousedown 1 sleep 0.06 mouseup 1 &";
  if (std::system(command.c_str()) == 0) pump(0.5);
}

void send_keys(NSWindow *window, char const *names) {
  [window makeKeyAndOrderFront:nil];
  // One look is not enough: the focus may be passing through on its way to another window, or about to leave this one.
  std::string const title = [[window title] UTF8String];
  std::string const command =
      "(seen=0; for turn in $(seq 100); do [ \"$(xdotool getwindowfocus getwindowname)\" = '" + title +
      "' ] && seen=$((seen + 1)) || seen=0; [ $seen -ge 8 ] && break; sleep 0.05; done; xdotool key --delay 40 " + names +
      ") >/dev/null 2>&1 &";
  if (std::system(command.c_str()) != 0) std::abort();
}

void run_modal(NSWindow *window) {
  NSDate *end = [NSDate dateWithTimeIntervalSinceNow:10];
  NSModalSession const session = [NSApp beginModalSessionForWindow:window];
  while ([NSApp runModalSession:session] == NSRunContinuesResponse && [end timeIntervalSinceNow] > 0) usleep(10000);
  [NSApp endModalSession:session];
}

@implementation DrawnCell
+ (NSMutableArray *)drawn {
  static NSMutableArray *texts = [[NSMutableArray alloc] init];
  return texts;
}
- (void)drawInteriorWithFrame:(NSRect)frame inView:(NSView *)view {
  [[DrawnCell drawn] addObject:[self stringValue]];
  [super drawInteriorWithFrame:frame inView:view];
}
@end

@implementation Watcher
- (id)init {
  if ((self = [super init]) != nil) {
    told = [[NSCountedSet alloc] init];
    values = [[NSMutableDictionary alloc] init];
    order = [[NSMutableArray alloc] init];
  }
  return self;
}
- (void)dealloc {
  [told release];
  [values release];
  [order release];
  [super dealloc];
}
- (void)watch:(id)object keys:(NSArray *)keys {
  for (NSUInteger at = 0; at < [keys count]; ++at) {
    [object addObserver:self forKeyPath:[keys objectAtIndex:at] options:0 context:nullptr];
  }
}
- (void)forget {
  [told removeAllObjects];
  [values removeAllObjects];
  [order removeAllObjects];
}
- (void)observeValueForKeyPath:(NSString *)path
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context {
  id value = [object valueForKeyPath:path];
  [told addObject:path];
  [order addObject:path];
  [values setObject:value != nil ? [[value copy] autorelease] : [NSNull null] forKey:path];
}
@end
