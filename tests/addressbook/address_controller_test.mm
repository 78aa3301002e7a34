// A list controller, a table bound to it, and lists of any length.
#import "addressbook/AddressListController.h"

#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <ctime>
#include <string>

// What an observer is told of "selectedObjects", and the action of a double click.
@interface ListWatcher : NSObject {
 @public
  int told;
  int doubleClicks;
}
@end

@implementation ListWatcher
- (void)observeValueForKeyPath:(NSString *)path
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context {
  ++told;
}
- (void)doubleClick:(id)sender {
  ++doubleClicks;
}
@end

namespace {

fax::AddressBook people(std::size_t count) {
  fax::AddressBook book;
  for (std::size_t at = 0; at < count; ++at) {
    std::string const digits = std::to_string(100000 + at * 7919 % 99991);
    std::u16string const name = u"Person " + std::u16string(digits.begin(), digits.end());
    book.add_individual(static_cast<std::uint16_t>(at + 1), name, u"1", u"", u"");
  }
  return book;
}

std::string names(NSArray *entries) {
  return [[[entries valueForKey:@"name"] componentsJoinedByString:@","] UTF8String];
}

class ListTest : public testing::Test {
 protected:
  void SetUp() override {
    list = [[AddressListController alloc] initWithContent:[AddressRows noRows]];
    [list setAvoidsEmptySelection:NO];
    [list setSelectsInsertedObjects:NO];
    [list setSortDescriptors:[AddressRows sortDescriptors]];
    window = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 400, 300)
                                         styleMask:NSTitledWindowMask
                                           backing:NSBackingStoreBuffered
                                             defer:NO];
    NSScrollView *scroll = [[[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 400, 300)] autorelease];
    table = [[[NSTableView alloc] initWithFrame:[[scroll contentView] bounds]] autorelease];
    [table setAllowsMultipleSelection:YES];
    for (NSString *key : {@"name", @"phoneNumber"}) {
      NSTableColumn *column = [[[NSTableColumn alloc] initWithIdentifier:key] autorelease];
      [table addTableColumn:column];
      [column bind:NSValueBinding
          toObject:list
          withKeyPath:[@"arrangedObjects." stringByAppendingString:key]
          options:nil];
    }
    [scroll setDocumentView:table];
    [[window contentView] addSubview:scroll];
    [window orderFront:nil];
  }
  void TearDown() override {
    for (NSTableColumn *column : {[[table tableColumns] objectAtIndex:0], [[table tableColumns] objectAtIndex:1]}) {
      [column unbind:NSValueBinding];
    }
    for (NSString *binding : {NSContentBinding, NSSelectionIndexesBinding, NSSortDescriptorsBinding}) {
      [table unbind:binding];
    }
    [window orderOut:nil];
    [window release];
    [list release];
    [pool release];
  }
  void show(std::initializer_list<char16_t const *> texts) {
    fax::AddressBook book;
    std::uint16_t at = 0;
    for (char16_t const *text : texts) book.add_individual(++at, text, u"1", u"", u"");
    [list showRows:[AddressRows rowsOfBook:std::move(book)]];
  }

  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  AddressListController *list = nil;
  NSWindow *window = nil;
  NSTableView *table = nil;
};

TEST_F(ListTest, ShowsAndSelectsInBothDirections) {
  show({u"ann", u"Bob", u"Cy"});
  EXPECT_EQ(names([list arrangedObjects]), "Cy,Bob,ann");
  EXPECT_EQ([table numberOfRows], 3);
  ListWatcher *watcher = [[[ListWatcher alloc] init] autorelease];
  [list addObserver:watcher forKeyPath:@"selectedObjects" options:0 context:nullptr];
  [table selectRowIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(1, 2)] byExtendingSelection:NO];
  EXPECT_EQ(names([list selectedObjects]), "Bob,ann");
  EXPECT_EQ(watcher->told, 1);
  [list setSelectedObjects:[NSArray arrayWithObject:[[list arrangedObjects] objectAtIndex:0]]];
  EXPECT_EQ([table selectedRow], 0);
  EXPECT_EQ([[table selectedRowIndexes] count], 1u);
  [list showRows:[AddressRows noRows]];
  EXPECT_EQ([[list selectedObjects] count], 0u);
  EXPECT_EQ([table numberOfRows], 0);
  EXPECT_EQ([table selectedRow], -1);
  EXPECT_EQ(watcher->told, 3);
  [list removeObserver:watcher forKeyPath:@"selectedObjects"];
}

TEST_F(ListTest, AnotherOrderAFilterAndAPlainArrayAreArrangedAsEver) {
  show({u"ann", u"Bob", u"Cy"});
  NSSortDescriptor *up = [[[NSSortDescriptor alloc] initWithKey:@"name"
                                                     ascending:YES
                                                      selector:@selector(caseInsensitiveCompare:)] autorelease];
  [list setSelectionIndex:0];
  [list setSortDescriptors:[NSArray arrayWithObject:up]];
  EXPECT_EQ(names([list arrangedObjects]), "ann,Bob,Cy");
  EXPECT_EQ(names([list selectedObjects]), "Cy");
  [list setFilterPredicate:[NSPredicate predicateWithFormat:@"name == 'Bob'"]];
  EXPECT_EQ(names([list arrangedObjects]), "Bob");
  [list setFilterPredicate:nil];
  [list setSortDescriptors:[AddressRows sortDescriptors]];
  [list addObject:[NSMutableDictionary dictionaryWithObjectsAndKeys:@"Bea", @"name", @"2", @"phoneNumber", nil]];
  EXPECT_EQ(names([list arrangedObjects]), "Cy,Bob,Bea,ann");
  [list removeObject:[[list arrangedObjects] objectAtIndex:0]];
  EXPECT_EQ(names([list arrangedObjects]), "Bob,Bea,ann");
  [list setContent:[NSMutableArray arrayWithObject:[NSDictionary dictionaryWithObject:@"X" forKey:@"name"]]];
  EXPECT_EQ([table numberOfRows], 1);
}

TEST_F(ListTest, TheTableFollowsAValueThatChanges) {
  NSMutableDictionary *entry = [NSMutableDictionary dictionaryWithObject:@"Ann" forKey:@"name"];
  [list setContent:[NSMutableArray arrayWithObject:entry]];
  [window displayIfNeeded];
  ASSERT_FALSE([table needsDisplay]);
  [entry setValue:@"Bob" forKey:@"name"];
  EXPECT_TRUE([table needsDisplay] || [[table superview] needsDisplay]);
}

TEST_F(ListTest, ExpandsAGroupAmongShownRowsAndAmongPlainEntries) {
  NSArray *ids = [NSArray arrayWithObjects:[NSNumber numberWithInt:3], [NSNumber numberWithInt:1],
                                           [NSNumber numberWithInt:1], nil];
  NSDictionary *group = [NSDictionary dictionaryWithObjectsAndKeys:@"Group", @"phoneNumber", ids, @"userIDList", nil];
  for (bool const plain : {false, true}) {
    show({u"ann", u"Bob", u"Cy"});
    if (plain) [list setContent:[NSMutableArray arrayWithArray:[list arrangedObjects]]];
    BOOL complete = YES;
    EXPECT_EQ(names(fax::members_of_group(group, list, &complete)), "Cy,ann") << plain;
    EXPECT_FALSE(complete) << plain;
  }
}

TEST_F(ListTest, OnlyRowsThatAreDrawnOrAskedForBecomeObjects) {
  AddressRows *rows = [AddressRows rowsOfBook:people(100000)];
  Class const row = [[rows objectAtIndex:0] class];
  GSDebugAllocationActive(YES);
  int const before = GSDebugAllocationTotal(row);
  std::clock_t const start = std::clock();
  for (int turn = 0; turn < 5; ++turn) {
    [list showRows:[rows rowsNamed:turn % 2 == 0 ? nil : @"PERSON 1"]];
    [list setSelectionIndex:50];
    [list setSelectionIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(0, [rows count])]];
    [window displayIfNeeded];
  }
  EXPECT_LT(static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC, 1.0);
  EXPECT_LT(GSDebugAllocationTotal(row) - before, 1000);
  GSDebugAllocationActive(NO);
  EXPECT_EQ([[list selectedObjects] count], 100000u);
  EXPECT_EQ([table numberOfSelectedRows], 100000);
}

}  // namespace
