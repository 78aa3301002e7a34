// A host in a window of its own: the panel, and a button for every question that a host asks.
#pragma once
#import "bundle_fixture.h"

#include "random.h"
#include "rules.h"

#include <functional>
#include <memory>

@interface Stage : NSObject {
 @public
  NSWindow *window;
  TestHost *host;
  id panel;
  monkey::Random *random;
}
- (id)initWithRandom:(monkey::Random *)source;
// Lets the panel go and makes another, with another printer and another mood of the host.
- (void)renew:(id)sender;
// Another mood of the host: what it refuses and lacks. In words.
- (std::string)change;
@end

namespace monkey {

// Ends the program: a rule is broken, in words.
[[noreturn]] void fail(std::string const &fault);

std::string utf8(NSString *text);  // "" for nil
// Everything that the rules judge, read from the windows and the objects behind them.
Seen look(Stage *stage);
// The first view at or below this one, in every tab, that the question is true of; nil when there is none.
NSView *find(NSView *view, std::function<bool(NSView *)> const &question);

}  // namespace monkey
