// Selection, arrangement and notifications of a stock NSArrayController.
#import "fixture.h"

#include <gtest/gtest.h>

#include <ctime>
#include <functional>
#include <string>

namespace {

NSMutableDictionary *row(char const *name) {
  return [NSMutableDictionary dictionaryWithObject:[NSString stringWithUTF8String:name] forKey:@"name"];
}

std::string names(NSArray *objects) {
  return [[[objects valueForKey:@"name"] componentsJoinedByString:@","] UTF8String];
}

NSArray *by_name(bool ascending = true) {
  NSSortDescriptor *name = [[[NSSortDescriptor alloc] initWithKey:@"name"
                                                        ascending:ascending
                                                         selector:@selector(caseInsensitiveCompare:)] autorelease];
  return [NSArray arrayWithObject:name];
}

NSArray *watched_keys() {
  return [NSArray arrayWithObjects:@"arrangedObjects", @"selectionIndexes", @"selectionIndex", @"selectedObjects",
                                   @"canRemove", nil];
}

class ArrayControllerTest : public testing::Test {
 protected:
  void SetUp() override {
    controller = [[NSArrayController alloc] init];
    [controller setSelectsInsertedObjects:NO];
    [controller setAvoidsEmptySelection:NO];
    ann = row("Ann");
    bob = row("bob");
    zed = row("Zed");
    [controller addObjects:[NSArray arrayWithObjects:zed, ann, bob, nil]];
    watcher = [[Watcher alloc] init];
    keys = [watched_keys() retain];
    [watcher watch:controller keys:keys];
  }
  void TearDown() override {
    for (NSUInteger at = 0; at < [keys count]; ++at) {
      [controller removeObserver:watcher forKeyPath:[keys objectAtIndex:at]];
    }
    [keys release];
    [watcher release];
    [controller release];
    [pool release];
  }
  void select(id object) {
    [controller setSelectedObjects:[NSArray arrayWithObject:object]];
    [watcher forget];
  }
  // Each key was told at most once, and what an observer then saw is what is there now.
  void expect_told(std::string const &expected) {
    std::string told;
    for (NSUInteger at = 0; at < [keys count]; ++at) {
      NSString *key = [keys objectAtIndex:at];
      NSUInteger const count = [watcher->told countForObject:key];
      EXPECT_LE(count, 1u) << [key UTF8String];
      if (count == 0) continue;
      told += (told.empty() ? "" : " ") + std::string{[key UTF8String]};
      EXPECT_TRUE([[watcher->values objectForKey:key] isEqual:[controller valueForKey:key]]) << [key UTF8String];
    }
    EXPECT_EQ(told, expected);
    [watcher forget];
  }
  std::string arranged() { return names([controller arrangedObjects]); }
  std::string selected() { return names([controller selectedObjects]); }

  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSArray *keys;
  NSArrayController *controller;
  Watcher *watcher;
  NSMutableDictionary *ann, *bob, *zed;
};

TEST_F(ArrayControllerTest, SelectionIsTold) {
  EXPECT_TRUE([controller setSelectionIndexes:[NSIndexSet indexSetWithIndex:1]]);
  expect_told("selectionIndexes selectionIndex selectedObjects canRemove");
  EXPECT_EQ(selected(), "Ann");
  EXPECT_FALSE([controller setSelectionIndexes:[NSIndexSet indexSetWithIndex:1]]);
  expect_told("");
  EXPECT_TRUE([controller setSelectionIndex:2]);
  expect_told("selectionIndexes selectionIndex selectedObjects");
  NSArray *two = [NSArray arrayWithObjects:bob, zed, nil];
  EXPECT_TRUE([controller setSelectedObjects:two]);
  EXPECT_EQ(selected(), "Zed,bob");
  [watcher forget];
  EXPECT_TRUE([controller setSelectionIndexes:[NSIndexSet indexSet]]);
  expect_told("selectionIndexes selectionIndex selectedObjects canRemove");
  EXPECT_EQ([controller selectionIndex], static_cast<NSUInteger>(NSNotFound));
}

TEST_F(ArrayControllerTest, RowsThatDoNotExistAreNotSelected) {
  EXPECT_FALSE([controller setSelectionIndex:3]);
  EXPECT_FALSE([controller setSelectionIndex:NSNotFound]);
  EXPECT_TRUE([controller setSelectionIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(2, 40)]]);
  EXPECT_EQ(selected(), "bob");
  EXPECT_FALSE([controller canSelectNext]);
  [controller selectNext:nil];
  EXPECT_EQ(selected(), "bob");
}

TEST_F(ArrayControllerTest, AddedObjectsAreSortedAtOnce) {
  [controller setSortDescriptors:by_name()];
  EXPECT_EQ(arranged(), "Ann,bob,Zed");
  select(bob);
  [controller addObject:row("Ada")];
  EXPECT_EQ(arranged(), "Ada,Ann,bob,Zed");
  EXPECT_EQ(selected(), "bob");
  expect_told("arrangedObjects selectionIndexes selectionIndex");
}

TEST_F(ArrayControllerTest, SelectionFollowsItsObjects) {
  select(ann);
  [controller setSortDescriptors:by_name(false)];
  EXPECT_EQ(arranged(), "Zed,bob,Ann");
  expect_told("arrangedObjects selectionIndexes selectionIndex");
  EXPECT_EQ(selected(), "Ann");
  [controller removeObject:bob];
  EXPECT_EQ(selected(), "Ann");
  expect_told("arrangedObjects selectionIndexes selectionIndex");
  [controller setContent:[NSMutableArray arrayWithObjects:ann, row("Kim"), nil]];
  EXPECT_EQ(selected(), "Ann");
  [controller setFilterPredicate:[NSPredicate predicateWithFormat:@"name == 'Kim'"]];
  EXPECT_EQ(arranged(), "Kim");
  EXPECT_EQ(selected(), "");
}

TEST_F(ArrayControllerTest, RemoveTakesTheSelectedRows) {
  [controller setSelectionIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(0, 2)]];
  [watcher forget];
  [controller remove:nil];
  EXPECT_EQ(arranged(), "bob");
  EXPECT_EQ(names([controller content]), "bob");
  expect_told("arrangedObjects selectionIndexes selectionIndex selectedObjects canRemove");
  [controller remove:nil];
  EXPECT_EQ(arranged(), "bob");
}

TEST_F(ArrayControllerTest, RemovesTheObjectNotItsEqual) {
  NSMutableDictionary *twin = row("Ann");
  [controller addObject:twin];
  select(twin);
  [controller removeObject:ann];
  ASSERT_EQ([[controller arrangedObjects] count], 3u);
  EXPECT_EQ([[controller selectedObjects] lastObject], twin);
}

TEST_F(ArrayControllerTest, SameObjectTwice) {
  [controller addObject:ann];
  EXPECT_EQ(arranged(), "Zed,Ann,bob,Ann");
  [controller setSelectionIndex:3];
  [controller remove:nil];
  EXPECT_EQ(arranged(), "Zed,Ann,bob");
  EXPECT_EQ(selected(), "");
  [controller addObjects:[NSArray arrayWithObjects:ann, ann, nil]];
  [controller setSelectsInsertedObjects:YES];
  [controller addObject:ann];
  EXPECT_EQ([[controller selectionIndexes] count], 1u);
  EXPECT_EQ([controller selectionIndex], 5u);
  [controller removeObject:ann];
  EXPECT_EQ(arranged(), "Zed,bob");
}

TEST_F(ArrayControllerTest, SelectsWhatIsInserted) {
  [controller setSelectsInsertedObjects:YES];
  [controller setSortDescriptors:by_name()];
  select(ann);
  [controller addObject:row("Kim")];
  EXPECT_EQ(selected(), "Kim");
  expect_told("arrangedObjects selectionIndexes selectionIndex selectedObjects");
}

TEST_F(ArrayControllerTest, EmptySelectionIsAvoided) {
  [controller setAvoidsEmptySelection:YES];
  [controller rearrangeObjects];
  EXPECT_EQ(selected(), "Zed");
  [controller setSelectionIndex:1];
  [controller remove:nil];
  EXPECT_EQ(selected(), "bob") << "the row that took the place of the removed one";
  [controller remove:nil];
  EXPECT_EQ(selected(), "Zed") << "the last row";
}

TEST_F(ArrayControllerTest, SelectionIsNotPreservedUnlessAskedFor) {
  [controller setPreservesSelection:NO];
  select(ann);
  [controller setSortDescriptors:by_name()];
  EXPECT_EQ(selected(), "");
}

TEST_F(ArrayControllerTest, InsertsAtTheRowAskedFor) {
  [controller insertObject:row("Kim") atArrangedObjectIndex:1];
  EXPECT_EQ(arranged(), "Zed,Kim,Ann,bob");
}

TEST_F(ArrayControllerTest, RearrangesContentThatChangedBelow) {
  select(bob);
  [[controller content] insertObject:row("New") atIndex:0];
  [controller rearrangeObjects];
  EXPECT_EQ(arranged(), "New,Zed,Ann,bob");
  EXPECT_EQ(selected(), "bob");
}

TEST(ArrayController, NeedsNoContent) {
  for (NSArrayController *controller : {[[[NSArrayController alloc] init] autorelease],
                                        [[[NSArrayController alloc] initWithContent:nil] autorelease]}) {
    EXPECT_EQ([[controller selectedObjects] count], 0u);
    [controller addObject:row("Ann")];
    EXPECT_EQ(names([controller arrangedObjects]), "Ann");
    EXPECT_EQ(names([controller selectedObjects]), "Ann");
    [controller setContent:nil];
    EXPECT_EQ([[controller arrangedObjects] count], 0u);
    [controller add:nil];
    EXPECT_EQ([[controller arrangedObjects] count], 1u);
  }
}

TEST(ArrayController, WritesTheContentBackToItsOwner) {
  NSMutableDictionary *owner = [NSMutableDictionary dictionary];
  [owner setObject:[NSArray arrayWithObject:row("Ann")] forKey:@"people"];
  NSArrayController *controller = [[[NSArrayController alloc] init] autorelease];
  [controller bind:NSContentArrayBinding toObject:owner withKeyPath:@"people" options:nil];
  EXPECT_EQ(names([controller arrangedObjects]), "Ann");
  [controller addObject:row("Kim")];
  EXPECT_EQ(names([owner objectForKey:@"people"]), "Ann,Kim");
  EXPECT_EQ(names([controller selectedObjects]), "Kim");
  [controller unbind:NSContentArrayBinding];
}

TEST(ArrayController, RemovesManyRowsQuickly) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSArrayController *controller = [[[NSArrayController alloc] init] autorelease];
  [controller setSortDescriptors:by_name()];
  NSMutableArray *many = [NSMutableArray array];
  for (int at = 0; at < 10000; ++at) [many addObject:row(std::to_string(at * 7919 % 10007).c_str())];
  [controller addObjects:many];
  [controller setSelectedObjects:many];
  std::clock_t const start = std::clock();
  [controller remove:nil];
  double const seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
  EXPECT_EQ([[controller arrangedObjects] count], 0u);
  EXPECT_LT(seconds, 0.5);
  [pool release];
}

TEST(ArrayController, HasTheDefaultsOfItsDocument) {
  PanelOwner *plain = open_panel(@"PlainPanel");
  ASSERT_NE(plain, nil);
  EXPECT_TRUE([plain->rows selectsInsertedObjects]);
  EXPECT_TRUE([plain->rows avoidsEmptySelection]);
  EXPECT_TRUE([plain->rows preservesSelection]);
  PanelOwner *panel = open_panel();
  ASSERT_NE(panel, nil);
  EXPECT_FALSE([panel->rows selectsInsertedObjects]);
  EXPECT_FALSE([panel->rows avoidsEmptySelection]);
  EXPECT_TRUE([panel->rows preservesSelection]);
  EXPECT_TRUE([[panel->rows content] isKindOfClass:[NSMutableArray class]]);
  [plain->window orderOut:nil];
  [panel->window orderOut:nil];
}

}  // namespace
