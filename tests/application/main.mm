// Runs GoogleTest inside a started application object, as a host would be.
#import <AppKit/AppKit.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <unistd.h>

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  testing::InitGoogleTest(&argc, argv);
  // Asked for when the application object is made.
  [[NSUserDefaults standardUserDefaults] setObject:@"YES" forKey:@"GSSuppressAppIcon"];
  [NSApplication sharedApplication];
  [NSApp finishLaunching];
  int failed = RUN_ALL_TESTS();
  [pool release];
  std::fflush(nullptr);
  // The toolkit's own clean-up at exit waits for its daemons; the verdict does not.
  _exit(failed);
}
