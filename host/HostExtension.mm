#import "host/HostExtension.h"

#include "host/core/trusted_path.h"

#import "host/fence.h"
#import "host/text.h"

static NSString *const kPanelType = @"BDB091F4-E57F-11D3-B5CC-0050E4603277";

@interface HostExtension ()
- (void)load;
- (void)setProblem:(NSString *)problem;
@end

@implementation HostExtension

- (id)initWithPath:(NSString *)path {
  if (!(self = [super init])) return nil;
  _path = [path copy];
  [self load];
  return self;
}

- (void)dealloc {
  id const factory = _factory;
  fax::host::fenced([&] { [factory release]; });
  [_path release];
  [_problem release];
  [super dealloc];
}

- (NSString *)path {
  return _path;
}

- (NSString *)problem {
  return _problem;
}

- (void)setProblem:(NSString *)problem {
  [_problem autorelease];
  _problem = [problem copy];
}

- (void)load {
  NSString *const path = _path;
  NSString *const name = [path lastPathComponent];
  id usable = nil;
  NSException *raised = fax::host::fenced([&] {
    auto const trusted = fax::host::trusted_path(fax::host::utf8(path));
    NSBundle *bundle = [NSBundle bundleWithPath:fax::host::ns(trusted.resolved.string())];
    if (!bundle) {
      [self setProblem:HostFormat(@"There is no print dialog extension at \"%@\".", path)];
      return;
    }
    if (trusted.weak) {
      [self setProblem:HostFormat(@"The print dialog extension \"%@\" is not loaded: other users may change \"%@\".",
                                  name, fax::host::ns(trusted.weak->string()))];
      return;
    }
    if (![bundle load]) {
      [self setProblem:HostFormat(@"The print dialog extension \"%@\" cannot be loaded.", name)];
      return;
    }
    Class factory = [bundle principalClass];
    if (!factory || ![factory instancesRespondToSelector:@selector(initWithBundle:)] ||
        ![factory instancesRespondToSelector:@selector(PDEPanelsForType:withHostInfo:)]) {
      [self setProblem:HostFormat(@"\"%@\" is no print dialog extension: it has no factory.", name)];
      return;
    }
    // The factory's own initWithBundle: answers whether it is usable, not the object.
    id<PDEPlugIn> made = [factory alloc];
    if ([made initWithBundle:bundle]) {
      usable = (id)made;
    } else {
      [(id)made release];
      [self setProblem:HostFormat(@"The print dialog extension \"%@\" refused to start.", name)];
    }
  });
  _factory = usable;
  if (raised) {
    NSLog(@"%@ raised %@: %@", name, [raised name], [raised reason]);
    [self setProblem:HostFormat(@"The print dialog extension \"%@\" failed while it was started: %@", name,
                                [raised reason])];
  }
}

- (NSArray *)panelsForCallback:(HostCallback *)callback owner:(id<HostPanelOwner>)owner {
  NSMutableArray *panels = [NSMutableArray array];
  id<PDEPlugIn> const factory = _factory;
  if (!factory) return panels;
  NSException *raised = fax::host::fenced([&] {
    NSArray *list = [factory PDEPanelsForType:kPanelType withHostInfo:callback];
    if (![list isKindOfClass:[NSArray class]]) return;
    for (NSUInteger at = 0; at < [list count]; ++at) {
      HostPanel *panel = [[HostPanel alloc] initWithPanel:[list objectAtIndex:at] owner:owner];
      [panels addObject:panel];
      [panel release];
    }
  });
  NSString *const name = [_path lastPathComponent];
  if (raised) {
    NSLog(@"%@ raised %@: %@", name, [raised name], [raised reason]);
    [self setProblem:HostFormat(@"The print dialog extension \"%@\" failed to make its panels: %@", name,
                                [raised reason])];
    [panels removeAllObjects];
  } else {
    [self setProblem:[panels count] ? nil : HostFormat(@"The print dialog extension \"%@\" has no panel.", name)];
  }
  return panels;
}

@end
