// A table and the array controller that it is bound to.
#import "fixture.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>

namespace {

NSMutableDictionary *row(std::string const &name) {
  return [NSMutableDictionary dictionaryWithObject:[NSString stringWithUTF8String:name.c_str()] forKey:@"name"];
}


class TableTest : public testing::TestWithParam<bool> {
 protected:
  void SetUp() override {
    ASSERT_NE(panel = open_panel(), nil);
    table = GetParam() ? panel->columnTable : panel->table;
    controller = panel->rows;
    [controller addObjects:[NSArray arrayWithObjects:row("Ann"), row("bob"), row("Zed"), nil]];
  }
  void TearDown() override {
    [panel->window orderOut:nil];
    [pool release];
  }
  std::string selected() {
    return [[[[controller selectedObjects] valueForKey:@"name"] componentsJoinedByString:@","] UTF8String];
  }
  NSIndexSet *rows() { return [table selectedRowIndexes]; }

  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  PanelOwner *panel = nil;
  NSTableView *table = nil;
  NSArrayController *controller = nil;
};

TEST_P(TableTest, ClickReachesTheController) {
  NSRect const second = [table frameOfCellAtColumn:0 row:1];
  click(table, NSMakePoint(NSMidX(second), NSMidY(second)));
  EXPECT_EQ(selected(), "bob");
  EXPECT_EQ([table selectedRow], 1);
}

TEST_P(TableTest, SelectionReachesTheTable) {
  [controller setSelectionIndex:2];
  EXPECT_EQ([table selectedRow], 2);
  [controller setSelectionIndexes:[NSIndexSet indexSet]];
  EXPECT_EQ([table selectedRow], -1);
}

TEST_P(TableTest, RowsThatMoveStaySelected) {
  [controller setSelectionIndex:2];
  [controller removeObjectAtArrangedObjectIndex:0];
  EXPECT_EQ(selected(), "Zed");
  EXPECT_TRUE([rows() isEqual:[NSIndexSet indexSetWithIndex:1]]);
  [controller insertObject:row("Kim") atArrangedObjectIndex:0];
  EXPECT_EQ(selected(), "Zed");
  EXPECT_TRUE([rows() isEqual:[NSIndexSet indexSetWithIndex:2]]);
  [controller removeObjects:[NSArray arrayWithArray:[controller arrangedObjects]]];
  EXPECT_EQ([table numberOfRows], 0);
  EXPECT_EQ([table selectedRow], -1);
}

TEST_P(TableTest, SelectsWhatIsAdded) {
  [controller setSelectsInsertedObjects:YES];
  [controller addObject:row("Kim")];
  EXPECT_EQ([table numberOfRows], 4);
  EXPECT_EQ([table selectedRow], 3);
}

TEST_P(TableTest, ReloadKeepsTheSelection) {
  [controller setSelectionIndex:1];
  [table reloadData];
  EXPECT_EQ(selected(), "bob");
  EXPECT_EQ([table selectedRow], 1);
}

TEST_P(TableTest, ShowsItsRows) {
  [[[controller arrangedObjects] objectAtIndex:1] setValue:@"Bill" forKey:@"name"];
  [[[table tableColumns] lastObject] setDataCell:[[[DrawnCell alloc] initTextCell:@""] autorelease]];
  [[DrawnCell drawn] removeAllObjects];
  [table display];
  EXPECT_EQ(std::string{[[[DrawnCell drawn] componentsJoinedByString:@","] UTF8String]}, "Ann,Bill,Zed");
}

INSTANTIATE_TEST_SUITE_P(Bindings, TableTest, testing::Bool(),
                         [](auto const &info) { return info.param ? "columns_only" : "table_and_columns"; });

TEST(Table, ManyRowsAreRemovedAndDrawnQuickly) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  PanelOwner *panel = open_panel();
  NSMutableArray *many = [NSMutableArray array];
  for (int at = 0; at < 10000; ++at) [many addObject:row(std::to_string(at))];
  [panel->rows addObjects:many];
  auto const since = [](std::clock_t start) { return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC; };
  std::clock_t start = std::clock();
  [panel->table display];
  double const drawn = since(start);
  [panel->rows setSelectedObjects:[many subarrayWithRange:NSMakeRange(0, 5000)]];
  start = std::clock();
  [panel->rows remove:nil];
  double const removed = since(start);
  EXPECT_EQ([panel->table numberOfRows], 5000);
  EXPECT_LT(drawn, 0.2);
  EXPECT_LT(removed, 0.5);
  [panel->window orderOut:nil];
  [pool release];
}

}  // namespace
