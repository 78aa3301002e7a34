#import "host/HostPrinterFinder.h"

#include <chrono>
#include <functional>
#include <memory>

#include "host/core/address_lookup.h"
#include "host/core/device_place.h"

#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;
using Outcome = LookupAnswer::Outcome;

// What is answered that soon does not have to be waited for with a window that says so.
static std::chrono::milliseconds const kPatience{50};

struct HostPrinterFinderState {
  std::string device_uri;
  DevicePlace place;
  std::unique_ptr<Lookup> lookup;     // while a question is under way
  bool discovery_reached = false;     // a panel can ask for a service without being kept waiting
  std::optional<LookupAnswer> answer;  // the last one
};

@interface HostPrinterFinder ()
- (void)ask:(std::function<LookupAnswer()> const &)question;
- (BOOL)takeAnswer;
- (void)accept:(LookupAnswer const &)answer;
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
  _state->discovery_reached = false;
  std::string const host = _state->place.host;
  if (_state->place.route == Route::name) {
    [self ask:[host] { return look_up_name(host); }];
  } else if (_state->place.route == Route::service) {
    [self ask:reach_discovery];
  }
}

- (void)stop {
  [self unwatch];
  _state->lookup.reset();
}

- (BOOL)isReady {
  switch (_state->place.route) {
    case Route::name: return _state->answer.has_value();
    case Route::service: return _state->discovery_reached || _state->answer;
    default: return YES;
  }
}

- (NSString *)panelURI {
  auto const &place = _state->place;
  auto const &answer = _state->answer;
  if (place.route == Route::name) {
    bool const found = answer && answer->outcome == Outcome::found;
    return found ? ns(with_address(_state->device_uri, *answer->address)) : nil;
  }
  bool const usable = place.panel_uri && (place.route != Route::service || _state->discovery_reached);
  return usable ? ns(*place.panel_uri) : nil;
}

- (AddressStatus)status {
  return address_status(_state->place, _state->answer);
}

// One question after the other.

- (void)ask:(std::function<LookupAnswer()> const &)question {
  _state->lookup = std::make_unique<Lookup>(question);
  if (!_state->lookup->wait(kPatience) || ![self takeAnswer]) [self watch];
}

// Goes on with the answer, if there is one.
- (BOOL)takeAnswer {
  auto const answer = _state->lookup ? _state->lookup->answer() : std::nullopt;
  if (!answer) return NO;
  [self accept:*answer];
  return YES;
}

- (void)accept:(LookupAnswer const &)answer {
  [self stop];
  if (answer.outcome == Outcome::reached) {
    _state->discovery_reached = true;
    std::string const host = _state->place.host;
    [self ask:[host] { return look_up_service(host, kAddressLimit); }];
  } else {
    _state->answer = answer;
  }
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

- (void)answered:(NSNotification *)notification {
  if ([self takeAnswer]) [_owner finderDidAnswer:self];
}

- (void)giveUp {
  if (![self takeAnswer]) {
    bool const unreached = _state->place.route == Route::service && !_state->discovery_reached;
    LookupAnswer const late{unreached ? Outcome::no_discovery : Outcome::silent, std::nullopt,
                            //: A reason, to stand inside a sentence.
                            tr("no answer within {0} seconds", kAddressLimit.count())};
    [self accept:late];
  }
  [_owner finderDidAnswer:self];
}

@end
