#import "host/HostProgress.h"

#include <chrono>

#import "host/controls.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

@interface HostProgress : NSObject {
  NSPanel *_panel;
  NSProgressIndicator *_bar;
  NSTextField *_amount;
  NSButton *_cancelButton;
  BOOL _cancelled;
}
- (id)initWithText:(NSString *)what;
- (NSPanel *)panel;
- (BOOL)cancelled;
- (void)showDone:(std::uint64_t)done total:(std::uint64_t)total;
@end

@implementation HostProgress

- (id)initWithText:(NSString *)what {
  if (!(self = [super init])) return nil;
  CGFloat const width = 380;
  CGFloat const inner = width - 2 * kMargin;
  _panel = [[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, width, 136)
                                      styleMask:NSTitledWindowMask
                                        backing:NSBackingStoreBuffered
                                          defer:NO];
  [_panel setReleasedWhenClosed:NO];
  [_panel setTitle:ns(tr("Print"))];
  NSTextField *label = make_label(fitted(what, inner), NSLeftTextAlignment);
  [label setFrame:NSMakeRect(kMargin, 104, inner, 18)];
  _bar = [[[NSProgressIndicator alloc] initWithFrame:NSMakeRect(kMargin, 80, inner, 16)] autorelease];
  [_bar setIndeterminate:NO];
  [_bar setMinValue:0];
  [_bar setMaxValue:1];
  _amount = make_label(@"", NSLeftTextAlignment);
  [_amount setFrame:NSMakeRect(kMargin, 54, inner, 18)];
  _cancelButton = make_button(ns(tr("Cancel")), self, @selector(cancel:));
  [_cancelButton setKeyEquivalent:@"\e"];
  [_cancelButton setFrameOrigin:NSMakePoint(width - kMargin - [_cancelButton frame].size.width, kMargin)];
  NSView *content = [_panel contentView];
  [content addSubview:label];
  [content addSubview:_bar];
  [content addSubview:_amount];
  [content addSubview:_cancelButton];
  [_panel center];
  return self;
}

- (void)dealloc {
  [_panel orderOut:nil];
  [_panel release];
  [super dealloc];
}

- (NSPanel *)panel {
  return _panel;
}

- (BOOL)cancelled {
  return _cancelled;
}

- (void)cancel:(id)sender {
  _cancelled = YES;
  [_cancelButton setEnabled:NO];
  //: What a window says from the press of Cancel until the work has ended.
  [_amount setStringValue:ns(tr("Cancelling…"))];
}

- (void)showDone:(std::uint64_t)done total:(std::uint64_t)total {
  [_bar setDoubleValue:total ? static_cast<double>(done) / static_cast<double>(total) : 0];
  if (_cancelled || total == 0) return;
  auto const kilobytes = [](std::uint64_t bytes) { return static_cast<int>((bytes + 1023) / 1024); };
  [_amount setStringValue:ns(tr("{0} of {1} KB", kilobytes(done), kilobytes(total)))];
}

@end

namespace fax::host {

void run_with_progress(NSString *what, std::function<void(ProgressCall const &)> const &work) {
  struct Shared {
    std::atomic<std::uint64_t> done{0}, total{0};
    std::atomic<bool> cancelled{false}, over{false};
    std::exception_ptr thrown;
  } shared;
  std::thread worker([&] {
    try {
      work([&](std::uint64_t done, std::uint64_t total) {
        shared.done = done;
        shared.total = total;
        return !shared.cancelled;
      });
    } catch (...) {
      shared.thrown = std::current_exception();
    }
    shared.over = true;
  });
  struct Join {
    ~Join() { thread.join(); }
    std::thread &thread;
  } join{worker};

  // A short job is over before a window could be read.
  for (int tick = 0; tick < 20 && !shared.over; ++tick) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  if (!shared.over) {
    HostProgress *progress = [[HostProgress alloc] initWithText:what];
    NSModalSession session = [NSApp beginModalSessionForWindow:[progress panel]];
    while (!shared.over) {
      NSAutoreleasePool *pool = [NSAutoreleasePool new];
      [NSApp runModalSession:session];
      [progress showDone:shared.done total:shared.total];
      if ([progress cancelled]) shared.cancelled = true;
      [[NSRunLoop currentRunLoop] runMode:NSModalPanelRunLoopMode
                               beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.03]];
      [pool release];
    }
    [NSApp endModalSession:session];
    [progress release];
  }
  if (shared.thrown) std::rethrow_exception(shared.thrown);
}

}  // namespace fax::host
