// The panel that the repairs are tried on: Fixture.bundle/Resources/Panel.xib, written as Xcode writes such documents,
// stock classes only, and the object that owns it.
#pragma once
#import <AppKit/AppKit.h>

@interface NSBundle (FixtureNib)
- (BOOL)loadNibNamed:(NSString *)name owner:(id)owner topLevelObjects:(NSArray **)objects;
@end

// title, header and choice have no setter: bindings reach the instance variables. ready depends on title.
@interface PanelOwner : NSObject {
 @public
  NSWindow *window;
  NSArrayController *rows;
  NSTableView *table;
  NSTableView *columnTable;
  NSTextField *label;
  NSTextField *boldLabel;
  NSTextField *smallLabel;
  NSTextField *nameField;
  NSTextField *timeField;
  NSButton *checkBox;
  NSButton *okButton;
  NSButton *cancelButton;
  NSTabView *pages;
  NSPopUpButton *popUp;
  NSString *title;
  NSDate *time;
  NSNumber *header;
  NSArray *choices;
  NSInteger choice;
  int accepted, refused, selections;
}
- (BOOL)ready;
@end

NSBundle *fixture_bundle();
// The owner with its panel loaded and, unless show is false, on the screen; nil when it does not load. It and the
// panel's objects stay for the life of the program.
PanelOwner *open_panel(NSString *name = @"Panel", bool show = true);

// A key as the window gets it. character is what it types: 'a', '\r', 0x7f (backspace), 0x1b.
void press(NSWindow *window, unichar character, unsigned modifiers = 0);
void type(NSWindow *window, char const *text);
// Key names for xdotool, typed by the X server as soon as the window has its focus.
void send_keys(NSWindow *window, char const *names);
// Modal until somebody stops it, ten seconds at most.
void run_modal(NSWindow *window);
// A click of the mouse by way of the X server, at a point of the view; returns when it has been dealt with.
void click(NSView *view, NSPoint point);

// A cell that keeps the texts it draws.
@interface DrawnCell : NSTextFieldCell
+ (NSMutableArray *)drawn;
@end

// Counts what it is told, key by key, and keeps the value that the key had at that time.
@interface Watcher : NSObject {
 @public
  NSCountedSet *told;
  NSMutableDictionary *values;
  NSMutableArray *order;
}
- (void)watch:(id)object keys:(NSArray *)keys;
- (void)forget;
@end
