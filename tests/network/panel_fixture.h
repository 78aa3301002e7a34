// The bundle's panel under a host that has nothing but a printer's device URI.
#pragma once
#import <Foundation/Foundation.h>

#include <functional>
#include <string>

@interface NSObject (FaxPanel)
- (void)resolveTargetDevice;
- (void)netServiceDidResolveAddress:(id)service;
- (void)netService:(id)service didNotResolve:(NSDictionary *)error;
@end

namespace test {

// A new panel of the printer at uri; the caller releases it. It resolves its printer while it is made.
id new_panel(std::string const &uri);

// The panel's printerAddress; "(nil)" while it is unknown.
std::string address_of(id panel);

// What the process writes to standard error while work runs.
std::string error_output(std::function<void()> const &work);

using Seconds = double;
Seconds now();

// Runs the main run loop until done answers true, at most this long, with a clock that ticks every 10 ms. The answer is
// the longest time between two ticks: how long the loop was kept from its work.
Seconds run_loop(Seconds limit, std::function<bool()> const &done);

// Network services that are allocated.
int living_services();

}  // namespace test
