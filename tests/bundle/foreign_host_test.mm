// The bundle in a program that was built with the toolkit alone and knows only the host contract.
#import <AppKit/AppKit.h>

#include <dlfcn.h>

#include <gtest/gtest.h>

@protocol Panel
- (NSView *)panelView;
- (NSString *)panelName;
- (BOOL)restoreValuesAndReturnError:(NSError **)error;
- (BOOL)saveValuesAndReturnError:(NSError **)error;
- (void)launchAddressBook:(id)sender;
@end

// The host's own launching of applications, which comes before the toolkit's and before whatever mends that.
static NSString *launched = nil;
@implementation NSWorkspace (ForeignHost)
- (NSArray *)launchedApplications {
  return [NSArray arrayWithObject:[NSDictionary dictionaryWithObject:@"com.norvalt.tk.o.addressbookeditor"
                                                              forKey:@"NSApplicationBundleIdentifier"]];
}
- (BOOL)launchAppWithBundleIdentifier:(NSString *)identifier
                              options:(NSWorkspaceLaunchOptions)options
       additionalEventParamDescriptor:(NSAppleEventDescriptor *)descriptor
                     launchIdentifier:(NSNumber **)process {
  launched = identifier;
  return NO;
}
@end

@protocol Factory
- (BOOL)initWithBundle:(NSBundle *)bundle;
- (NSArray *)PDEPanelsForType:(NSString *)type withHostInfo:(id)host;
@end

// A host that has nothing: no PPD, no settings, no session, no printer.
@interface EmptyHost : NSObject
@end
@implementation EmptyHost
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
  return NULL;
}
- (BOOL)willChangePPDOptionKeyValue:(NSString *)keyword ppdChoice:(NSString *)choice {
  return NO;
}
@end

namespace {

TEST(ForeignHost, LoadsTheBundleAndShowsItsPanel) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  NSBundle *bundle = [NSBundle bundleWithPath:@BUNDLE_PATH];
  ASSERT_TRUE([bundle load]);
  id<Factory> factory = [[[[bundle principalClass] alloc] init] autorelease];
  ASSERT_NE(factory, nil);
  EXPECT_TRUE([factory initWithBundle:bundle]);
  EmptyHost *host = [[[EmptyHost alloc] init] autorelease];
  NSArray *panels = [factory PDEPanelsForType:@"BDB091F4-E57F-11D3-B5CC-0050E4603277" withHostInfo:host];
  ASSERT_EQ([panels count], 1u);
  id<Panel> panel = [panels objectAtIndex:0];
  EXPECT_TRUE([[panel panelName] isEqualToString:@"Fax Settings"]);
  EXPECT_NE([panel panelView], nil);
  EXPECT_TRUE([panel restoreValuesAndReturnError:NULL]);
  EXPECT_TRUE([panel saveValuesAndReturnError:NULL]);
  [panel launchAddressBook:nil];
  EXPECT_TRUE([launched isEqual:@"com.norvalt.tk.o.addressbookeditor"]);
  void *module = dlopen(BUNDLE_PATH "/DirectFax", RTLD_NOW | RTLD_NOLOAD);
  EXPECT_NE(dlsym(module, "XspEncrypt"), nullptr);
  [pool release];
}

}  // namespace
