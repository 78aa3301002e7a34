#import "bench/table_window.h"

#import <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>

namespace fax::bench {

namespace {

NSTableView *bound_table(NSRect frame, NSArrayController *list) {
  NSTableView *table = [[NSTableView alloc] initWithFrame:frame];
  [table setAllowsMultipleSelection:YES];
  for (NSString *key : {@"name", @"phoneNumber", @"company"}) {
    NSTableColumn *column = [[NSTableColumn alloc] initWithIdentifier:key];
    [[column headerCell] setStringValue:key];
    [column setWidth:180];
    [column setEditable:NO];
    [table addTableColumn:column];
    [column bind:NSValueBinding
        toObject:list
        withKeyPath:[@"arrangedObjects." stringByAppendingString:key]
        options:nil];
  }
  return table;
}

void settle() {
  NSDate *end = [NSDate dateWithTimeIntervalSinceNow:0.5];
  while ([end timeIntervalSinceNow] > 0) {
    NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                        untilDate:[NSDate dateWithTimeIntervalSinceNow:0.02]
                                           inMode:NSDefaultRunLoopMode
                                          dequeue:YES];
    if (event != nil) [NSApp sendEvent:event];
  }
}

}  // namespace

TableWindow open_table_window() {
  TableWindow made;
  made.list = [[AddressListController alloc] initWithContent:[AddressRows noRows]];
  [made.list setAvoidsEmptySelection:NO];
  [made.list setSelectsInsertedObjects:NO];
  [made.list setSortDescriptors:[AddressRows sortDescriptors]];
  made.window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 200, 600, 420)
                                            styleMask:NSTitledWindowMask
                                              backing:NSBackingStoreBuffered
                                                defer:NO];
  made.search = [[NSTextField alloc] initWithFrame:NSMakeRect(20, 380, 300, 22)];
  NSScrollView *scroll = [[NSScrollView alloc] initWithFrame:NSMakeRect(20, 20, 560, 350)];
  [scroll setHasVerticalScroller:YES];
  made.table = bound_table([[scroll contentView] bounds], made.list);
  [scroll setDocumentView:made.table];
  [[made.window contentView] addSubview:made.search];
  [[made.window contentView] addSubview:scroll];
  [made.window makeKeyAndOrderFront:nil];
  // The window manager still places it.
  settle();
  draw(made.window);
  return made;
}

void draw(NSWindow *window) {
  [window displayIfNeeded];
  [window flushWindow];
  XSync(static_cast<Display *>([GSCurrentServer() serverDevice]), False);
}

}  // namespace fax::bench
