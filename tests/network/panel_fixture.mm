#import "panel_fixture.h"

#import <GNUstepBase/NSDebug+GNUstepBase.h>
#include <PrintCore/PrintCore.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <gtest/gtest.h>

namespace {

std::string the_uri;

}  // namespace

// Stands in front of the platform's own: the URI is the test's.
OSStatus PMPrinterCopyDeviceURI(PMPrinter, CFURLRef *uri) {
  CFStringRef const text = CFStringCreateWithCString(kCFAllocatorDefault, the_uri.c_str(), kCFStringEncodingUTF8);
  *uri = text != nullptr ? CFURLCreateWithString(kCFAllocatorDefault, text, nullptr) : nullptr;
  if (text != nullptr) CFRelease(text);
  return *uri != nullptr ? noErr : kPMKeyNotFound;
}

@protocol PanelFactory
- (BOOL)initWithBundle:(NSBundle *)bundle;
- (NSArray *)PDEPanelsForType:(NSString *)type withHostInfo:(id)host;
@end

@interface PrinterHost : NSObject
@end
@implementation PrinterHost
- (void *)ppdFile {
  return NULL;
}
- (void *)printSettings {
  return NULL;
}
- (void *)printSession {
  return NULL;
}
- (void *)PMPrinter {
  return NULL;  // that is for PMPrinterCopyDeviceURI to judge
}
- (BOOL)willChangePPDOptionKeyValue:(NSString *)keyword ppdChoice:(NSString *)choice {
  return NO;
}
@end

@interface LoopClock : NSObject {
 @public
  test::Seconds last, longest;
}
@end
@implementation LoopClock
- (void)tick:(NSTimer *)timer {
  test::Seconds const time = test::now();
  longest = std::max(longest, time - last);
  last = time;
}
@end

namespace test {

id new_panel(std::string const &uri) {
  static NSBundle *bundle = nil;
  static id<PanelFactory> factory = nil;
  static PrinterHost *const host = [[PrinterHost alloc] init];
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  the_uri = uri;
  if (factory == nil) {
    bundle = [[NSBundle bundleWithPath:@BUNDLE_PATH] retain];
    if (![bundle load]) std::abort();
    factory = [[[bundle principalClass] alloc] init];
    [factory initWithBundle:bundle];
  }
  NSArray *panels = [factory PDEPanelsForType:@"BDB091F4-E57F-11D3-B5CC-0050E4603277" withHostInfo:host];
  id panel = [[panels objectAtIndex:0] retain];
  [pool release];
  return panel;
}

std::string address_of(id panel) {
  NSString *address = [panel valueForKey:@"printerAddress"];
  return address != nil ? [address UTF8String] : "(nil)";
}

std::string error_output(std::function<void()> const &work) {
  testing::internal::CaptureStderr();
  work();
  return testing::internal::GetCapturedStderr();
}

Seconds now() {
  return std::chrono::duration<Seconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

Seconds run_loop(Seconds limit, std::function<bool()> const &done) {
  LoopClock *clock = [[LoopClock alloc] init];
  Seconds const start = clock->last = now();
  NSTimer *timer = [NSTimer scheduledTimerWithTimeInterval:0.01
                                                    target:clock
                                                  selector:@selector(tick:)
                                                  userInfo:nil
                                                   repeats:YES];
  while (!done() && now() - start < limit) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
    [pool release];
  }
  [clock tick:timer];
  Seconds const longest = clock->longest;
  [timer invalidate];
  [clock release];
  return longest;
}

int living_services() { return GSDebugAllocationCount(NSClassFromString(@"GSAvahiNetService")); }

}  // namespace test
