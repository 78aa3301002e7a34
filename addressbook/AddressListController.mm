#import "addressbook/AddressListController.h"

@interface AddressListController ()
- (AddressRows *)shownRows;
- (BOOL)showsAsTheyAre:(id)objects;
@end

@implementation AddressListController

- (void)showRows:(NSArray *)rows {
  [self setSelectionIndexes:[NSIndexSet indexSet]];
  [self setContent:rows != nil ? rows : [AddressRows noRows]];
}

- (AddressRows *)shownRows {
  id const content = [self content];
  return [self showsAsTheyAre:content] ? content : nil;
}

- (BOOL)showsAsTheyAre:(id)objects {
  return [objects isKindOfClass:[AddressRows class]] && [self filterPredicate] == nil &&
         [[self sortDescriptors] isEqual:[AddressRows sortDescriptors]];
}

- (NSArray *)arrangeObjects:(NSArray *)objects {
  return [self showsAsTheyAre:objects] ? objects : [super arrangeObjects:objects];
}

@end

namespace fax {

NSArray *members_of_group(NSDictionary *group, NSArrayController *list, BOOL *complete) {
  AddressRows *rows = [list isKindOfClass:[AddressListController class]]
                          ? [static_cast<AddressListController *>(list) shownRows]
                          : nil;
  if (rows != nil) return [rows membersOfGroup:group complete:complete];
  NSMutableArray *members = [NSMutableArray array];
  NSMutableArray *pending = [NSMutableArray arrayWithArray:[group objectForKey:@"userIDList"]];
  NSArray *shown = [list arrangedObjects];
  for (NSUInteger at = 0; at < [shown count] && [pending count] > 0; ++at) {
    NSDictionary *entry = [shown objectAtIndex:at];
    if ([[entry objectForKey:@"phoneNumber"] isEqual:@"Group"]) continue;
    id const number = [entry objectForKey:@"Id"];
    NSUInteger const listing = number != nil ? [pending indexOfObject:number] : static_cast<NSUInteger>(NSNotFound);
    if (listing == NSNotFound) continue;
    [members addObject:entry];
    [pending removeObjectAtIndex:listing];
  }
  if (complete != nullptr) *complete = [pending count] == 0;
  return members;
}

}  // namespace fax
