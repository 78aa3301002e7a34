// A monkey at the fax dialogs: `monkey -actions N -seed N` works the real windows of the bundle with random events, in a world
// that changes and fails, and looks after every action whether all rules hold. The same seed does the same again.
#import "hand.h"
#import "stage.h"
#include "world.h"

#import <GNUstepGUI/GSDisplayServer.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <map>
#include <unistd.h>

namespace {

using Clock = std::chrono::steady_clock;

int compare(std::string const &one, std::string const &other) {
  return static_cast<int>([test::ns(one) caseInsensitiveCompare:test::ns(other)]);
}

// The pop-ups of one panel, each with a menu that can be put on the screen in two ways.
constexpr std::size_t kMostMenus = 12;

class Monkey {
 public:
  Monkey(long actions, unsigned long seed)
      : actions_(actions), seed_(seed), random_(seed), world_(random_), rules_(compare),
        stage_([[Stage alloc] initWithRandom:&random_]) {}

  // The application has nothing left to do: the action before is over, unless something follows the mouse.
  void turn(NSString *mode) {
    if ([mode isEqualToString:NSEventTrackingRunLoopMode]) return follow();
    tracked_ = 0;
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    monkey::Seen const seen = monkey::look(stage_);
    note(digest(seen));
    meet(seen);
    if (std::string const fault = rules_.broken(seen); !fault.empty()) fail(fault);
    check_windows(seen);
    if (done_++ >= actions_) end();
    NSWindow *top = [NSApp modalWindow] != nil ? [NSApp modalWindow] : stage_->window;
    // Whoever clicks and types there has it in front.
    if (![top isKeyWindow]) [top makeKeyAndOrderFront:nil];
    did(random_.one_in(20)   ? world_.change()
        : random_.one_in(30) ? [stage_ change]
                             : monkey::act(random_, top));
    wake();
    [pool release];
  }

  [[noreturn]] void fail(std::string const &fault) {
    std::printf("broken: %s\nseed %lu, action %ld; the last actions:\n", fault.c_str(), seed_, done_);
    for (auto const &one : last_) std::printf("  %s\n", one.c_str());
    std::fflush(stdout);
    _exit(1);
  }

 private:
  // Something follows the mouse until its button comes up.
  void follow() {
    if (++tracked_ > 100) fail("something follows the mouse for ever");
    if (!monkey::choose_in_menu(random_)) monkey::click(stage_->window, NSZeroPoint);
  }

  // A world that changed is no event; the loop goes on with one that says nothing.
  void wake() {
    [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:[stage_->window windowNumber]
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
  }

  void did(std::string const &action) {
    last_.push_back(std::to_string(done_) + ": " + action);
    if (last_.size() > 20) last_.pop_front();
    note(action);
    if (std::getenv("MONKEY_TELLS") != nullptr) std::printf("%s\n", last_.back().c_str());
  }

  // A panel that has gone takes its windows along.
  void check_windows(monkey::Seen const &seen) {
    if (seen.fax || seen.windows.size() > 1) return;
    std::size_t menus = 0;
    std::string others;
    NSEnumerator *each = [[NSApp windows] objectEnumerator];
    while (NSWindow *window = [each nextObject]) {
      std::string const kind = monkey::utf8(NSStringFromClass([window class]));
      // Images are drawn in windows of their own, which the toolkit keeps.
      if (kind == "GSCacheW") continue;
      kind == "NSMenuPanel" ? void(++menus) : void(others += " " + kind);
    }
    if (windows_.empty()) windows_ = others;
    if (others.size() > windows_.size()) fail("windows" + others + ", at the start" + windows_);
    if (menus > kMostMenus) fail(std::to_string(menus) + " menus");
  }

  // For the last line to say where the monkey has been.
  void meet(monkey::Seen const &seen) {
    std::string const place = seen.alert.empty() ? seen.modal : seen.alert;
    if (place != place_ && !place.empty()) ++met_[place];
    place_ = place;
    for (auto const &action : seen.ran) ++met_[action];
    long &most = met_["most destinations"];
    most = std::max(most, static_cast<long>(seen.destinations.rows.size()));
    bool const full = seen.destinations.rows.size() == monkey::kMostDestinations;
    if (full && !full_) ++met_["full list"];
    full_ = full;
  }

  static std::string digest(monkey::Seen const &seen) {
    std::string text = seen.modal + seen.alert + seen.number;
    for (auto const *list : {&seen.destinations, &seen.file_entries, &seen.printer_entries}) {
      for (auto const &row : list->rows) text += row.name + row.number;
      text += std::to_string(list->selected);
    }
    return text;
  }
  void note(std::string const &text) {
    for (unsigned char const byte : text) trace_ = (trace_ ^ byte) * 1099511628211u;
  }

  [[noreturn]] void end() {
    double const seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    std::printf("seed %lu: %ld actions, no rule broken, %.0f actions/s, trace %016llx\n", seed_, actions_,
                static_cast<double>(actions_) / seconds, static_cast<unsigned long long>(trace_));
    for (auto const &[what, times] : met_) std::printf("  %ld x %s\n", times, what.c_str());
    std::fflush(stdout);
    world_.~World();
    _exit(0);
  }

  long actions_, done_ = 0;
  unsigned long seed_;
  monkey::Random random_;
  monkey::World world_;
  monkey::Rules rules_;
  Stage *stage_;
  std::deque<std::string> last_;
  std::uint64_t trace_ = 14695981039346656037u;
  std::string windows_;  // kinds of those that are there without a dialog
  std::map<std::string, long> met_;
  std::string place_;
  bool full_ = false;
  int tracked_ = 0;
  Clock::time_point start_ = Clock::now();
};

Monkey *the_monkey = nullptr;

// Every loop of the toolkit takes its events here: the main one, those of modal windows, and those that follow the mouse.
using GetEvent = NSEvent *(*)(id, SEL, unsigned, NSDate *, NSString *, BOOL);
GetEvent own_get_event;
NSEvent *get_event(id server, SEL command, unsigned mask, NSDate *limit, NSString *mode, BOOL dequeue) {
  for (;;) {
    NSEvent *event = own_get_event(server, command, mask, [NSDate distantPast], mode, dequeue);
    if (event != nil || [limit timeIntervalSinceNow] <= 0) return event;
    the_monkey->turn(mode);
  }
}

void (*own_raise)(NSException *, SEL);
void raised(NSException *exception, SEL command) {
  the_monkey->fail("exception " + monkey::utf8([exception name]) + ": " + monkey::utf8([exception reason]));
  own_raise(exception, command);
}

}  // namespace

void monkey::fail(std::string const &fault) { the_monkey->fail(fault); }

int main() {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  // Asked for when the application object is made.
  [[NSUserDefaults standardUserDefaults] setObject:@"YES" forKey:@"GSSuppressAppIcon"];
  [NSApplication sharedApplication];
  [NSApp finishLaunching];
  // The toolkit takes a bare argument for a document to open.
  NSUserDefaults *arguments = [NSUserDefaults standardUserDefaults];
  if ([arguments integerForKey:@"actions"] <= 0) {
    std::fprintf(stderr, "usage: monkey -actions N -seed N\n");
    return 2;
  }
  Monkey monkey([arguments integerForKey:@"actions"], static_cast<unsigned long>([arguments integerForKey:@"seed"]));
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  the_monkey = &monkey;
  own_get_event = test::replace([GSCurrentServer() class],
                                @selector(getEventMatchingMask:beforeDate:inMode:dequeue:), &get_event);
  own_raise = test::replace([NSException class], @selector(raise), &raised);
  [NSApp run];
  [pool release];
}
