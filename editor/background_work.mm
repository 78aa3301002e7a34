#import "editor/background_work.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <exception>
#include <memory>
#include <thread>

#import "editor/controls.h"
#import "toolkit/controls.h"
#import "toolkit/text.h"

@interface EditorProgress : NSObject {
  NSPanel *_panel;
  NSProgressIndicator *_bar;
  BOOL _cancelled;
}
- (id)initWithText:(NSString *)what canCancel:(BOOL)canCancel;
- (NSPanel *)panel;
- (BOOL)cancelled;
- (void)showShare:(double)share;
@end

@implementation EditorProgress

- (id)initWithText:(NSString *)what canCancel:(BOOL)canCancel {
  if (!(self = [super init])) return nil;
  using namespace fax::editor;
using namespace fax::toolkit;
  using namespace fax::toolkit;
  NSTextField *label = make_label(what);
  CGFloat const line = [label frame].size.height;
  CGFloat const width = std::max<CGFloat>(400, [label frame].size.width + 2 * kMargin), inner = width - 2 * kMargin;
  CGFloat const bottom = canCancel ? kMargin + row_height() + kGap : kMargin;
  _panel = [[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, width, bottom + 28 + line + kMargin)
                                      styleMask:NSTitledWindowMask
                                        backing:NSBackingStoreBuffered
                                          defer:NO];
  [_panel setReleasedWhenClosed:NO];
  [_panel setTitle:ns(tr("Address Book Editor"))];
  NSView *content = [_panel contentView];
  [label setFrame:NSMakeRect(kMargin, bottom + 28, inner, line)];
  [content addSubview:label];
  _bar = [[[NSProgressIndicator alloc] initWithFrame:NSMakeRect(kMargin, bottom + 4, inner, 16)] autorelease];
  [_bar setIndeterminate:NO];
  [_bar setMinValue:0];
  [_bar setMaxValue:1];
  [content addSubview:_bar];
  if (canCancel) {
    NSButton *button = make_button(ns(tr("Cancel")), self, @selector(cancel:));
    [button setKeyEquivalent:@"\e"];
    place_in_row(content, width - kMargin - [button frame].size.width, kMargin, [NSArray arrayWithObject:button], 0);
  }
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
}
- (void)showShare:(double)share {
  [_bar setDoubleValue:share];
}

@end

namespace fax::editor {
namespace {

struct Cancelled {};

struct Work {
  std::function<void(Share const &)> body;
  std::atomic<double> share{0};
  std::atomic<bool> cancelled{false}, over{false};
  std::exception_ptr thrown;

  void run() {
    try {
      body([this](double now) {
        if (cancelled) throw Cancelled();
        share = now;
      });
    } catch (Cancelled const &) {
    } catch (...) {
      thrown = std::current_exception();
    }
    over = true;
  }
};

Ending show_until_over(NSString *what, Cancel cancel, Work &work) {
  EditorProgress *progress = [[EditorProgress alloc] initWithText:what canCancel:cancel == Cancel::possible];
  NSModalSession session = [NSApp beginModalSessionForWindow:[progress panel]];
  while (!work.over && ![progress cancelled]) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [NSApp runModalSession:session];
    [progress showShare:work.share];
    [[NSRunLoop currentRunLoop] runMode:NSModalPanelRunLoopMode
                             beforeDate:[NSDate dateWithTimeIntervalSinceNow:0.03]];
    [pool release];
  }
  Ending const ending = work.over ? Ending::done : Ending::cancelled;
  [NSApp endModalSession:session];
  [progress release];
  return ending;
}

}  // namespace

Ending run_aside(NSString *what, Cancel cancel, std::function<void(Share const &)> body) {
  auto work = std::make_shared<Work>();
  work->body = std::move(body);
  std::thread([work] { work->run(); }).detach();
  // A short work is over before a window could be read.
  for (int tick = 0; tick < 20 && !work->over; ++tick) std::this_thread::sleep_for(std::chrono::milliseconds(10));
  if (!work->over && show_until_over(what, cancel, *work) == Ending::cancelled) {
    work->cancelled = true;
    return Ending::cancelled;
  }
  if (work->thrown) std::rethrow_exception(work->thrown);
  return Ending::done;
}

}  // namespace fax::editor
