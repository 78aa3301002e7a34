#import "host/HostPrinterFinder.h"

#include <memory>

#include "host/core/address_lookup.h"
#include "host/core/device_place.h"

#import "host/text.h"

using namespace fax::host;
using Outcome = LookupAnswer::Outcome;

struct HostPrinterFinderState {
  std::string device_uri;
  DevicePlace place;
  std::unique_ptr<Lookup> lookup;  // while it is under way
  std::optional<LookupAnswer> answer;
};

@interface HostPrinterFinder ()
- (void)watch;
- (void)unwatch;
@end

@implementation HostPrinterFinder

- (id)initForOwner:(id<HostPrinterFinderOwner>)owner {
  if (!(self = [super init])) return nil;
  _owner = owner;
  _state = new HostPrinterFinderState;
  return self;
}

- (void)dealloc {
  [self stop];
  delete _state;
  [super dealloc];
}

- (void)findDevice:(std::string const &)deviceURI {
  [self stop];
  _state->device_uri = deviceURI;
  _state->place = place_of(deviceURI);
  _state->answer.reset();
  std::string const host = _state->place.host;
  if (_state->place.route == Route::name) {
    _state->lookup = std::make_unique<Lookup>([host] { return look_up_name(host); });
  } else if (_state->place.route == Route::service) {
    _state->lookup = std::make_unique<Lookup>([host] { return look_up_service(host, kAddressLimit); });
  }
  if (_state->lookup) [self watch];
}

- (void)stop {
  [self unwatch];
  _state->lookup.reset();
}

- (BOOL)isReady {
  return _state->place.route != Route::name || _state->answer.has_value();
}

- (NSString *)panelURI {
  if (_state->place.route != Route::name) {
    return _state->place.panel_uri ? ns(*_state->place.panel_uri) : nil;
  }
  bool const found = _state->answer && _state->answer->outcome == Outcome::found;
  return found ? ns(with_address(_state->device_uri, *_state->answer->address)) : nil;
}

- (AddressStatus)status {
  return address_status(_state->place, _state->answer);
}

// The end of a question, or of the patience with it.

- (void)watch {
  NSArray *const modes = [NSArray arrayWithObject:NSDefaultRunLoopMode];
  int const descriptor = _state->lookup->take_descriptor();
  if (descriptor >= 0) {
    // The toolkit's loop sleeps until a descriptor speaks.
    _answered = [[NSFileHandle alloc] initWithFileDescriptor:descriptor closeOnDealloc:YES];
    [[NSNotificationCenter defaultCenter] addObserver:self
                                             selector:@selector(answered:)
                                                 name:NSFileHandleDataAvailableNotification
                                               object:_answered];
    [_answered waitForDataInBackgroundAndNotifyForModes:modes];
  }
  // Without a descriptor the answer is there already.
  NSTimeInterval const limit = descriptor >= 0 ? static_cast<NSTimeInterval>(kAddressLimit.count()) : 0;
  [self performSelector:@selector(giveUp) withObject:nil afterDelay:limit inModes:modes];
}

- (void)unwatch {
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  if (!_answered) return;
  [[NSNotificationCenter defaultCenter] removeObserver:self name:nil object:_answered];
  [_answered closeFile];
  [_answered autorelease];
  _answered = nil;
}

- (void)take:(LookupAnswer const &)answer {
  _state->answer = answer;
  [self stop];
  [_owner finderDidAnswer:self];
}

- (void)answered:(NSNotification *)notification {
  if (!_state->lookup) return;
  if (auto const answer = _state->lookup->answer()) [self take:*answer];
}

- (void)giveUp {
  if (!_state->lookup) return;
  auto const answer = _state->lookup->answer();
  std::string const late = "no answer within " + std::to_string(kAddressLimit.count()) + " seconds";
  [self take:answer.value_or(LookupAnswer{Outcome::silent, std::nullopt, late})];
}

@end
