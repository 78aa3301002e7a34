// Files that other programs drop on a window.
#pragma once
#import <AppKit/AppKit.h>

@protocol HostDropsOwner
// Absolute paths of what was dropped, and the addresses of what is no file of this computer; not both empty.
- (void)takeDroppedPaths:(NSArray *)paths others:(NSArray *)others;
@end

@interface HostDrops : NSObject {
  struct HostDropsState *_state;
  id<HostDropsOwner> _owner;
  NSFileHandle *_incoming;
}
// The window has been on the screen. owner is not retained. Nothing is taken while a modal window is open.
- (id)initOnWindow:(NSWindow *)window owner:(id<HostDropsOwner>)owner;
// Forgets its owner.
- (void)stop;
@end
