// A good guest: what the bundle leaves in the host's process when the host has let its panels go.
#import "bundle_fixture.h"

#import <GNUstepBase/NSDebug+GNUstepBase.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <new>
#include <stdexcept>
#include <unistd.h>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>

// By the library that allocated: what these keep to themselves is theirs, fonts and class tables above all. Objects are
// allocated in GNUstep, ours too; those are counted.
extern "C" __attribute__((visibility("default"))) char const *__lsan_default_suppressions() {
  return "leak:libfontconfig\nleak:libgnustep\nleak:libobjc\nleak:libX11\n";
}
#endif

// A host whose callback operation of that name throws: an Objective-C exception, or a C++ one.
@interface ThrowingHost : TestHost {
 @public
  std::string *throwing;
  BOOL inCpp;
}
@end

@implementation ThrowingHost
- (void)call:(char const *)name {
  if (throwing == nullptr || *throwing != name) return;
  if (inCpp) throw std::runtime_error("by the host");
  [NSException raise:NSInternalInconsistencyException format:@"by the host"];
}
- (ppd_file_t *)ppdFile {
  [self call:"ppdFile"];
  return [super ppdFile];
}
- (PMPrintSettings)printSettings {
  [self call:"printSettings"];
  return [super printSettings];
}
- (PMPrintSession)printSession {
  [self call:"printSession"];
  return [super printSession];
}
- (PMPrinter)PMPrinter {
  [self call:"PMPrinter"];
  return [super PMPrinter];
}
- (BOOL)willChangePPDOptionKeyValue:(NSString *)keyword ppdChoice:(NSString *)choice {
  [self call:"willChange"];
  return [super willChangePPDOptionKeyValue:keyword ppdChoice:choice];
}
@end

namespace {

using test::utf8;

// Who observes which notification of whom. The center does not tell, so its own three ways in and out are followed.
struct Observation {
  void *observer, *object;
  std::string name, of;
};
std::vector<Observation> observations;

void (*own_add)(id, SEL, id, SEL, NSString *, id);
void add(id center, SEL command, id observer, SEL selector, NSString *name, id object) {
  observations.push_back({observer, object, utf8(name), object_getClassName(observer)});
  own_add(center, command, observer, selector, name, object);
}

void (*own_remove)(id, SEL, id, NSString *, id);
void remove(id center, SEL command, id observer, NSString *name, id object) {
  std::erase_if(observations, [&](Observation const &one) {
    return one.observer == observer && (name == nil || one.name == utf8(name)) && (object == nil || one.object == object);
  });
  own_remove(center, command, observer, name, object);
}

void (*own_remove_all)(id, SEL, id);
void remove_all(id center, SEL command, id observer) {
  std::erase_if(observations, [&](Observation const &one) { return one.observer == observer; });
  own_remove_all(center, command, observer);
}

std::size_t threads() {
  auto const all = std::filesystem::directory_iterator("/proc/self/task");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

double resident_mib() {
  long total = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  return static_cast<double>(resident * sysconf(_SC_PAGESIZE)) / (1 << 20);
}

// Living objects of each class; GNUstep counts them.
std::map<std::string, int> living() {
  std::map<std::string, int> counts;
  Class *const all = GSDebugAllocationClassList();
  for (Class *each = all; *each != Nil; ++each)
    if (int const count = GSDebugAllocationCount(*each); count != 0) counts[class_getName(*each)] = count;
  NSZoneFree(NSDefaultMallocZone(), all);
  return counts;
}

std::map<std::string, int> windows() {
  std::map<std::string, int> counts;
  NSEnumerator *each = [[NSApp windows] objectEnumerator];
  while (id window = [each nextObject]) ++counts[object_getClassName(window)];
  return counts;
}

std::map<std::string, int> observers() {
  std::map<std::string, int> counts;
  for (auto const &one : observations) ++counts[one.of + " of " + one.name];
  return counts;
}

std::string growth(std::map<std::string, int> const &before, std::map<std::string, int> const &after) {
  std::string text;
  for (auto const &[name, count] : after) {
    auto const found = before.find(name);
    int const more = count - (found != before.end() ? found->second : 0);
    if (more > 0) text += " " + name + " +" + std::to_string(more);
  }
  return text;
}

class GuestTest : public test::BundleTest {
 protected:
  GuestTest() {
    GSDebugAllocationActive(YES);
    own_add = test::replace([NSNotificationCenter class], @selector(addObserver:selector:name:object:), &add);
    own_remove = test::replace([NSNotificationCenter class], @selector(removeObserver:name:object:), &remove);
    own_remove_all = test::replace([NSNotificationCenter class], @selector(removeObserver:), &remove_all);
  }
  ~GuestTest() override {
    test::replace([NSNotificationCenter class], @selector(addObserver:selector:name:object:), own_add);
    test::replace([NSNotificationCenter class], @selector(removeObserver:name:object:), own_remove);
    test::replace([NSNotificationCenter class], @selector(removeObserver:), own_remove_all);
  }

  // A panel that is shown, printed from by way of both dialogs, and let go while its fields are being edited.
  void visit() {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    NSWindow *host = [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 600, 400)
                                                 styleMask:NSTitledWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
    id panel = this->panel();
    [[host contentView] addSubview:[panel panelView]];
    [host orderFront:nil];
    [host makeFirstResponder:[panel valueForKey:@"senderNameTextField"]];
    [panel willShow];
    depth_ = 0;
    in_modal_session([&] { use([panel valueForKey:@"detailedFaxSettingContoller"]); });
    EXPECT_TRUE([panel shouldPrint]);
    [[panel panelView] removeFromSuperview];
    [host orderOut:nil];
    [host release];
    [pool release];
    settle();
  }

  // What the toolkit puts off until its loop comes round.
  static void settle() {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    NSDate *now = [NSDate date];
    for (NSString *mode : {NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode})
      while (NSEvent *event = [NSApp nextEventMatchingMask:NSAnyEventMask untilDate:now inMode:mode dequeue:YES])
        [NSApp sendEvent:event];
    [pool release];
  }

 private:
  void use(id fax) {
    id const book = [fax valueForKey:@"addressBookController"];
    if (++depth_ > 1) return [book performSelector:@selector(saveAddressSetting:) withObject:nil], void();
    [fax setValue:@"123" forKey:@"addressPhoneNumber"];
    [fax addAddressInfo:nil];
    [fax performSelector:@selector(lookupAddressBook:) withObject:nil];
    NSWindow *window = [fax valueForKey:@"faxSettingPanel"];
    [window makeFirstResponder:[fax valueForKey:@"addressNameTextField"]];
    [window makeFirstResponder:[fax valueForKey:@"passwordTextField"]];
    [[window contentView] display];
    [fax startSending:nil];
  }

  int depth_ = 0;
};

// Small objects that the toolkit itself never lets go: two elements of every document it reads, with their texts and
// attributes, and the copy of a column's values that it makes for an observer.
bool toolkits_own(std::string const &name) {
  for (char const *known : {"GSXibElement", "GSCBufferString", "GSDictionary", "GSMutableDictionary", "GSMutableArray",
                            "GSObservableArray", "GSArrayEnumerator", "NSMutableParagraphStyle", "GSToolTips"})
    if (name == known) return true;
  return false;
}

TEST_F(GuestTest, TwoHundredVisitsLeaveNothing) {
  constexpr int kFirst = 20, kVisits = 200;
  for (int visited = 0; visited < kFirst; ++visited) visit();
  auto objects = living();
  auto const seen = windows(), observed = observers();
  std::size_t const running = threads();
  double const resident = resident_mib();
  for (int visited = kFirst; visited < kVisits; ++visited) visit();
  auto left = living();
  std::erase_if(left, [](auto const &one) { return toolkits_own(one.first); });
  // What a visit leaves behind grows with the visits; what the toolkit makes once, whenever that is, does not.
  auto grown_objects = left;
  std::erase_if(grown_objects, [&](auto const &one) { return one.second - objects[one.first] < (kVisits - kFirst) / 10; });
  EXPECT_EQ(growth(objects, grown_objects), "") << "objects";
  EXPECT_EQ(growth(observed, observers()), "") << "observers of notifications";
  EXPECT_EQ(growth(seen, windows()), "") << "windows";
  EXPECT_EQ(threads(), running);
  for (auto const &[name, count] : left)
    if (name.find("vexolinddirectfax") != std::string::npos) ADD_FAILURE() << count << " of " << name << " live on";
  double const grown = resident_mib() - resident;
  std::printf("resident size grown by %.2f MiB from visit %d to %d\n", grown, kFirst, kVisits);
#ifdef __SANITIZE_ADDRESS__
  // The sanitizer keeps freed memory, but knows what nobody points to any more.
  EXPECT_EQ(__lsan_do_recoverable_leak_check(), 0);
#else
  EXPECT_LE(grown, 4.0);
#endif
}

// Every operation of a panel that a host calls, its view's actions included.
using Operation = std::function<void(id panel)>;
std::map<std::string, Operation> const kOperations{
    {"panelView", [](id panel) { [panel panelView]; }},
    {"panelName", [](id panel) { EXPECT_NE([panel panelName], nil); }},
    {"panelKind", [](id panel) { EXPECT_NE([panel panelKind], nil); }},
    {"supportedPPDOptionKeys", [](id panel) { [panel supportedPPDOptionKeys]; }},
    {"willShow", [](id panel) { [panel willShow]; }},
    {"shouldHide", [](id panel) { EXPECT_TRUE([panel shouldHide]); }},
    {"shouldShowHelp", [](id panel) { EXPECT_FALSE([panel shouldShowHelp]); }},
    {"didChange", [](id panel) { [panel PPDOptionKeyValueDidChange:@"QXFaxSenderMode" ppdChoice:@"Printer"]; }},
    {"restore", [](id panel) { EXPECT_TRUE([panel restoreValuesAndReturnError:NULL]); }},
    {"save", [](id panel) { [panel saveValuesAndReturnError:NULL]; }},
    {"summaryInfo", [](id panel) { [panel summaryInfo]; }},
    {"shouldPrint", [](id panel) { [panel shouldPrint]; }},
    {"setDefaults", [](id panel) { [panel setDefaults:nil]; }},
    {"uiValueDidChange",
     [](id panel) { [panel uiValueDidChange:[[panel panelView] valueForKey:@"imageQualityPopup"]]; }},
    {"launchAddressBook", [](id panel) { [panel launchAddressBook:nil]; }},
};

TEST_F(GuestTest, NothingThatTheHostThrowsComesBackToIt) {
  id factory = [[[test::class_named("DirectFaxPdePlugin") alloc] init] autorelease];
  [factory initWithBundle:test::bundle()];
  ThrowingHost *host = [[[ThrowingHost alloc] init] autorelease];
  host->ppd = ppd_.get();
  auto const panels = [&] {
    return [factory PDEPanelsForType:@"BDB091F4-E57F-11D3-B5CC-0050E4603277" withHostInfo:host];
  };
  for (char const *name : {"ppdFile", "printSettings", "printSession", "PMPrinter", "willChange"}) {
    for (BOOL const in_cpp : {NO, YES}) {
      std::string const thrown = name;
      host->inCpp = in_cpp;
      host->throwing = nullptr;
      id panel = [panels() objectAtIndex:0];
      [panel panelView];
      in_modal_session([&] {
        id fax = [panel valueForKey:@"detailedFaxSettingContoller"];
        [fax setValue:@"1" forKey:@"addressPhoneNumber"];
        [fax startSending:nil];
      });
      host->throwing = const_cast<std::string *>(&thrown);
      for (auto const &[operation, call] : kOperations) EXPECT_NO_THROW(call(panel)) << thrown << " in " << operation;
      EXPECT_NO_THROW(panels()) << thrown;
    }
  }
}

// An exception in the middle of a dialog ends the dialog, not the host; the job does not go out.
TEST_F(GuestTest, ADialogThatThrowsStopsTheJob) {
  id panel = this->panel();
  in_modal_session([] { throw std::bad_alloc(); });
  EXPECT_FALSE([panel shouldPrint]);
  in_modal_session([] { [NSException raise:NSRangeException format:@"in the dialog"]; });
  EXPECT_FALSE([panel shouldPrint]);
  EXPECT_TRUE(fakes().stored_keys.empty());
}

}  // namespace
