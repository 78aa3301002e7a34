#import "host/HostStatusWindow.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "host/core/desktop_note.h"

#import "host/controls.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;
using Order = JobNews::Order;

static CGFloat const kLeastInner = 428;
static CGFloat const kLeastDetails = 54;
static CGFloat const kMostDetails = 300;

struct HostStatusWindowState {
  HostStatusWindowState(Server const &server, SubmittedJob const &job)
      : title(job.request.title.empty() ? job.request.document.title() : job.request.title),
        queue(job.request.queue),
        watch(server, job) {}

  std::string title, queue;
  JobWatch watch;
  JobNews news;
  bool ended = false;  // at the last news
};

// Escape closes it, as Return does by its button.
@interface HostStatusPanel : NSWindow
@end

@implementation HostStatusPanel
- (void)sendEvent:(NSEvent *)event {
  if ([event type] == NSKeyDown && [[event characters] isEqual:@"\e"]) {
    [self performClose:nil];
  } else {
    [super sendEvent:event];
  }
}
@end

static NSTextField *Paragraph(void) {
  NSTextField *field = make_label(@"", NSLeftTextAlignment);
  [[field cell] setWraps:YES];
  [[field cell] setLineBreakMode:NSLineBreakByWordWrapping];
  return field;
}

// Of a field's text with its lines broken within the width, with a little to spare. A cell measures every text as if it
// were one line.
static CGFloat HeightOf(NSTextField *field, CGFloat width) {
  NSDictionary *const font = [NSDictionary dictionaryWithObject:[field font] forKey:NSFontAttributeName];
  NSRect const needed = [[field stringValue] boundingRectWithSize:NSMakeSize(width - kGap, 1e6)
                                                          options:NSStringDrawingUsesLineFragmentOrigin
                                                       attributes:font];
  return std::ceil(needed.size.height) + 6;
}

@interface HostStatusWindow ()
- (void)makeWindow;
- (void)layOut;
- (void)listen;
- (void)waitForNews;
- (void)stopListening;
- (void)showNews;
- (NSString *)headline;
- (NSString *)details;
- (void)tellDesktop;
@end

@implementation HostStatusWindow

- (id)initWithServer:(Server const &)server job:(SubmittedJob const &)job owner:(id<HostStatusWindowOwner>)owner {
  if (!(self = [super init])) return nil;
  _owner = owner;
  _state = new HostStatusWindowState(server, job);
  _state->news.number = job.number;
  [self makeWindow];
  [self showNews];
  [self listen];
  return self;
}

- (void)dealloc {
  [self stopListening];
  [_window setDelegate:nil];
  [_window orderOut:nil];
  [_window release];
  delete _state;
  [super dealloc];
}

- (NSWindow *)window {
  return _window;
}

- (void)makeWindow {
  _window = [[HostStatusPanel alloc] initWithContentRect:NSMakeRect(0, 0, kLeastInner + 2 * kMargin, 200)
                                               styleMask:NSTitledWindowMask | NSClosableWindowMask |
                                                         NSMiniaturizableWindowMask
                                                 backing:NSBackingStoreBuffered
                                                   defer:NO];
  [_window setReleasedWhenClosed:NO];
  [_window setDelegate:(id)self];
  _title = make_label(@"", NSLeftTextAlignment);
  _headline = Paragraph();
  [_headline setFont:[NSFont boldSystemFontOfSize:[NSFont systemFontSize] * 1.4]];
  _details = Paragraph();
  _cancelButton = make_button(ns(tr("Cancel Job")), self, @selector(cancelJob:));
  //: The button that sends a job again after it failed.
  _retryButton = make_button(ns(tr("Retry")), self, @selector(retry:));
  _closeButton = make_button(ns(tr("OK")), _window, @selector(performClose:));
  [_closeButton setKeyEquivalent:@"\r"];
  [_cancelButton setToolTip:ns(tr("Takes the job out of the queue."))];
  [_retryButton setToolTip:ns(tr("Sends the same document again with the same settings."))];
  [_closeButton setToolTip:ns(tr("Closes this window. The job goes on."))];
  // Three buttons may be wider than the rest in some languages.
  CGFloat buttons = 4 * kGap;
  for (NSButton *button : {_cancelButton, _retryButton, _closeButton}) buttons += [button frame].size.width;
  _inner = std::max(kLeastInner, buttons);
  NSView *content = [_window contentView];
  for (NSView *view : {(NSView *)_title, (NSView *)_headline, (NSView *)_details, (NSView *)_cancelButton,
                       (NSView *)_retryButton, (NSView *)_closeButton})
    [content addSubview:view];
  join_focus([NSArray arrayWithObjects:_closeButton, _cancelButton, _retryButton, nil]);
  [_window setInitialFirstResponder:_closeButton];
  [_window setDefaultButtonCell:[_closeButton cell]];
}

// From the bottom up. The window grows with what there is to say; its top stays where it is.
- (void)layOut {
  CGFloat const details = std::clamp(HeightOf(_details, _inner), kLeastDetails, kMostDetails);
  CGFloat const headline = HeightOf(_headline, _inner);
  CGFloat const title = HeightOf(_title, _inner);
  CGFloat const right = kMargin + _inner;
  CGFloat top = kMargin;
  [_closeButton setFrameOrigin:NSMakePoint(right - [_closeButton frame].size.width, top)];
  [_cancelButton setFrameOrigin:NSMakePoint(kMargin, top)];
  [_retryButton setFrameOrigin:NSMakePoint(NSMaxX([_cancelButton frame]) + kGap, top)];
  top += kRow + kMargin;
  [_details setFrame:NSMakeRect(kMargin, top, _inner, details)];
  top += details + 4;
  [_headline setFrame:NSMakeRect(kMargin, top, _inner, headline)];
  top += headline + 4;
  [_title setFrame:NSMakeRect(kMargin, top, _inner, title)];
  top += title + kMargin - 4;
  NSRect const before = [_window frame];
  NSRect frame = [_window frameRectForContentRect:NSMakeRect(0, 0, right + kMargin, top)];
  if (NSEqualSizes(frame.size, before.size)) return;
  frame.origin = NSMakePoint(before.origin.x, NSMaxY(before) - frame.size.height);
  [_window setFrame:frame display:NO];
}

- (void)show {
  [_window center];
  [_window makeKeyAndOrderFront:nil];
  draw_now(_window);
}

// The toolkit's loop sleeps until a descriptor speaks.
- (void)listen {
  int const descriptor = _state->watch.copy_descriptor();
  if (descriptor < 0) return;
  _news = [[NSFileHandle alloc] initWithFileDescriptor:descriptor closeOnDealloc:YES];
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(newsCame:)
                                               name:NSFileHandleDataAvailableNotification
                                             object:_news];
  [self waitForNews];
}

- (void)waitForNews {
  [_news waitForDataInBackgroundAndNotifyForModes:[NSArray arrayWithObjects:NSDefaultRunLoopMode,
                                                                            NSModalPanelRunLoopMode, nil]];
}

- (void)stopListening {
  if (!_news) return;
  [[NSNotificationCenter defaultCenter] removeObserver:self name:nil object:_news];
  [_news closeFile];
  [_news autorelease];
  _news = nil;
}

- (void)newsCame:(NSNotification *)notification {
  _state->news = _state->watch.read_news();
  [self showNews];
  [_window displayIfNeeded];
  [_window flushWindow];
  [self tellDesktop];
  [self waitForNews];
}

- (NSString *)headline {
  auto const &news = _state->news;
  if (news.order == Order::cancelling) return ns(tr("Cancelling…"));
  if (news.order == Order::sending_again) return ns(tr("Sending again…"));
  if (!news.trouble.empty()) return ns(tr("The print service does not answer"));
  return ns(news.status.headline);
}

- (NSString *)details {
  auto const &news = _state->news;
  NSMutableArray *lines = [NSMutableArray array];
  if (!news.note.empty()) [lines addObject:ns(news.note)];
  if (!news.trouble.empty()) {
    [lines addObject:ns(news.trouble)];
    [lines addObject:ns(tr("The last that is known of the job: {0}.", news.status.headline))];
    [lines addObject:ns(tr("It is asked again and again."))];
  } else {
    for (auto const &sentence : news.status.details) [lines addObject:ns(sentence)];
  }
  return [lines componentsJoinedByString:@"\n"];
}

- (void)showNews {
  auto const &news = _state->news;
  NSString *const title = ns(_state->title);
  NSString *const details = [self details];
  bool const idle = news.order == Order::none;
  [_window setTitle:ns(tr("Job {0} on the queue {1}", news.number, _state->queue))];
  [_title setStringValue:fitted(title, _inner - kGap)];
  [_title setToolTip:title];
  [_headline setStringValue:[self headline]];
  [_details setStringValue:details];
  [_details setToolTip:details];
  [_cancelButton setEnabled:(idle && news.status.can_cancel) || news.order == Order::sending_again];
  [_retryButton setEnabled:idle && news.status.can_retry];
  // A document that is half sent would be broken off in the middle.
  [_closeButton setEnabled:news.order != Order::sending_again];
  id const focused = [_window firstResponder];
  if ([focused isKindOfClass:[NSButton class]] && ![focused isEnabled]) [_window makeFirstResponder:_closeButton];
  [self layOut];
}

- (void)tellDesktop {
  auto const &news = _state->news;
  bool const ended_before = std::exchange(_state->ended, news.status.over());
  if (!_state->ended || ended_before || news.status.phase == JobPhase::lost) return;
  std::string const reason = news.status.details.empty() ? "" : "\n" + news.status.details.front();
  //: The title of a note: which job, and what became of it.
  post_note({tr("{0}: {1}", utf8([_window title]), news.status.headline),
             utf8([_title stringValue]) + reason, news.status.phase == JobPhase::failed});
}

- (void)cancelJob:(id)sender {
  _state->watch.cancel_job();
}

- (void)retry:(id)sender {
  _state->watch.retry();
}

- (BOOL)windowShouldClose:(id)sender {
  return [_closeButton isEnabled];
}

- (void)windowWillClose:(NSNotification *)notification {
  [self stopListening];
  [_owner statusWindowDidClose:self];
}

@end
