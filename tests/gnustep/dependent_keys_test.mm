// Observers of keys that depend on others, and setters with an answer.
#import "fixture.h"

#include <gtest/gtest.h>

@interface Person : NSObject {
  NSString *first;
  NSString *last;
  BOOL known;
}
- (NSString *)full;
@end

@implementation Person
+ (NSSet *)keyPathsForValuesAffectingFull {
  return [NSSet setWithObjects:@"first", @"last", nil];
}
+ (NSSet *)keyPathsForValuesAffectingGreeting {
  return [NSSet setWithObject:@"full"];
}
- (NSString *)full {
  return [NSString stringWithFormat:@"%@ %@", first, last];
}
- (NSString *)greeting {
  return [@"Dear " stringByAppendingString:[self full]];
}
- (void)setGreeting:(NSString *)text {
}
- (void)setFirst:(NSString *)name {
  [name retain];
  [first release];
  first = name;
}
- (BOOL)setKnown:(id)flag {
  known = [flag boolValue];
  return !known;
}
@end

// Overrides the general method and hands the rest to super.
@interface Doctor : Person
@end

@implementation Doctor
+ (NSSet *)keyPathsForValuesAffectingValueForKey:(NSString *)key {
  NSSet *paths = [super keyPathsForValuesAffectingValueForKey:key];
  return [key isEqualToString:@"title"] ? [paths setByAddingObject:@"first"] : paths;
}
- (NSString *)title {
  return @"Dr.";
}
@end

// Each of two keys names the other.
@interface Circle : NSObject {
  id left;
  id right;
}
@end

@implementation Circle
+ (NSSet *)keyPathsForValuesAffectingLeft {
  return [NSSet setWithObject:@"right"];
}
+ (NSSet *)keyPathsForValuesAffectingRight {
  return [NSSet setWithObject:@"left"];
}
@end

namespace {

struct Observed {
  Observed(id object, NSString *key) : object(object), key(key) {
    [watcher watch:object keys:[NSArray arrayWithObject:key]];
  }
  ~Observed() {
    [object removeObserver:watcher forKeyPath:key];
    [watcher release];
  }
  NSUInteger told() const { return [watcher->told countForObject:key]; }
  id object;
  NSString *key;
  Watcher *watcher = [[Watcher alloc] init];
};

TEST(DependentKeys, NamedPerKey) {
  Person *person = [[[Person alloc] init] autorelease];
  Observed const full(person, @"full");
  [person setFirst:@"Ann"];
  EXPECT_EQ(full.told(), 1u);
  [person setValue:@"Lee" forKey:@"last"];
  EXPECT_EQ(full.told(), 2u) << "an instance variable without a setter";
  EXPECT_TRUE([[full.watcher->values objectForKey:@"full"] isEqual:@"Ann Lee"]);
}

TEST(DependentKeys, Indirect) {
  Person *person = [[[Person alloc] init] autorelease];
  Observed const greeting(person, @"greeting");
  [person setFirst:@"Ann"];
  EXPECT_EQ(greeting.told(), 1u) << "although greeting has a setter of its own";
}

TEST(DependentKeys, OverrideThatAsksSuper) {
  Doctor *doctor = [[[Doctor alloc] init] autorelease];
  Observed const title(doctor, @"title");
  Observed const full(doctor, @"full");
  [doctor setFirst:@"Ann"];
  EXPECT_EQ(title.told(), 1u);
  EXPECT_EQ(full.told(), 1u);
}

TEST(DependentKeys, NoneIsTheEmptySet) {
  Observed const full([[[Person alloc] init] autorelease], @"full");
  EXPECT_EQ([[Person keyPathsForValuesAffectingValueForKey:@"last"] count], 0u);
  EXPECT_EQ([[NSArrayController keyPathsForValuesAffectingValueForKey:@"sortDescriptors"] count], 0u);
}

TEST(DependentKeys, CircleEnds) {
  Circle *circle = [[[Circle alloc] init] autorelease];
  Observed const left(circle, @"left");
  [circle setValue:@"x" forKey:@"right"];
  EXPECT_EQ(left.told(), 1u);
}

TEST(ObservedSetter, KeepsItsAnswer) {
  Person *person = [[[Person alloc] init] autorelease];
  Observed const known(person, @"known");
  NSNumber *yes = [NSNumber numberWithBool:YES];
  NSNumber *no = [NSNumber numberWithBool:NO];
  EXPECT_FALSE([person setKnown:yes]);
  EXPECT_TRUE([person setKnown:no]);
  EXPECT_EQ(known.told(), 2u);
}

}  // namespace
