#import "addressbook/address_entries.h"

#include <set>

namespace fax {

namespace {

NSString *const kGroupNumber = @"Group";

NSString *text_from(std::u16string_view units) {
  return [NSString stringWithCharacters:reinterpret_cast<unichar const *>(units.data()) length:units.size()];
}

NSMutableDictionary *named_entry(std::u16string_view name, NSString *number) {
  return [NSMutableDictionary dictionaryWithObjectsAndKeys:text_from(name), @"name", number, @"phoneNumber", nil];
}

NSMutableDictionary *individual_entry(Individual const &individual) {
  NSMutableDictionary *entry = named_entry(individual.name, text_from(individual.phone_number));
  [entry setObject:[NSNumber numberWithUnsignedShort:individual.id] forKey:@"Id"];
  return entry;
}

NSMutableDictionary *group_entry(Group const &group) {
  NSMutableDictionary *entry = named_entry(group.name, kGroupNumber);
  NSMutableArray *members = [NSMutableArray arrayWithCapacity:group.members.size()];
  for (std::uint16_t const member : group.members) [members addObject:[NSNumber numberWithUnsignedShort:member]];
  [entry setObject:members forKey:@"userIDList"];
  return entry;
}

}  // namespace

AddressVisitor collect_file_entries(NSMutableArray *entries) {
  return {[entries](Individual const &individual) {
            NSMutableDictionary *entry = individual_entry(individual);
            [entry setObject:text_from(individual.company) forKey:@"company"];
            [entry setObject:text_from(individual.note) forKey:@"note"];
            [entries addObject:entry];
          },
          [entries](Group const &group) { [entries addObject:group_entry(group)]; }};
}

AddressVisitor collect_device_entries(NSMutableArray *entries) {
  return {[entries](Individual const &individual) { [entries addObject:individual_entry(individual)]; },
          [entries](Group const &group) { [entries addObject:group_entry(group)]; }};
}

bool is_group(id entry) { return [[entry valueForKey:@"phoneNumber"] isEqual:kGroupNumber]; }

NSArray *matching_entries(NSArray *entries, NSString *text) {
  if ([text length] == 0) return entries;
  NSMutableArray *found = [NSMutableArray array];
  NSEnumerator *each = [entries objectEnumerator];
  while (id entry = [each nextObject]) {
    NSString *name = [entry valueForKey:@"name"];
    if ([name length] != 0 && [name rangeOfString:text options:NSCaseInsensitiveSearch].location != NSNotFound)
      [found addObject:entry];
  }
  return found;
}

Expansion expand_group(id group, NSArray *shown) {
  std::multiset<long long> pending;
  NSEnumerator *ids = [[group valueForKey:@"userIDList"] objectEnumerator];
  while (NSNumber *number = [ids nextObject]) pending.insert([number longLongValue]);
  NSMutableArray *members = [NSMutableArray array];
  NSEnumerator *each = [shown objectEnumerator];
  while (id entry = [each nextObject]) {
    if (is_group(entry)) continue;
    auto const listed = pending.find([[entry valueForKey:@"Id"] longLongValue]);
    if (listed == pending.end()) continue;
    pending.erase(listed);
    [members addObject:entry];
  }
  return {members, pending.empty()};
}

}  // namespace fax
