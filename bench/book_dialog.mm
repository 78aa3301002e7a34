#import "bench/book_dialog.h"

#import <GNUstepGUI/GSDisplayServer.h>
#include <X11/Xlib.h>

#include <stdexcept>

@interface NSBundle (BookDialogNib)
- (BOOL)loadNibNamed:(NSString *)name owner:(id)owner topLevelObjects:(NSArray **)objects;
@end

@interface BookDialogOwner : NSObject {
 @public
  id detailedFaxSettingContoller;
}
@end

@implementation BookDialogOwner
@end

namespace fax::bench {

namespace {

// The first view of the class, at or below this one.
id first_of(Class wanted, NSView *view) {
  if ([view isKindOfClass:wanted]) return view;
  NSArray *parts = [view subviews];
  for (NSUInteger at = 0; at < [parts count]; ++at) {
    if (id found = first_of(wanted, [parts objectAtIndex:at])) return found;
  }
  return nil;
}

// The window manager still places the window.
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

NSBundle *loaded_bundle() {
  NSBundle *bundle = [NSBundle bundleWithPath:[NSString stringWithUTF8String:BUNDLE_PATH]];
  if (![bundle load]) throw std::runtime_error("the bundle does not load");
  return bundle;
}

BookDialog open_book_dialog() {
  BookDialogOwner *owner = [[BookDialogOwner alloc] init];
  NSArray *objects = nil;
  if (![loaded_bundle() loadNibNamed:@"FaxSetting" owner:owner topLevelObjects:&objects]) {
    throw std::runtime_error("the dialog's document does not load");
  }
  [objects retain];
  BookDialog dialog;
  dialog.fax_controller = owner->detailedFaxSettingContoller;
  dialog.controller = [dialog.fax_controller valueForKey:@"addressBookController"];
  dialog.files = [dialog.controller valueForKey:@"addressFileList"];
  dialog.entries = [dialog.controller valueForKey:@"pcAddressList"];
  dialog.printer_entries = [dialog.controller valueForKey:@"deviceAddressList"];
  dialog.table = [dialog.controller valueForKey:@"pcAddressTableView"];
  dialog.window = [dialog.controller valueForKey:@"addressBookSettingPanel"];
  dialog.search = first_of([NSSearchField class], [dialog.window contentView]);
  if (dialog.table == nil || dialog.search == nil) throw std::runtime_error("the dialog lacks its table");
  [dialog.window makeKeyAndOrderFront:nil];
  settle();
  draw(dialog.window);
  return dialog;
}

void choose_file(BookDialog const &dialog, std::string const &path) {
  NSString *file = [NSString stringWithUTF8String:path.c_str()];
  NSDictionary *entry = [NSDictionary dictionaryWithObjectsAndKeys:[file lastPathComponent], @"name", file, @"path", nil];
  [dialog.files setContent:[NSMutableArray arrayWithObject:entry]];
  [dialog.files setSelectionIndex:0];
}

void show_tab(BookDialog const &dialog, NSInteger index) {
  NSTabView *tabs = first_of([NSTabView class], [dialog.window contentView]);
  id const delegate = [tabs delegate];
  // It would read.
  [tabs setDelegate:nil];
  [tabs selectTabViewItemAtIndex:index];
  [tabs setDelegate:delegate];
}

void press(BookDialog const &dialog, unichar character) {
  NSString *text = [NSString stringWithCharacters:&character length:1];
  [dialog.window sendEvent:[NSEvent keyEventWithType:NSKeyDown
                                            location:NSZeroPoint
                                       modifierFlags:0
                                           timestamp:0
                                        windowNumber:[dialog.window windowNumber]
                                             context:[dialog.window graphicsContext]
                                          characters:text
                         charactersIgnoringModifiers:text
                                           isARepeat:NO
                                             keyCode:0]];
}

void draw(NSWindow *window) {
  [window displayIfNeeded];
  [window flushWindow];
  XSync(static_cast<Display *>([GSCurrentServer() serverDevice]), False);
}

}  // namespace fax::bench
