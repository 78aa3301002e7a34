#import "addressbook/address_entries.h"

#import "addressbook/AddressListController.h"
#import "addressbook/AddressRows.h"

namespace fax {

namespace {

AddressVisitor entries_into(AddressBook &book, std::function<void(Individual const &)> individual) {
  return {std::move(individual), [&book](Group const &group) { book.add_group(group.name, group.members); }};
}

}  // namespace

AddressVisitor file_entries_into(AddressBook &book) {
  return entries_into(book, [&book](Individual const &individual) {
    book.add_individual(individual.id, individual.name, individual.phone_number, individual.company, individual.note);
  });
}

AddressVisitor device_entries_into(AddressBook &book) {
  return entries_into(book, [&book](Individual const &individual) {
    book.add_individual(individual.id, individual.name, individual.phone_number);
  });
}

bool is_group(id entry) { return [[entry valueForKey:@"phoneNumber"] isEqual:@"Group"]; }

void show_entries(NSArrayController *list, NSArray *entries) {
  if ([list isKindOfClass:[AddressListController class]]) {
    [(AddressListController *)list showRows:entries];
    return;
  }
  [list removeObjects:[NSArray arrayWithArray:[list arrangedObjects]]];
  [list addObjects:[NSArray arrayWithArray:entries]];
}

NSArray *matching_entries(NSArray *entries, NSString *text) {
  if ([text length] == 0) return entries;
  if ([entries isKindOfClass:[AddressRows class]]) return [(AddressRows *)entries rowsNamed:text];
  NSMutableArray *found = [NSMutableArray array];
  NSEnumerator *each = [entries objectEnumerator];
  while (id entry = [each nextObject]) {
    NSString *name = [entry valueForKey:@"name"];
    if ([name length] != 0 && [name rangeOfString:text options:NSCaseInsensitiveSearch].location != NSNotFound)
      [found addObject:entry];
  }
  return found;
}

}  // namespace fax
