// NSNetService, over Avahi: resolving tells the delegate one thing, the address or the failure, and tells it when the run
// loop runs, as on macOS.
//
// - The delegate may release the service in what it is told, though the caller's code goes on with the service.
// - A type is the same with and without the dot at its end; the toolkit refuses what Avahi found, which has none.
// - A time-out is a failure that the delegate is told; the toolkit only stops.
// - What Avahi refuses at once is told in the run loop; the toolkit tells it before -resolveWithTimeout: returns.
// - Without Avahi or its message bus the delegate is told a failure too; the toolkit hands Avahi's library a client that
//   is not there, and that ends the process.
// - A bus or an Avahi that hangs counts as none after a second; the toolkit's questions to them would wait for 25 seconds
//   each, on the main thread.
#import <Foundation/Foundation.h>

#include "platform/gnustep/avahi_answers.h"
#include "platform/gnustep/repair.h"

// Methods of the toolkit's own class for Avahi.
@interface NSNetService (Avahi)
- (void *)client;
- (void)handleError:(int)error;
@end

namespace {

// Avahi's numbers for the failures.
constexpr int kTimeout = -15;
constexpr int kNoDaemon = -26;

// A healthy Avahi answers within a millisecond.
constexpr std::chrono::seconds kPatience{1};

// The object stays until the run loop is done with what it is doing now.
void keep_for_now(id object) { [[object retain] autorelease]; }

// The service that is just being started.
thread_local id starting = nil;
struct Starting {
  explicit Starting(id service) { starting = service; }
  ~Starting() { starting = nil; }
};

// The failure comes as a time-out would, by the timer that -stop puts away.
void fail_soon(id service, int error) {
  NSTimer *timer = [NSTimer scheduledTimerWithTimeInterval:0
                                                    target:service
                                                  selector:@selector(didTimeout:)
                                                  userInfo:[NSNumber numberWithInt:error]
                                                   repeats:NO];
  object_setInstanceVariable(service, "_timer", timer);
}

fax::Repair<void(int)> handle_error{
    "GSAvahiNetService", "handleError:", [](id self, SEL command, int error) {
      if (self == starting) return fail_soon(self, error);
      keep_for_now(self);
      handle_error(self, command, error);
    }};

fax::Repair<void(void *, NSString *, NSString *, NSString *, NSString *, NSData *, NSInteger, NSData *, int, int)> found{
    "GSAvahiNetService",
    "avahiResolver:foundServiceWithName:type:domain:hostName:address:port:txtRecord:ifIndex:protocol:",
    [](id self, SEL command, void *resolver, NSString *name, NSString *type, NSString *domain, NSString *host,
       NSData *address, NSInteger port, NSData *text, int interface, int protocol) {
      keep_for_now(self);
      NSString *const own = [(NSNetService *)self type];
      if ([[type stringByAppendingString:@"."] isEqualToString:own]) type = own;
      found(self, command, resolver, name, type, domain, host, address, port, text, interface, protocol);
    }};

// Flags are set only where the toolkit is content to wait for an Avahi that comes later.
fax::Repair<void(int, int *)> set_up_client{
    "GSAvahiClient", "setupClientWithFlags:andReportError:", [](id self, SEL command, int flags, int *error) {
      if (flags != 0 || fax::avahi_answers(kPatience)) return set_up_client(self, command, flags, error);
      if (error != nullptr) *error = kNoDaemon;
    }};

// The timer's message.
fax::Repair<void(NSTimer *)> did_timeout{
    "GSAvahiNetService", "didTimeout:", [](id self, SEL, NSTimer *timer) {
      NSNumber *error = [timer userInfo];
      [(NSNetService *)self handleError:error != nil ? [error intValue] : kTimeout];
    }};

fax::Repair<void(NSTimeInterval)> resolve{
    "GSAvahiNetService", "resolveWithTimeout:", [](id self, SEL command, NSTimeInterval timeout) {
      if ([(NSNetService *)self client] == NULL) return fail_soon(self, kNoDaemon);
      Starting const now(self);
      resolve(self, command, timeout);
    }};

// What waits for Avahi's connection, on the run loop: it goes with its entry in the context, but goes on in this method,
// and perhaps in the event that ended the connection.
fax::Repair<void()> remove_watcher{
    "GSAvahiWatcher", "removeFromContext", [](id self, SEL command) {
      keep_for_now(self);
      remove_watcher(self, command);
    }};

fax::Repair<void()> remove_timer{
    "GSAvahiTimer", "removeFromContext", [](id self, SEL command) {
      keep_for_now(self);
      remove_timer(self, command);
    }};

}  // namespace
