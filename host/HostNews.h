// Sentences that cannot be told where they come up, in the middle of a panel's call: they are told when the run loop
// comes round.
#pragma once
#import <Foundation/Foundation.h>

#include <string>

#import "host/HostAlerts.h"

@protocol HostNewsOwner
// The run loop came round; the sentences follow.
- (void)newsWillBeTold;
@end

@interface HostNews : NSObject {
  struct HostNewsState *_state;
  id<HostAlerting> _alerts;
  id<HostNewsOwner> _owner;
}
// alerts is retained, owner is not.
- (id)initWithAlerts:(id<HostAlerting>)alerts owner:(id<HostNewsOwner>)owner;
// A sentence that waits already is not told twice.
- (void)tellLater:(std::string const &)sentence;
// Nor is this one when it was ever told.
- (void)tellOnce:(std::string const &)sentence;
// From now on nothing is told.
- (void)stop;
@end
