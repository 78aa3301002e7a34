// A list of address entries that makes an entry's object when it is asked for.
#pragma once
#import <Foundation/Foundation.h>

#include "addressbook/address_book.h"
#import "support/ClassNames.h"

// An array, never changing, over a book that lists share. An element is a dictionary, never changing either: "Id"
// (individuals), "name", "phoneNumber", "company" and "note" (individuals that have them, empty text included),
// "userIDList" (groups; numbers in the record's order). While anybody keeps a row's object, every list of the same book
// answers with that same object for the row, so a selection by identity holds through a search. Objects nobody keeps are
// gone; a list costs four bytes a row. Main thread only.
@interface AddressRows : NSArray {
  struct AddressRowsStorage *storage;
}

// The order of every address list: by name, then by number, each without case from Z to A. Autoreleased.
+ (NSArray *)sortDescriptors;

// All entries of book, which is taken over and sorted. Autoreleased; nil when there is no memory for it.
+ (AddressRows *)rowsOfBook:(fax::AddressBook &&)book;

// The entries of book, which is taken over, in the order in which they were added, as a plain array. Autoreleased; empty
// when there is no memory for it.
+ (NSArray *)entriesOfBook:(fax::AddressBook &&)book;

// No entries. Autoreleased.
+ (AddressRows *)noRows;

// The entries of the whole book whose name contains text without regard to case, in the list's order; all of them for
// nil or an empty text. Autoreleased; nil when there is no memory for it.
- (AddressRows *)rowsNamed:(NSString *)text;

// The individuals of this list that the group's "userIDList" names, in this list's order: each listing of an Id is met
// by one individual, the first, and each individual meets one listing. complete, unless NULL, is set to NO when a listing
// was met by none. group may be an entry of any list or a plain dictionary. Autoreleased; nil when there is no memory.
- (AddressRows *)membersOfGroup:(NSDictionary *)group complete:(BOOL *)complete;

@end
