// The rows of an address book: dictionaries with the keys "Id" (number), "name", "phoneNumber", for individuals of a file
// "company" and "note", for groups "userIDList" (numbers). A group is what has the number "Group".
#pragma once

#include "addressbook/address_reading.h"

#import <Foundation/Foundation.h>

namespace fax {

// A visitor that appends an entry for whatever it is given. The array is the caller's and has to outlive it.
AddressVisitor collect_file_entries(NSMutableArray *entries);
AddressVisitor collect_device_entries(NSMutableArray *entries);

bool is_group(id entry);

// The entries whose name holds text, in whatever letter case, in their order; all of them when text is nil or empty.
NSArray *matching_entries(NSArray *entries, NSString *text);

struct Expansion {
  NSArray *members;  // autoreleased, in the order of shown
  bool complete;     // is there nobody in the group's list who is not shown?
};

// The individuals among shown that the group lists; one that it lists twice is there once.
Expansion expand_group(id group, NSArray *shown);

}  // namespace fax
