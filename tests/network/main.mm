// Objective-C without an application object: resolving needs no display.
#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <unistd.h>

int main(int argc, char **argv) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  testing::InitGoogleTest(&argc, argv);
  GSDebugAllocationActive(YES);
  int const failed = RUN_ALL_TESTS();
  [pool release];
  std::fflush(nullptr);
  _exit(failed);
}
