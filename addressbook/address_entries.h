// The entries of an address book between the library and a list of the dialog.
#pragma once

#include "addressbook/address_book.h"
#include "addressbook/address_reading.h"

#import <AppKit/AppKit.h>

namespace fax {

// Visitors that put into book whatever they are given; the book has to outlive them. The printer's entries know no
// company and no note.
AddressVisitor file_entries_into(AddressBook &book);
AddressVisitor device_entries_into(AddressBook &book);

// A group is what has the number "Group".
bool is_group(id entry);

// The list shows these entries in place of others; none is selected but by the rules of a list of another class.
void show_entries(NSArrayController *list, NSArray *entries);

// The entries whose name holds text, in whatever letter case, in their order; all of them when text is nil or empty.
NSArray *matching_entries(NSArray *entries, NSString *text);

}  // namespace fax
