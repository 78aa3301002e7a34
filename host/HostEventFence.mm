#import "host/HostEventFence.h"

#import <AppKit/AppKit.h>
#import <AppKit/AppKitExceptions.h>

#include "platform/gnustep/repair.h"

#import "host/fence.h"
#import "toolkit/text.h"

using namespace fax::toolkit;

NSString *const HostEventDidFail = @"HostEventDidFail";

namespace {

bool display_is_gone(NSException *raised) {
  return [[raised name] isEqual:NSWindowServerCommunicationException] ||
         [[raised name] isEqual:GSWindowServerInternalException];
}

template <typename Work>
bool survives(Work &&work, std::string (*sentence)(std::string const &reason, id who, SEL what), id who = nil,
              SEL what = nullptr) {
  NSException *raised = fax::host::fenced(work);
  if (!raised) return true;
  if (display_is_gone(raised)) [raised raise];
  NSLog(@"%@: %@", [raised name], [raised reason]);
  [[NSNotificationCenter defaultCenter] postNotificationName:HostEventDidFail
                                                      object:ns(sentence(utf8([raised reason]), who, what))];
  return false;
}

std::string of_dialog(std::string const &reason, id, SEL) { return fax::tr("The dialog failed: {0}", reason); }

std::string of_action(std::string const &reason, id target, SEL action) {
  bool const own = [NSBundle bundleForClass:[target class]] == [NSBundle mainBundle];
  if (own) return of_dialog(reason, target, action);
  return fax::tr("The print dialog extension failed in {0}: {1}", utf8(NSStringFromSelector(action)), reason);
}

fax::Repair<BOOL(SEL, id, id)> send_action{
    "NSApplication", "sendAction:to:from:", [](id self, SEL command, SEL action, id target, id sender) -> BOOL {
      id const receiver = [self targetForAction:action to:target from:sender];
      BOOL sent = NO;
      survives([&] { sent = send_action(self, command, action, receiver, sender); }, of_action, receiver, action);
      return sent;
    }};

fax::Repair<void(NSEvent *)> send_event{"NSApplication", "sendEvent:", [](id self, SEL command, NSEvent *event) {
                                          survives([&] { send_event(self, command, event); }, of_dialog);
                                        }};

// The toolkit catches its own kind of exception here, but not the language's. It would then fire the timer for ever.
fax::Repair<void()> fire{"NSTimer", "fire", [](id self, SEL command) {
                           NSTimer *const timer = [[self retain] autorelease];
                           bool const fired = survives([&] { fire(timer, command); }, of_dialog);
                           if (!fired && [timer timeInterval] <= 0) [timer invalidate];
                         }};

}  // namespace
