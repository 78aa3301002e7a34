// Finds out where the queue's printer is without ever making the dialog wait, and which device URI a panel gets for it.
#pragma once
#import <Foundation/Foundation.h>

#include <string>

#include "host/core/address_status.h"

@class HostPrinterFinder;

@protocol HostPrinterFinderOwner
// Something is known now that was not when -findDevice: returned: the status is another one, and -isReady may be. From the
// run loop, in its default mode: not under an alert, and not while a menu is open.
- (void)finderDidAnswer:(HostPrinterFinder *)finder;
@end

@interface HostPrinterFinder : NSObject {
  struct HostPrinterFinderState *_state;
  NSFileHandle *_answered;
  id<HostPrinterFinderOwner> _owner;
}
// owner is not retained.
- (id)initForOwner:(id<HostPrinterFinderOwner>)owner;
// Begins anew: no answer to an earlier question comes any more.
- (void)findDevice:(std::string const &)deviceURI;
- (void)stop;
// A panel can be made: either nothing has to be looked up for its device URI, or that is over.
- (BOOL)isReady;
// Meaningful when ready; nil for none.
- (NSString *)panelURI;
- (fax::host::AddressStatus)status;
@end
