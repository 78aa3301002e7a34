// Address-book files as the fax dialog lists, chooses and fills them. Entries of the list are dictionaries with "name" and
// "path".
#pragma once

#include "addressbook/library.h"

#import <Foundation/Foundation.h>

namespace fax {

// One entry for each file name in a directory; names: each name is ended by U+0000. Autoreleased.
NSArray *address_files(NSString *directory, NSString *names);

// Where a sandboxed user looks for address books: the library's folder without the container that lies in the middle of
// its path. nil for a path that is too short to hold one, and for nil.
NSString *folder_outside_container(NSString *directory);

// Lets the user choose files, one or several, and gives an entry for each; nil when the panel is cancelled.
NSArray *choose_address_files(NSString *folder);

// Saves every destination into the file, or none of them and why: see fill_record and the library's statuses.
Status add_to_address_file(NSString *path, NSArray *destinations);

// How much of the name is its index key, in UTF-16 units.
std::size_t index_key_length(NSString *name);

}  // namespace fax
