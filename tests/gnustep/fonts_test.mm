// Letters that the system's font lacks: each is drawn with a font that has it, whatever the weight of the text.
#import "fixture.h"

#include <gtest/gtest.h>

namespace {

TEST(SubstituteFont, HasTheLetters) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  for (NSFont *base : {[NSFont systemFontOfSize:13], [NSFont boldSystemFontOfSize:11]}) {
    for (char const *text : {"宛先", "传真号码", "팩스 번호", "Größe 宛先 팩스"}) {
      NSString *const shown = [NSString stringWithUTF8String:text];
      NSMutableAttributedString *drawn = [[[NSMutableAttributedString alloc]
          initWithString:shown
              attributes:[NSDictionary dictionaryWithObject:base forKey:NSFontAttributeName]] autorelease];
      [drawn fixFontAttributeInRange:NSMakeRange(0, [drawn length])];
      for (NSUInteger at = 0; at < [shown length]; ++at) {
        NSFont *font = [drawn attribute:NSFontAttributeName atIndex:at effectiveRange:NULL];
        EXPECT_TRUE([[font coveredCharacterSet] characterIsMember:[shown characterAtIndex:at]]) << text << " " << at;
        EXPECT_EQ([font pointSize], [base pointSize]) << text;
      }
    }
  }
  [pool release];
}

}  // namespace
