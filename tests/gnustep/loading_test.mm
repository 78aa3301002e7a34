// The library loaded into a program that knows nothing of it and has used the toolkit already, as a host that loads the
// bundle: the repairs are in place, without a word on the error stream, for classes that have had messages and for
// those that have not.
#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <string>

@interface HostFormatter : NSDateFormatter
@end

@implementation HostFormatter
@end

namespace {

std::string shown(NSDateFormatter *formatter) {
  [formatter setDateFormat:@"yyyy"];
  NSString *text = [formatter stringForObjectValue:[NSDate dateWithTimeIntervalSince1970:86400 * 100]];
  return text != nil ? [text UTF8String] : "";
}

TEST(Loading, ByDlopenIntoARunningProgram) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSDateFormatter *plain = [[[NSDateFormatter alloc] init] autorelease];
  HostFormatter *derived = [[[HostFormatter alloc] init] autorelease];
  NSArrayController *controller = [[[NSArrayController alloc] init] autorelease];
  ASSERT_EQ(shown(plain), "yyyy") << "the toolkit no longer has the fault that this test looks at";
  ASSERT_EQ(shown(derived), "yyyy");

  std::FILE *const said = std::tmpfile();
  ASSERT_NE(said, nullptr);
  int const file = fileno(said);
  std::fflush(stderr);
  int const errors = dup(STDERR_FILENO);
  dup2(file, STDERR_FILENO);
  [pool release];
  void *const library = dlopen(PLATFORM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  pool = [NSAutoreleasePool new];
  std::fflush(stderr);
  dup2(errors, STDERR_FILENO);
  EXPECT_EQ(lseek(file, 0, SEEK_END), 0) << "something was said while loading";
  close(errors);
  std::fclose(said);
  ASSERT_NE(library, nullptr) << dlerror();

  plain = [[[NSDateFormatter alloc] init] autorelease];
  derived = [[[HostFormatter alloc] init] autorelease];
  EXPECT_EQ(shown(plain), "1970");
  EXPECT_EQ(shown(derived), "1970") << "a class of the host's that had had messages";
  controller = [[[NSArrayController alloc] initWithContent:nil] autorelease];
  [controller addObject:@"Ann"];
  EXPECT_EQ([[controller selectedObjects] lastObject], @"Ann");
  NSTabView *untouched = [[[NSTabView alloc] initWithFrame:NSMakeRect(0, 0, 10, 10)] autorelease];
  EXPECT_EQ([untouched numberOfTabViewItems], 0);
  EXPECT_EQ(std::string([[[[[NSAlert alloc] init] autorelease] informativeText] UTF8String]), "");
  [pool release];
}

}  // namespace
