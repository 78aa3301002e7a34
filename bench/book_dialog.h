// The address-book dialog of the bundle as it was built, on the screen. It reads with the library that it would find
// otherwise: an installed one first, else the one that was built with it.
#pragma once
#import <AppKit/AppKit.h>

#include <string>

// What the bench sends to the dialog's controller.
@interface NSObject (BookDialog)
- (void)initPCAdressBookTab;
- (void)initDeviceAddressTab;
- (void)setIPAddress:(NSString *)address;
- (void)setPassword:(NSString *)password;
- (NSArray *)getAddressListFrom:(NSDictionary *)group ofAddressBook:(NSArrayController *)list;
@end

namespace fax::bench {

// Its objects live as long as the program.
struct BookDialog {
  id fax_controller;  // of the fax dialog that it belongs to
  id controller;
  NSArrayController *files;
  NSArrayController *entries;
  NSArrayController *printer_entries;
  NSTableView *table;
  NSTextField *search;
  NSWindow *window;
};

// The bundle, loaded; std::runtime_error when it does not load.
NSBundle *loaded_bundle();

// std::runtime_error when it does not load.
BookDialog open_book_dialog();

// The file that the dialog reads next.
void choose_file(BookDialog const &dialog, std::string const &path);

// Shows the tab of a file, 0, or the printer's, 1. Nothing is read.
void show_tab(BookDialog const &dialog, NSInteger index);

// A key as the window gets it, for the search field.
void press(BookDialog const &dialog, unichar character);

// Draws what waits to be drawn and returns when the X server has done it.
void draw(NSWindow *window);

}  // namespace fax::bench
