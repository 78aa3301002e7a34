#import "host/HostExtension.h"

#include "host/core/trusted_path.h"

#import "host/fence.h"
#import "toolkit/text.h"

using namespace fax::toolkit;

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
  std::string const name = utf8([path lastPathComponent]);
  id usable = nil;
  NSException *raised = fax::host::fenced([&] {
    auto const trusted = fax::host::trusted_path(utf8(path));
    NSBundle *bundle = [NSBundle bundleWithPath:ns(trusted.resolved.string())];
    if (!bundle) {
      [self setProblem:ns(tr("There is no print dialog extension at \"{0}\".", utf8(path)))];
      return;
    }
    if (trusted.weak) {
      [self setProblem:ns(tr("The print dialog extension \"{0}\" is not loaded: other users may change \"{1}\".", name,
                             trusted.weak->string()))];
      return;
    }
    if (![bundle load]) {
      [self setProblem:ns(tr("The print dialog extension \"{0}\" cannot be loaded.", name))];
      return;
    }
    Class factory = [bundle principalClass];
    if (!factory || ![factory instancesRespondToSelector:@selector(initWithBundle:)] ||
        ![factory instancesRespondToSelector:@selector(PDEPanelsForType:withHostInfo:)]) {
      [self setProblem:ns(tr("\"{0}\" is no print dialog extension: it has no factory.", name))];
      return;
    }
    // The factory's own initWithBundle: answers whether it is usable, not the object.
    id<PDEPlugIn> made = [factory alloc];
    if ([made initWithBundle:bundle]) {
      usable = (id)made;
    } else {
      [(id)made release];
      [self setProblem:ns(tr("The print dialog extension \"{0}\" refused to start.", name))];
    }
  });
  _factory = usable;
  if (raised) {
    NSLog(@"%s raised %@: %@", name.c_str(), [raised name], [raised reason]);
    [self setProblem:ns(tr("The print dialog extension \"{0}\" failed while it was started: {1}", name,
                            utf8([raised reason])))];
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
  std::string const name = utf8([_path lastPathComponent]);
  if (raised) {
    NSLog(@"%s raised %@: %@", name.c_str(), [raised name], [raised reason]);
    [self setProblem:ns(tr("The print dialog extension \"{0}\" failed to make its panels: {1}", name,
                            utf8([raised reason])))];
    [panels removeAllObjects];
  } else {
    [self setProblem:[panels count] ? nil : ns(tr("The print dialog extension \"{0}\" has no panel.", name))];
  }
  return panels;
}

@end
