// A window with a search field and a table bound to an address list, as a nib would make it.
#pragma once
#import <AppKit/AppKit.h>

#import "addressbook/AddressListController.h"

namespace fax::bench {

struct TableWindow {
  NSWindow *window;
  NSTextField *search;
  NSTableView *table;
  AddressListController *list;
};

// On the screen and drawn. Its objects live as long as the program.
TableWindow open_table_window();

// Draws what waits to be drawn and returns when the X server has done it.
void draw(NSWindow *window);

}  // namespace fax::bench
