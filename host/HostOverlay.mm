#import "host/HostOverlay.h"

#include <cstdio>

#import "host/controls.h"

using namespace fax::host;
using namespace fax::toolkit;
using Clock = std::chrono::steady_clock;

struct HostOverlayTimes {
  Clock::time_point print_pressed;
  std::optional<double> first_ms;
  bool due = false;  // the next window is to be timed
};

@interface HostOverlay ()
- (void)time:(NSWindow *)shown;
@end

@implementation HostOverlay

- (id)initAbove:(NSWindow *)base help:(HostHelpWindow *)help timing:(BOOL)timing {
  if (!(self = [super init])) return nil;
  _base = base;
  _help = help;
  _timing = timing;
  _times = new HostOverlayTimes;
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(windowBecameKey:)
                                               name:NSWindowDidBecomeKeyNotification
                                             object:nil];
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  delete _times;
  [super dealloc];
}

- (void)printPressed {
  _times->print_pressed = Clock::now();
}

- (void)beginGate {
  _times->due = _timing;
}

- (void)endGate {
  _times->due = false;
}

- (void)windowBecameKey:(NSNotification *)notification {
  NSWindow *const shown = [notification object];
  if (shown == _base || shown == [_help panel] || ![_base isVisible]) return;
  // A click on the dialog below would else cover the modal window that everything waits for.
  if (shown != _top && shown != _under) {
    bool const nested =
        _top && [[NSApp windows] indexOfObjectIdenticalTo:_top] != NSNotFound && [_top isVisible];
    _under = nested ? _top : _base;
    _top = shown;
    keep_above(shown, _under);
  }
  if (_times->due) [self time:shown];
}

- (void)time:(NSWindow *)shown {
  _times->due = false;
  draw_now(shown);
  double const took = std::chrono::duration<double, std::milli>(Clock::now() - _times->print_pressed).count();
  if (!_times->first_ms) {
    _times->first_ms = took;
    std::printf("print to dialog: %.1f ms\n", took);
  } else {
    std::printf("print to dialog: %.1f ms (warm %.1f ms)\n", *_times->first_ms, took);
  }
  std::fflush(stdout);
}

@end
