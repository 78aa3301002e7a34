#import "host/HostDrops.h"

#include <unistd.h>

#include <array>
#include <memory>
#include <utility>

#include "host/core/uri_list.h"
#include "host/drop_target.h"

#import "host/controls.h"

using namespace fax::host;

struct HostDropsState {
  std::unique_ptr<DropTarget> target;
  DroppedFiles dropped;
};

@interface HostDrops ()
- (void)wait;
@end

static std::string HostName() {
  std::array<char, 256> name{};
  return gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

static NSArray *Strings(std::vector<std::string> const &texts) {
  NSMutableArray *strings = [NSMutableArray array];
  NSFileManager *const files = [NSFileManager defaultManager];
  for (auto const &text : texts)
    [strings addObject:[files stringWithFileSystemRepresentation:text.c_str() length:text.size()]];
  return strings;
}

@implementation HostDrops

- (id)initOnWindow:(NSWindow *)window owner:(id<HostDropsOwner>)owner {
  if (!(self = [super init])) return nil;
  _owner = owner;
  _state = new HostDropsState{DropTarget::on_window(window_device(window)), {}};
  if (!_state->target) return self;
  _incoming = [[NSFileHandle alloc] initWithFileDescriptor:_state->target->descriptor() closeOnDealloc:NO];
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(somethingCame:)
                                               name:NSFileHandleDataAvailableNotification
                                             object:_incoming];
  [self wait];
  return self;
}

- (void)dealloc {
  [self stop];
  [_incoming release];
  delete _state;
  [super dealloc];
}

- (void)stop {
  _owner = nil;
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  [[NSNotificationCenter defaultCenter] removeObserver:self];
}

- (void)wait {
  [_incoming waitForDataInBackgroundAndNotifyForModes:[NSArray arrayWithObjects:NSDefaultRunLoopMode,
                                                                                NSModalPanelRunLoopMode, nil]];
}

- (void)somethingCame:(NSNotification *)notification {
  auto const list = _state->target->take([NSApp modalWindow] == nil);
  [self wait];
  if (!list) return;
  DroppedFiles const files = read_uri_list(*list, HostName());
  auto &all = _state->dropped;
  all.paths.insert(all.paths.end(), files.paths.begin(), files.paths.end());
  all.others.insert(all.others.end(), files.others.begin(), files.others.end());
  // Whoever hears of it may open an alert: not in the middle of a notification.
  [self performSelector:@selector(tell) withObject:nil afterDelay:0];
}

- (void)tell {
  DroppedFiles const files = std::exchange(_state->dropped, {});
  if (files.paths.empty() && files.others.empty()) return;
  [_owner takeDroppedPaths:Strings(files.paths) others:Strings(files.others)];
}

@end
