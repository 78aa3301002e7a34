// A print dialog extension for tests: its factory raises as soon as it is made.
#include <PrintCore/PDEPluginInterface.h>

@interface RaisingFactory : NSObject <PDEPlugIn>
@end

@implementation RaisingFactory

- (BOOL)initWithBundle:(NSBundle *)bundle {
  [NSException raise:@"RaisingException" format:@"the factory cannot start"];
  return NO;
}

- (NSArray *)PDEPanelsForType:(NSString *)type withHostInfo:(id)host {
  return nil;
}

@end
