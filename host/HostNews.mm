#import "host/HostNews.h"

#include <algorithm>
#include <set>
#include <vector>

#import "toolkit/text.h"

struct HostNewsState {
  std::vector<std::string> unsaid;
  std::set<std::string> told_once;
  bool telling = false;
  bool stopped = false;
};

@implementation HostNews

- (id)initWithAlerts:(id<HostAlerting>)alerts owner:(id<HostNewsOwner>)owner {
  if (!(self = [super init])) return nil;
  _state = new HostNewsState;
  _alerts = [(id)alerts retain];
  _owner = owner;
  return self;
}

- (void)dealloc {
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  [(id)_alerts release];
  delete _state;
  [super dealloc];
}

- (void)tellLater:(std::string const &)sentence {
  auto &unsaid = _state->unsaid;
  if (std::find(unsaid.begin(), unsaid.end(), sentence) == unsaid.end()) unsaid.push_back(sentence);
  NSArray *modes = [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, nil];
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  [self performSelector:@selector(tell) withObject:nil afterDelay:0 inModes:modes];
}

- (void)tellOnce:(std::string const &)sentence {
  if (_state->told_once.insert(sentence).second) [self tellLater:sentence];
}

- (void)stop {
  _state->stopped = true;
}

- (void)tell {
  if (_state->telling || _state->stopped) return;
  _state->telling = true;
  [_owner newsWillBeTold];
  while (!_state->unsaid.empty()) {
    std::string const sentence = _state->unsaid.front();
    _state->unsaid.erase(_state->unsaid.begin());
    [_alerts tell:fax::toolkit::ns(sentence) advice:@""];
  }
  _state->telling = false;
}

@end
