#include "dialog_fixture.h"

#include <cstdlib>

#import "host/HostScreenMap.h"
#import "toolkit/text.h"

@implementation SilentAlerts
- (id)init {
  if ((self = [super init])) told = [NSMutableArray new];
  return self;
}
- (void)dealloc {
  [told release];
  [super dealloc];
}
- (void)tell:(NSString *)what advice:(NSString *)advice {
  [told addObject:what];
}
- (NSString *)askPathFor:(NSString *)name {
  return nil;
}
@end

@implementation EndCounter
- (void)dialogDidFinish:(HostDialog *)dialog {
  ++ends;
}
@end

namespace fax::host {

using namespace toolkit;

namespace {

std::vector<std::string> texts_of(NSArray *list) {
  std::vector<std::string> texts;
  for (NSUInteger at = 0; at < [list count]; ++at) texts.push_back(utf8([list objectAtIndex:at]));
  return texts;
}

NSString *label_of_pop_up(NSView *view) {
  for (auto const &window : windows_on_screen()) {
    for (auto const &control : window.controls) {
      if (control.kind == "NSPopUpButton" && control.value == utf8([(id)view titleOfSelectedItem]) &&
          control.items.size() == static_cast<std::size_t>([(id)view numberOfItems]) &&
          control.items.front() == utf8([(id)view itemTitleAtIndex:0])) {
        return ns(control.title);
      }
    }
  }
  return @"";
}

void find_in(NSView *view, NSString *name, id &found) {
  if (found) return;
  if ([view isKindOfClass:[NSPopUpButton class]] && [name isEqual:HostLabelOf(view, [[view window] contentView])]) {
    found = view;
    return;
  }
  if ([view isKindOfClass:[NSPopUpButton class]] && [name isEqual:label_of_pop_up(view)]) found = view;
  NSArray *inner = [view subviews];
  for (NSUInteger at = 0; at < [inner count]; ++at) find_in([inner objectAtIndex:at], name, found);
}

}  // namespace

PrivateCups *Dialog::service_ = nullptr;

void Dialog::SetUpTestSuite() {
  if (!PrivateCups::is_installed()) return;
  service_ = new PrivateCups;
  service_->add_queue("fax", TEST_DATA "/../core/fax.ppd");
  service_->add_queue("plain", "");
  setenv("CUPS_SERVER", service_->server().address.c_str(), 1);
  cupsSetServer(service_->server().address.c_str());
}

void Dialog::TearDownTestSuite() {
  delete service_;
  service_ = nullptr;
}

void Dialog::SetUp() {
  if (!service_) GTEST_SKIP() << "cupsd is not installed";
  pool_ = [NSAutoreleasePool new];
  NSMutableDictionary *shared = [[NSThread mainThread] threadDictionary];
  calls_ = [NSMutableArray array];
  answers_ = [NSMutableDictionary dictionary];
  [shared setObject:calls_ forKey:@"calls"];
  [shared setObject:answers_ forKey:@"answers"];
  alerts_ = [SilentAlerts new];
  owner_ = [EndCounter new];
}

void Dialog::TearDown() {
  if (!service_) return;
  [dialog_ release];
  [alerts_ release];
  [owner_ release];
  [pool_ release];
}

void Dialog::open(std::string const &extension, char const *queue, CommandLine line, void (*change)(DialogRequest &)) {
  auto queues = list_queues(service_->server());
  ASSERT_TRUE(queues);
  auto chosen = choose_queue(queues.value(), queue);
  ASSERT_TRUE(chosen);
  auto ppd = PpdFile::of_queue(service_->server(), queue);
  ASSERT_TRUE(ppd);
  if (ppd.value()) {
    ASSERT_FALSE(ppd.value()->mark_initial({}, line.options));
  }
  line.extension = extension.front() == '/' ? extension : TEST_EXTENSIONS "/" + extension + ".bundle";
  DialogRequest request{service_->server(), queues.value(), chosen.value(), std::move(ppd.value()),
                        Document::of_bytes("%PDF-1.4\nfax", "Report"), line, "/nowhere/faxprint.app"};
  if (change) change(request);
  dialog_ = [[HostDialog alloc] initWithRequest:request owner:owner_ alerts:alerts_];
  [dialog_ show];
  come_round();
}

void Dialog::come_round() {
  [[NSRunLoop currentRunLoop] runMode:NSDefaultRunLoopMode beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.05]];
}

std::vector<std::string> Dialog::calls() const { return texts_of(calls_); }
std::vector<std::string> Dialog::told() const { return texts_of(alerts_->told); }

static id control_now(NSString *name) {
  id found = nil;
  NSArray *windows = [NSApp windows];
  for (NSUInteger at = 0; at < [windows count] && !found; ++at) {
    NSWindow *window = [windows objectAtIndex:at];
    if ([window isVisible]) find_in([window contentView], name, found);
  }
  return found;
}

// A window that the window manager still makes larger does not show all of its controls yet.
id Dialog::control(NSString *name) {
  id found = control_now(name);
  for (int tries = 0; tries < 20 && !found; ++tries) {
    come_round();
    found = control_now(name);
  }
  return found;
}

void Dialog::choose(NSString *popUpName, NSString *title) {
  NSPopUpButton *popUp = control(popUpName);
  ASSERT_TRUE(popUp) << utf8(popUpName);
  ASSERT_GE([popUp indexOfItemWithTitle:title], 0) << utf8(title);
  [popUp selectItemWithTitle:title];
  [NSApp sendAction:[popUp action] to:[popUp target] from:popUp];
}

std::string Dialog::value(NSString *popUpName) const { return utf8([control(popUpName) titleOfSelectedItem]); }

MapWindow Dialog::map() const {
  for (auto const &window : windows_on_screen()) {
    if (window.title == utf8([[dialog_ window] title])) return window;
  }
  return {};
}

MapControl Dialog::mapped(std::string const &title) const {
  for (auto const &control : map().controls) {
    if (control.identifier == title || (!control.label && control.title == title)) return control;
  }
  return {};
}

}  // namespace fax::host
