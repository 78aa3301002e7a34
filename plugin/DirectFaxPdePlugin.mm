#import "plugin/DirectFaxPdePlugin.h"

#import "plugin/DirectFaxPdeInterface.h"
#import "support/guarded.h"

namespace {

// The one panel type that is served; compared to the letter.
NSString *const kPrintPanelType = @"BDB091F4-E57F-11D3-B5CC-0050E4603277";

}  // namespace

@implementation DirectFaxPdePlugin

- (BOOL)initWithBundle:(NSBundle *)bundle {
  if (theBundle == nil) theBundle = [bundle retain];
  return YES;
}

- (NSArray *)PDEPanelsForType:(NSString *)type withHostInfo:(id)host {
  NSMutableArray *panels = [NSMutableArray array];
  if (![type isEqualToString:kPrintPanelType]) return panels;
  NSBundle *const bundle = theBundle;
  DirectFaxPdeInterface *panel = fax::guarded("DirectFaxPdePlugin - PDEPanelsForType", nil, [&] {
    return [[DirectFaxPdeInterface alloc] initWithCallback:host andBundle:bundle];
  });
  if (panel == nil) return nil;
  [panels addObject:panel];
  [panel release];
  return panels;
}

- (void)dealloc {
  [theBundle release];
  [super dealloc];
}

@end
