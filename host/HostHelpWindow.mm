#import "host/HostHelpWindow.h"

#include <DirectFaxHelp.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "host/help_page.h"

#import "host/controls.h"
#import "host/help_text.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

struct HostHelpState {
  HelpHistory history;
  std::map<std::string, NSUInteger> anchors;  // of the page shown, as places in the text
};

// Escape closes it, whatever has the focus.
@interface HostHelpPanel : NSPanel
@end

@implementation HostHelpPanel
- (void)sendEvent:(NSEvent *)event {
  if ([event type] == NSKeyDown && [[event characters] isEqual:@"\e"]) {
    [self performClose:nil];
    return;
  }
  [super sendEvent:event];
}
@end

static Boolean ShowForAppleHelp(CFURLRef page, CFStringRef anchor, void *context) {
  NSString *path = [reinterpret_cast<NSURL *>(const_cast<__CFURL *>(page)) path];
  NSString *name = reinterpret_cast<NSString *>(const_cast<__CFString *>(anchor));
  return [static_cast<HostHelpWindow *>(context) showPage:path anchor:name];
}

@interface HostHelpWindow ()
- (void)scrollTo:(std::string const &)anchor;
@end

@implementation HostHelpWindow

- (id)init {
  if (!(self = [super init])) return nil;
  _state = new HostHelpState;
  return self;
}

- (void)dealloc {
  DirectFaxSetHelpViewer(nullptr, nullptr);
  [textView setDelegate:nil];
  [panel setDelegate:nil];
  [panel orderOut:nil];
  [panel release];
  delete _state;
  [super dealloc];
}

- (NSPanel *)panel {
  return panel;
}

- (NSTextView *)textView {
  return textView;
}

- (void)serveHelpBooks {
  DirectFaxSetHelpViewer(ShowForAppleHelp, self);
}

- (void)makeWindow {
  if (panel) return;
  NSRect const frame = NSMakeRect(0, 0, 560, 520);
  panel = [[HostHelpPanel alloc] initWithContentRect:frame
                                           styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                                             backing:NSBackingStoreBuffered
                                               defer:NO];
  [panel setReleasedWhenClosed:NO];
  [panel setHidesOnDeactivate:NO];
  [panel setBecomesKeyOnlyIfNeeded:NO];
  // The fax dialog is modal when its Help button opens this window.
  [panel setWorksWhenModal:YES];
  [panel setContentMinSize:NSMakeSize(360, 240)];
  [panel setDelegate:(id)self];
  NSView *content = [panel contentView];
  CGFloat const bottom = 2 * kMargin + kRow;
  scroller = [[[NSScrollView alloc]
      initWithFrame:NSMakeRect(0, bottom, frame.size.width, frame.size.height - bottom)] autorelease];
  [scroller setHasVerticalScroller:YES];
  [scroller setBorderType:NSNoBorder];
  [scroller setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  NSSize const room = [scroller contentSize];
  textView = [[[NSTextView alloc] initWithFrame:NSMakeRect(0, 0, room.width, room.height)] autorelease];
  [textView setEditable:NO];
  [textView setSelectable:YES];
  [textView setRichText:YES];
  [textView setBackgroundColor:[NSColor textBackgroundColor]];
  [textView setTextContainerInset:NSMakeSize(kMargin, kMargin)];
  [textView setMinSize:NSMakeSize(0, room.height)];
  [textView setMaxSize:NSMakeSize(1e7, 1e7)];
  [textView setVerticallyResizable:YES];
  [textView setHorizontallyResizable:NO];
  [textView setAutoresizingMask:NSViewWidthSizable];
  [[textView textContainer] setContainerSize:NSMakeSize(room.width - 2 * kMargin, 1e7)];
  [[textView textContainer] setWidthTracksTextView:YES];
  [textView setLinkTextAttributes:[NSDictionary dictionaryWithObjectsAndKeys:
                                                    [NSColor keyboardFocusIndicatorColor],
                                                    NSForegroundColorAttributeName,
                                                    [NSNumber numberWithInt:NSUnderlineStyleSingle],
                                                    NSUnderlineStyleAttributeName, nil]];
  [textView setDelegate:(id)self];
  [scroller setDocumentView:textView];
  //: Buttons of the help window: to the page before, to the next, and closing it.
  backButton = make_button(ns(tr("Back")), self, @selector(goBack:));
  forwardButton = make_button(ns(tr("Forward")), self, @selector(goForward:));
  closeButton = make_button(ns(tr("Close")), panel, @selector(performClose:));
  [backButton setFrameOrigin:NSMakePoint(kMargin, kMargin)];
  [forwardButton setFrameOrigin:NSMakePoint(NSMaxX([backButton frame]) + kGap, kMargin)];
  [closeButton setFrameOrigin:NSMakePoint(frame.size.width - kMargin - [closeButton frame].size.width, kMargin)];
  [closeButton setAutoresizingMask:NSViewMinXMargin];
  [content addSubview:scroller];
  [content addSubview:backButton];
  [content addSubview:forwardButton];
  [content addSubview:closeButton];
  join_focus([NSArray arrayWithObjects:textView, backButton, forwardButton, closeButton, nil]);
  [panel setInitialFirstResponder:closeButton];
  [panel center];
}

// Draws a page without touching the history. NO when it cannot be read.
- (BOOL)load:(HelpTarget const &)place {
  std::ifstream file{place.path, std::ios::binary};
  if (!file || !std::filesystem::is_regular_file(place.path)) return NO;
  std::string const html{std::istreambuf_iterator<char>{file}, {}};
  auto const page = read_help_page(html);
  if (!page) return NO;
  [self makeWindow];
  CGFloat const width = [scroller contentSize].width - 2 * kMargin - 10;
  HelpText const text = render_help(*page, place.path, width);
  [[textView textStorage] setAttributedString:text.text];
  _state->anchors = text.anchors;
  [panel setTitle:page->title.empty() ? ns(tr("Help")) : ns(page->title)];
  [self scrollTo:place.anchor];
  return YES;
}

- (void)scrollTo:(std::string const &)anchor {
  auto const found = _state->anchors.find(anchor);
  NSPoint top = NSZeroPoint;
  if (found != _state->anchors.end()) {
    NSLayoutManager *layout = [textView layoutManager];
    // The text is laid out bit by bit when it is drawn; until then the view is too low to be scrolled.
    [layout glyphRangeForTextContainer:[textView textContainer]];
    [textView sizeToFit];
    NSRange const glyphs = [layout glyphRangeForCharacterRange:NSMakeRange(found->second, 1) actualCharacterRange:NULL];
    NSRect const line = [layout boundingRectForGlyphRange:glyphs inTextContainer:[textView textContainer]];
    CGFloat const lowest =
        std::max<CGFloat>(0, [textView frame].size.height - [[scroller contentView] bounds].size.height);
    top.y = std::min(line.origin.y + [textView textContainerOrigin].y - 4, lowest);
  }
  [[scroller contentView] scrollToPoint:top];
  [scroller reflectScrolledClipView:[scroller contentView]];
}

- (void)showButtons {
  [backButton setEnabled:_state->history.can_go_back()];
  [forwardButton setEnabled:_state->history.can_go_forward()];
}

- (BOOL)showPage:(NSString *)page anchor:(NSString *)anchor {
  HelpTarget const place{utf8(page), utf8(anchor)};
  if (![self load:place]) return NO;
  _state->history.visit(place);
  [self showButtons];
  [panel makeKeyAndOrderFront:nil];
  return YES;
}

- (void)goBack:(id)sender {
  if (_state->history.can_go_back()) [self load:_state->history.back()];
  [self showButtons];
}

- (void)goForward:(id)sender {
  if (_state->history.can_go_forward()) [self load:_state->history.forward()];
  [self showButtons];
}

- (void)close {
  [panel orderOut:nil];
}

- (BOOL)textView:(NSTextView *)view clickedOnLink:(id)link atIndex:(NSUInteger)index {
  std::string const text = utf8(link);
  if (_state->history.empty()) return NO;
  HelpTarget const place = resolve_help_link(_state->history.current().path, text);
  if (place.path.empty()) return [[NSWorkspace sharedWorkspace] openURL:[NSURL URLWithString:ns(text)]];
  if ([self load:place]) {
    _state->history.visit(place);
    [self showButtons];
  } else {
    NSBeep();
  }
  return YES;
}

- (void)windowWillClose:(NSNotification *)notification {
  // The window below gets the keyboard back; the toolkit leaves it with nobody while a dialog is modal.
  NSWindow *modal = [NSApp modalWindow];
  if (modal) [modal performSelector:@selector(makeKeyWindow) withObject:nil afterDelay:0
                            inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

@end
