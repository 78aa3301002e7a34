// A print dialog extension: its bundle, its factory, its panels. Nothing that the bundle does while it is loaded or
// asked comes out as an exception.
#pragma once
#import "host/HostCallback.h"
#import "host/HostPanel.h"

@interface HostExtension : NSObject {
  NSString *_path;
  id _factory;
  NSString *_problem;
}
// Loads the bundle, unless others than its user may change it (core/trusted_path.h), and makes its factory. Never nil.
- (id)initWithPath:(NSString *)path;
- (NSString *)path;
// What failed last, a sentence for the user; nil for nothing.
- (NSString *)problem;
// New HostPanel objects; empty, with a problem, when there are none.
- (NSArray *)panelsForCallback:(HostCallback *)callback owner:(id<HostPanelOwner>)owner;
@end
