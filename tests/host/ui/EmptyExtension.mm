// A print dialog extension for tests: its factory has no panel to give.
#include <PrintCore/PDEPluginInterface.h>

@interface EmptyFactory : NSObject <PDEPlugIn>
@end

@implementation EmptyFactory

- (BOOL)initWithBundle:(NSBundle *)bundle {
  return YES;
}

- (NSArray *)PDEPanelsForType:(NSString *)type withHostInfo:(id)host {
  return [NSArray array];
}

@end
