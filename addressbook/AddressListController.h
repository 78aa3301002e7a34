// An array controller for address lists of any length.
#pragma once
#import <AppKit/AppKit.h>

#import "addressbook/AddressRows.h"

// Shows AddressRows as they are while it has the order of AddressRows and no filter: nothing is sorted and no entry's
// object is made. Anything else, it arranges as NSArrayController does.
@interface AddressListController : NSArrayController

// Takes every entry away and shows rows in their place, as one change; nothing is selected then. nil shows none.
- (void)showRows:(NSArray *)rows;

@end

namespace fax {

// The individuals among the list's arranged objects that the group's "userIDList" names, in the shown order: each
// listing of an Id is met by one individual, the first shown, and each individual meets one listing. complete, unless
// NULL, tells whether every listing was met. The list may be any array controller of address entries (dictionaries); an
// AddressListController that shows AddressRows makes no object. Autoreleased; nil when there is no memory for it.
NSArray *members_of_group(NSDictionary *group, NSArrayController *list, BOOL *complete);

}  // namespace fax
