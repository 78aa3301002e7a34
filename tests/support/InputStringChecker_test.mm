#import "support/InputStringChecker.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <objc/runtime.h>
#include <string>
#include <vector>

namespace {

class Checker : public testing::Test {
 protected:
  void SetUp() override {
    pool = [NSAutoreleasePool new];
    checker = [[InputStringChecker alloc] init];
  }
  void TearDown() override {
    [checker release];
    [pool release];
  }
  // Neither slot may be written, whatever the answer.
  bool accepts(NSString *text) {
    NSString *replacement = @"slot", *error = @"slot";
    BOOL const valid = [checker isPartialStringValid:text newEditingString:&replacement errorDescription:&error];
    EXPECT_EQ(replacement, @"slot");
    EXPECT_EQ(error, @"slot");
    return valid;
  }
  NSAutoreleasePool *pool;
  InputStringChecker *checker;
};

unichar const kDigits[] = {0x0030, 0x0039, 0};
unichar const kLetters[] = {0x0061, 0x007A, 0};

TEST_F(Checker, IsAFormatterWithTheseFields) {
  EXPECT_STREQ(class_getName([checker class]), "com_norvalt_tk_o_pde_vexolinddirectfax_InputStringChecker");
  EXPECT_EQ([checker superclass], [NSFormatter class]);
  unsigned count = 0;
  Ivar *fields = class_copyIvarList([checker class], &count);
  std::vector<std::string> names, types;
  for (unsigned i = 0; i < count; ++i) {
    names.push_back(ivar_getName(fields[i]));
    types.push_back(ivar_getTypeEncoding(fields[i]));
  }
  std::free(fields);
  EXPECT_EQ(names, (std::vector<std::string>{"maxLength", "acceptableCodeRange", "unAcceptableCodeRange"}));
  EXPECT_EQ(types, (std::vector<std::string>{@encode(NSUInteger), "*", "*"}));
}

TEST_F(Checker, NewOneTakesAnything) {
  EXPECT_EQ(checker->maxLength, ~NSUInteger{0});
  EXPECT_EQ(checker->acceptableCodeRange, nullptr);
  EXPECT_EQ(checker->unAcceptableCodeRange, nullptr);
  EXPECT_TRUE(accepts(@""));
  EXPECT_TRUE(accepts([@"" stringByPaddingToLength:100000 withString:@"\u3042\n" startingAtIndex:0]));
}

TEST_F(Checker, LimitBindsUnitsAndBytes) {
  [checker setMaxLength:4];
  EXPECT_TRUE(accepts(@"abcd"));
  EXPECT_FALSE(accepts(@"abcde"));
  EXPECT_TRUE(accepts(@"\u3042"));
  EXPECT_FALSE(accepts(@"\u3042\u3044"));
  EXPECT_TRUE(accepts(@"\U0001F600"));
}

TEST_F(Checker, TablesAreTheGivenUnits) {
  [checker setAcceptableCodeRange:kDigits];
  EXPECT_TRUE(accepts(@"0123456789"));
  EXPECT_FALSE(accepts(@"12a"));
  EXPECT_TRUE(accepts(@""));
  EXPECT_EQ(checker->acceptableCodeRange[0x39], 1);
  EXPECT_EQ(checker->acceptableCodeRange[0x3A], 0);
  [checker setAcceptableCodeRange:kLetters];
  EXPECT_FALSE(accepts(@"1"));
  EXPECT_TRUE(accepts(@"a"));
  // The refused units decide alone.
  [checker setUnAcceptableCodeRange:kDigits];
  EXPECT_TRUE(accepts(@"A"));
  EXPECT_FALSE(accepts(@"a1"));
}

TEST_F(Checker, ValuesAreTexts) {
  EXPECT_EQ([checker stringForObjectValue:@"text"], @"text");
  EXPECT_EQ([checker stringForObjectValue:[NSNumber numberWithInt:1]], nil);
  EXPECT_EQ([checker stringForObjectValue:nil], nil);
  NSMutableString *typed = [NSMutableString stringWithString:@"typed"];
  id value = nil;
  NSString *error = @"slot";
  EXPECT_TRUE([checker getObjectValue:&value forString:typed errorDescription:&error]);
  [typed appendString:@" on"];
  EXPECT_TRUE([value isEqual:@"typed"]);
  EXPECT_EQ(error, @"slot");
  EXPECT_TRUE([checker getObjectValue:NULL forString:typed errorDescription:NULL]);
  EXPECT_TRUE([checker getObjectValue:&value forString:nil errorDescription:NULL]);
  EXPECT_EQ(value, nil);
}

}  // namespace
