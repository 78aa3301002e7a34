// Rows as dictionaries, and the toolkit's own answers as the measure of order and search.
#import "addressbook/AddressRows.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

namespace {

NSString *string_of(std::u16string const &units) {
  return [NSString stringWithCharacters:reinterpret_cast<unichar const *>(units.data()) length:units.size()];
}

std::string utf8(NSString *text) {
  return text == nil ? "(nil)" : [text UTF8String];
}

class AddressRowsTest : public testing::Test {
 protected:
  void TearDown() override { [pool release]; }
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
};

TEST_F(AddressRowsTest, ARowIsADictionary) {
  fax::AddressBook book;
  book.add_individual(40000, u"Cy", u"+1", u"Works", u"");
  book.add_individual(2, u"Bob", u"3");
  std::uint16_t const ids[] = {2, 40000, 2};
  book.add_group(u"All", ids);
  AddressRows *rows = [AddressRows rowsOfBook:std::move(book)];
  NSArray *numbers = [NSArray arrayWithObjects:[NSNumber numberWithInt:2], [NSNumber numberWithInt:40000],
                                               [NSNumber numberWithInt:2], nil];
  NSArray *expected = [NSArray
      arrayWithObjects:[NSDictionary dictionaryWithObjectsAndKeys:@"Cy", @"name", @"+1", @"phoneNumber", @"Works",
                                                                  @"company", @"", @"note",
                                                                  [NSNumber numberWithInt:40000], @"Id", nil],
                       [NSDictionary dictionaryWithObjectsAndKeys:@"Bob", @"name", @"3", @"phoneNumber",
                                                                  [NSNumber numberWithInt:2], @"Id", nil],
                       [NSDictionary dictionaryWithObjectsAndKeys:@"All", @"name", @"Group", @"phoneNumber", numbers,
                                                                  @"userIDList", nil],
                       nil];
  ASSERT_EQ([rows count], 3u);
  for (NSUInteger at = 0; at < 3; ++at) {
    NSDictionary *row = [rows objectAtIndex:at];
    EXPECT_TRUE([row isEqual:[expected objectAtIndex:at]]) << utf8([row description]);
    EXPECT_TRUE([[expected objectAtIndex:at] isEqual:row]);
    EXPECT_EQ([[row allKeys] count], [row count]);
    EXPECT_EQ([row valueForKey:@"nothing"], nil);
    EXPECT_TRUE([[row valueForKey:@"name"] isEqual:[[expected objectAtIndex:at] objectForKey:@"name"]]);
    NSMutableDictionary *copy = [[row mutableCopy] autorelease];
    EXPECT_TRUE([copy isEqual:row]);
    id values[5] = {}, keys[5] = {};
    [row getObjects:values andKeys:keys];
    EXPECT_TRUE([copy isEqual:[NSDictionary dictionaryWithObjects:values forKeys:keys count:[row count]]]);
    EXPECT_TRUE([[NSSet setWithArray:[row allValues]] isEqual:[NSSet setWithArray:[copy allValues]]]);
  }
  EXPECT_TRUE([rows isEqual:expected]);
  EXPECT_TRUE([[[rows valueForKey:@"name"] componentsJoinedByString:@","] isEqual:@"Cy,Bob,All"]);
  EXPECT_EQ([rows indexOfObject:[expected objectAtIndex:1]], 1u);
}

TEST_F(AddressRowsTest, ARowKeptIsTheSameObjectInEveryList) {
  fax::AddressBook book;
  for (char16_t const *name : {u"Ann", u"Anna", u"Bob"}) book.add_individual(1, name, u"1", u"", u"");
  AddressRows *rows = [AddressRows rowsOfBook:std::move(book)];
  id const anna = [rows objectAtIndex:1];
  AddressRows *found = [rows rowsNamed:@"ANN"];
  ASSERT_EQ([found count], 2u);
  EXPECT_EQ([found objectAtIndex:0], anna);
  EXPECT_EQ([found indexOfObjectIdenticalTo:anna], 0u);
  EXPECT_EQ([found indexOfObjectIdenticalTo:anna inRange:NSMakeRange(1, 1)], static_cast<NSUInteger>(NSNotFound));
  EXPECT_EQ([found indexOfObjectIdenticalTo:[rows objectAtIndex:0]], static_cast<NSUInteger>(NSNotFound));
  EXPECT_EQ([rows indexOfObjectIdenticalTo:[[anna mutableCopy] autorelease]], static_cast<NSUInteger>(NSNotFound));
  EXPECT_EQ([[rows rowsNamed:nil] count], 3u);
  NSArray *chosen = [rows objectsAtIndexes:[NSIndexSet indexSetWithIndexesInRange:NSMakeRange(1, 2)]];
  EXPECT_EQ([chosen objectAtIndex:0], anna);
  EXPECT_EQ([chosen count], 2u);
  EXPECT_ANY_THROW([found objectAtIndex:2]);
}

TEST_F(AddressRowsTest, ARowOutlivesItsLists) {
  NSAutoreleasePool *inner = [NSAutoreleasePool new];
  fax::AddressBook book;
  book.add_individual(1, u"Ann", u"1", u"", u"");
  AddressRows *rows = [AddressRows rowsOfBook:std::move(book)];
  id const kept = [[rows objectAtIndex:0] retain];
  [inner release];
  EXPECT_EQ(utf8([kept objectForKey:@"name"]), "Ann");
  [kept release];
}

TEST_F(AddressRowsTest, ExpandsAGroupAmongWhatItLists) {
  fax::AddressBook book;
  for (std::uint16_t at = 1; at <= 3; ++at) book.add_individual(at, std::u16string(1, u'a' + at), u"1", u"", u"");
  std::uint16_t const ids[] = {1, 3};
  book.add_group(u"z", ids);
  AddressRows *rows = [AddressRows rowsOfBook:std::move(book)];
  BOOL complete = NO;
  NSArray *members = [rows membersOfGroup:[rows objectAtIndex:0] complete:&complete];
  EXPECT_TRUE([[members valueForKey:@"name"] isEqual:([NSArray arrayWithObjects:@"d", @"b", nil])]);
  EXPECT_TRUE(complete);
  members = [[rows rowsNamed:@"b"] membersOfGroup:[rows objectAtIndex:0] complete:&complete];
  EXPECT_EQ([members count], 1u);
  EXPECT_FALSE(complete);
  NSArray *listed = [NSArray arrayWithObjects:[NSNumber numberWithInt:2], [NSNumber numberWithInt:65538], nil];
  members = [rows membersOfGroup:[NSDictionary dictionaryWithObject:listed forKey:@"userIDList"] complete:&complete];
  EXPECT_EQ([members count], 1u);
  EXPECT_FALSE(complete);
  members = [rows membersOfGroup:[NSDictionary dictionary] complete:&complete];
  EXPECT_EQ([members count], 0u);
  EXPECT_TRUE(complete);
}

// Few different letters a script, so that names often begin alike, in every way that their case and accents can be
// written.
std::vector<std::u16string> const kScripts[] = {
    {u"a", u"A", u"b", u"B", u"z", u"Z", u" ", u"_", u"0", u"9", u"."},
    {u"a", u"ä", u"Ä", u"A\u0308", u"e", u"é", u"E\u0301", u"ñ", u"Ñ", u"n", u"N\u0303", u"ß", u"ü", u"Z"},
    {u"\u0141", u"\u0142", u"\u0158", u"\u0159", u"\u017d", u"z", u"\u0150", u"\u0151", u"o", u"O", u"\u0130", u"\u0131"},
    {u"\u0391", u"\u03b1", u"\u0386", u"\u03ac", u"\u03af", u"\u03ca", u"\u03a3", u"\u03c3", u"\u03c2", u"\u03a9", u"\u038f"},
    {u"\u0410", u"\u0430", u"\u0419", u"\u0439", u"\u0418", u"\u0438\u0306", u"\u0401", u"\u0451", u"\u0435", u"\u042f"},
    {u"\uff21", u"\uff41", u"\uff3a", u"\uff5a", u"\uff10", u"A", u"a"},
    {u"\u3042", u"\u30a2", u"\u304c", u"\u304b\u3099", u"\u4e9c", u"\u9ed2", u"\uac00", u"\uac01"},
    {u"a", u"\U0001F600", u"\U0001F601", u"\U00010400", u"z"},
};

std::u16string random_text(std::mt19937 &random, std::vector<std::u16string> const &letters, std::size_t longest) {
  std::u16string text;
  for (std::size_t length = 1 + random() % longest; length-- > 0;) text += letters[random() % letters.size()];
  return text;
}

class ToolkitTest : public AddressRowsTest, public testing::WithParamInterface<std::size_t> {
 protected:
  void SetUp() override {
    for (int at = 0; at < 1500; ++at) {
      std::u16string const name = random_text(random, letters, 5);
      std::u16string const number = std::u16string(1, u"0aA"[random() % 3]);
      book.add_individual(static_cast<std::uint16_t>(at), name, number);
      [plain addObject:[NSDictionary dictionaryWithObjectsAndKeys:string_of(name), @"name", string_of(number),
                                                                  @"phoneNumber", [NSNumber numberWithInt:at], @"Id",
                                                                  nil]];
    }
    rows = [AddressRows rowsOfBook:std::move(book)];
  }
  std::vector<std::u16string> const &letters = kScripts[GetParam()];
  std::mt19937 random{static_cast<unsigned>(GetParam())};
  fax::AddressBook book;
  NSMutableArray *plain = [NSMutableArray array];
  AddressRows *rows = nil;
};

TEST_P(ToolkitTest, OrderIsTheToolkits) {
  for (NSUInteger at = 1; at < [rows count]; ++at) {
    NSDictionary *above = [rows objectAtIndex:at - 1];
    NSDictionary *below = [rows objectAtIndex:at];
    NSComparisonResult order = [[above objectForKey:@"name"] caseInsensitiveCompare:[below objectForKey:@"name"]];
    if (order == NSOrderedSame) {
      order = [[above objectForKey:@"phoneNumber"] caseInsensitiveCompare:[below objectForKey:@"phoneNumber"]];
    }
    ASSERT_NE(order, NSOrderedAscending) << utf8([above description]) << utf8([below description]);
    if (order != NSOrderedSame) continue;
    EXPECT_LT([[above objectForKey:@"Id"] intValue], [[below objectForKey:@"Id"] intValue]);
  }
}

TEST_P(ToolkitTest, SearchIsTheToolkits) {
  int found = 0;
  for (int at = 0; at < 60; ++at) {
    NSString *text = string_of(random_text(random, letters, 3));
    // The toolkit misses a name whose letters are composed where the text's are not, or has fewer units: it is asked
    // with all letters composed, and our answer has to be the same however they are.
    NSString *composed = [text precomposedStringWithCanonicalMapping];
    NSMutableSet *expected = [NSMutableSet set];
    for (NSUInteger row = 0; row < [plain count]; ++row) {
      NSDictionary *entry = [plain objectAtIndex:row];
      NSString *name = [[entry objectForKey:@"name"] precomposedStringWithCanonicalMapping];
      NSRange const place = [name rangeOfString:composed options:NSCaseInsensitiveSearch];
      if (place.location != NSNotFound) [expected addObject:[entry objectForKey:@"Id"]];
    }
    NSSet *shown = [NSSet setWithArray:[[rows rowsNamed:text] valueForKey:@"Id"]];
    found += static_cast<int>([shown count]);
    EXPECT_TRUE([shown isEqual:expected]) << utf8(text) << ": " << [shown count] << " for " << [expected count];
  }
  EXPECT_GT(found, 0);
}

INSTANTIATE_TEST_SUITE_P(Scripts, ToolkitTest, testing::Range<std::size_t>(0, std::size(kScripts)));

}  // namespace
