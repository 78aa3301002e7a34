#import "host/HostHelpWindow.h"

#include <DirectFaxHelp.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>

#include "host/help_page.h"
#include "host/help_search.h"

#import "host/controls.h"
#import "host/help_text.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

struct HostHelpState {
  HelpHistory history;
  std::vector<std::string> books;  // a page of each
  std::vector<HelpHit> hits;       // of the last search
  std::string read;                // the page that was shown last, whatever came after it
  // What is on the screen.
  HelpTarget place;
  HelpPage page;
  CGFloat width = 0;
  std::map<std::string, NSUInteger> anchors;  // as places in the text
  std::vector<NSUInteger> blocks;
};

static constexpr CGFloat kSearchWidth = 220;
// How much of what stands before a place is left in sight.
static constexpr CGFloat kAboveHeading = 4;
static constexpr CGFloat kAboveHit = 80;

static Boolean ShowForAppleHelp(CFURLRef page, CFStringRef anchor, void *context) {
  NSString *path = [reinterpret_cast<NSURL *>(const_cast<__CFURL *>(page)) path];
  NSString *name = reinterpret_cast<NSString *>(const_cast<__CFString *>(anchor));
  return [static_cast<HostHelpWindow *>(context) showPage:path anchor:name];
}

static std::u16string Units(NSString *text) {
  std::u16string units([text length], u'\0');
  [text getCharacters:reinterpret_cast<unichar *>(units.data())];
  return units;
}

@interface HostHelpWindow ()
- (BOOL)load:(HelpTarget const &)place;
- (void)endSearch;
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
  [searchField setDelegate:nil];
  [searchField setTarget:nil];
  [panel setDelegate:nil];
  [panel setKeys:nil];
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

- (void)addBook:(NSString *)page {
  if (page) _state->books.push_back(utf8(page));
}

// The window.

- (void)makePanel:(NSRect)frame {
  panel = [[HostHelpPanel alloc] initWithContentRect:frame
                                           styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                                             backing:NSBackingStoreBuffered
                                               defer:NO];
  [panel setReleasedWhenClosed:NO];
  [panel setHidesOnDeactivate:NO];
  [panel setBecomesKeyOnlyIfNeeded:NO];
  // The fax dialog is modal when its Help button opens this window.
  [panel setWorksWhenModal:YES];
  [panel setContentMinSize:NSMakeSize(540, 300)];
  [panel setDelegate:(id)self];
  [panel setKeys:self];
}

- (void)makeText:(NSRect)frame {
  scroller = [[[NSScrollView alloc] initWithFrame:frame] autorelease];
  [scroller setHasVerticalScroller:YES];
  [scroller setBorderType:NSNoBorder];
  [scroller setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  NSSize const room = [scroller contentSize];
  textView = [[[HostHelpTextView alloc] initWithFrame:NSMakeRect(0, 0, room.width, room.height)] autorelease];
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
}

// right, middle: where its right edge and the middle of its height are.
- (void)makeSearchField:(CGFloat)right middle:(CGFloat)middle {
  searchField = [[NSSearchField new] autorelease];
  CGFloat const height = std::max(kRow, [[searchField cell] cellSize].height);
  [searchField setFrame:NSMakeRect(right - kSearchWidth, std::round(middle - height / 2), kSearchWidth, height)];
  [searchField setToolTip:ns(tr("Searches all pages of the help."))];
  [searchField setTarget:self];
  [searchField setAction:@selector(search:)];
  [searchField setDelegate:(id)self];
  [searchField setAutoresizingMask:NSViewMinXMargin | NSViewMinYMargin];
}

- (void)makeWindow {
  if (panel) return;
  NSRect const frame = NSMakeRect(0, 0, 640, 600);
  [self makePanel:frame];
  //: Buttons of the help window: to the page before, to the next, and closing it.
  backButton = make_button(ns(tr("Back")), self, @selector(goBack:));
  forwardButton = make_button(ns(tr("Forward")), self, @selector(goForward:));
  closeButton = make_button(ns(tr("Close")), panel, @selector(performClose:));
  NSSize const button = [backButton frame].size;
  CGFloat const bar = button.height + 2 * kGap, top = frame.size.height - bar + kGap;
  [backButton setFrameOrigin:NSMakePoint(kMargin, top)];
  [forwardButton setFrameOrigin:NSMakePoint(NSMaxX([backButton frame]) + kGap, top)];
  [backButton setAutoresizingMask:NSViewMinYMargin];
  [forwardButton setAutoresizingMask:NSViewMinYMargin];
  [closeButton setFrameOrigin:NSMakePoint(frame.size.width - kMargin - [closeButton frame].size.width, kGap)];
  [closeButton setAutoresizingMask:NSViewMinXMargin];
  [self makeSearchField:frame.size.width - kMargin middle:top + button.height / 2];
  [self makeText:NSMakeRect(0, bar, frame.size.width, frame.size.height - 2 * bar)];
  NSArray *views = [NSArray arrayWithObjects:backButton, forwardButton, searchField, scroller, closeButton, nil];
  for (NSUInteger at = 0; at < [views count]; ++at) [[panel contentView] addSubview:[views objectAtIndex:at]];
  join_focus([NSArray arrayWithObjects:textView, closeButton, backButton, forwardButton, searchField, nil]);
  [panel setInitialFirstResponder:textView];
  [panel center];
}

// What is in it.

- (void)showButtons {
  [backButton setEnabled:_state->history.can_go_back()];
  [forwardButton setEnabled:_state->history.can_go_forward()];
}

- (void)showSearch:(std::string const &)typed {
  if (utf8([searchField stringValue]) == typed) return;
  if ([searchField currentEditor]) [panel makeFirstResponder:textView];
  [searchField setStringValue:ns(typed)];
}

// The places of the words on the page; marked, unless the page is the list of them.
- (std::vector<TextRange>)markWords {
  HelpTarget const &place = _state->place;
  NSTextStorage *text = [textView textStorage];
  [text removeAttribute:NSBackgroundColorAttributeName range:NSMakeRange(0, [text length])];
  if (place.path.empty() || place.search.empty()) return {};
  auto const places = SearchWords{place.search}.places(Units([text string]));
  for (TextRange const &each : places) {
    [text addAttribute:NSBackgroundColorAttributeName
                 value:[NSColor selectedTextBackgroundColor]
                 range:NSMakeRange(each.start, each.length)];
  }
  return places;
}

- (std::vector<TextRange>)render {
  _state->width = [scroller contentSize].width - 2 * kMargin - 10;
  HelpText const text = render_help(_state->page, _state->place.path, _state->width);
  [[textView textStorage] setAttributedString:text.text];
  [textView setSelectedRange:NSMakeRange(0, 0)];
  _state->anchors = text.anchors;
  _state->blocks = text.blocks;
  return [self markWords];
}

// The character's line below the upper edge, or as near to that as the end of the page lets it.
- (void)scrollToCharacter:(NSUInteger)character below:(CGFloat)above {
  NSLayoutManager *layout = [textView layoutManager];
  // The text is laid out bit by bit when it is drawn; until then the view is too low to be scrolled.
  [layout glyphRangeForTextContainer:[textView textContainer]];
  // Left to itself the view grows with its text, but does not always shrink.
  CGFloat const height = NSMaxY([layout usedRectForTextContainer:[textView textContainer]]) + 2 * kMargin;
  [textView setFrameSize:NSMakeSize([textView frame].size.width, std::max(height, [scroller contentSize].height))];
  // A scroller with nothing to scroll draws nothing, and so leaves its knob on the screen.
  [scroller setNeedsDisplay:YES];
  NSRange const glyphs = [layout glyphRangeForCharacterRange:NSMakeRange(character, 1) actualCharacterRange:NULL];
  NSRect const line = [layout boundingRectForGlyphRange:glyphs inTextContainer:[textView textContainer]];
  [textView scrollTo:line.origin.y + [textView textContainerOrigin].y - (character == 0 ? kMargin : above)];
}

// marks: of the page's words. The place's anchor or, in its block, the first of them.
- (NSUInteger)characterToShow:(std::vector<TextRange> const &)marks {
  HelpTarget const &place = _state->place;
  if (place.block && *place.block < _state->blocks.size()) {
    NSUInteger const block = _state->blocks[*place.block];
    auto const mark = std::find_if(marks.begin(), marks.end(), [&](auto const &each) { return each.start >= block; });
    return mark == marks.end() ? block : mark->start;
  }
  auto const found = _state->anchors.find(place.anchor);
  return found == _state->anchors.end() ? 0 : found->second;
}

- (void)showPage:(HelpPage)page ofPlace:(HelpTarget const &)place {
  [self makeWindow];
  _state->page = std::move(page);
  _state->place = place;
  NSUInteger const character = [self characterToShow:[self render]];
  [panel setTitle:_state->page.title.empty() ? ns(tr("Help")) : ns(_state->page.title)];
  [self showSearch:place.search];
  // The place that was found is where the keyboard goes on from.
  if (place.block) [textView setSelectedRange:NSMakeRange(character, 0)];
  [self scrollToCharacter:character below:place.block ? kAboveHit : kAboveHeading];
}

- (HelpPage)find:(std::string const &)typed {
  std::vector<std::string> books = _state->books;
  NSArray *registered = [(NSArray *)DirectFaxCopyHelpBooks() autorelease];
  for (NSUInteger at = 0; at < [registered count]; ++at) books.push_back(utf8([[registered objectAtIndex:at] path]));
  // The book that is read comes first.
  if (!_state->read.empty()) books.insert(books.begin(), _state->read);
  _state->hits = search_help(read_help_books(books), SearchWords{typed});
  NSString *title = _state->hits.empty() ? ns(tr("Nothing was found for “{0}”.", typed))
                                         : ns(tr("Found for “{0}”", typed));
  return results_page(utf8(title), _state->hits);
}

// Shows a place without touching the history. NO when it cannot be read.
- (BOOL)load:(HelpTarget const &)place {
  if (place.path.empty()) {
    [self showPage:[self find:place.search] ofPlace:place];
    return YES;
  }
  std::ifstream file{place.path, std::ios::binary};
  if (!file || !std::filesystem::is_regular_file(place.path)) return NO;
  std::string const html{std::istreambuf_iterator<char>{file}, {}};
  auto page = read_help_page(html);
  if (!page) return NO;
  _state->read = place.path;
  [self showPage:std::move(*page) ofPlace:place];
  return YES;
}

- (BOOL)visit:(HelpTarget const &)place {
  if (![self load:place]) return NO;
  _state->history.visit(place);
  [self showButtons];
  return YES;
}

- (BOOL)showPage:(NSString *)page anchor:(NSString *)anchor {
  HelpTarget const place{utf8(page), utf8(anchor)};
  if (![self visit:place]) return NO;
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

// Searching.

- (void)focusSearch:(id)sender {
  [searchField selectText:nil];
}

- (void)search:(id)sender {
  std::string const typed = utf8([searchField stringValue]);
  if (_state->history.empty() || typed == _state->history.current().search) return;
  if (SearchWords{typed}.empty()) return [self endSearch];
  HelpTarget const list{"", "", typed};
  if (_state->history.current().path.empty()) {
    _state->history.replace(list);
  } else {
    _state->history.visit(list);
  }
  [self load:list];
  [self showButtons];
}

// Back to the page before the list; on a page with marks, the marks go.
- (void)endSearch {
  HelpTarget place = _state->history.current();
  if (place.search.empty()) return;
  if (place.path.empty()) {
    _state->history.leave();
    [self load:_state->history.current()];
  } else {
    place.search.clear();
    _state->history.replace(place);
    _state->place = place;
    [self markWords];
    [self showSearch:place.search];
  }
  [self showButtons];
}

- (void)leave:(id)sender {
  if (_state->history.current().search.empty()) return [panel performClose:nil];
  [self endSearch];
}

- (BOOL)openHit:(std::size_t)number {
  if (number >= _state->hits.size()) return NO;
  HelpHit const &hit = _state->hits[number];
  HelpTarget const place{hit.path, "", _state->place.search, hit.block};
  return [self visit:place];
}

// In the search field Return opens what was found first, and the arrow down goes to the list.
- (BOOL)control:(NSControl *)control textView:(NSTextView *)editor doCommandBySelector:(SEL)command {
  bool const listed = _state->place.path.empty() && !_state->hits.empty();
  if (sel_isEqual(command, @selector(insertNewline:))) {
    if (!listed) {
      NSBeep();
    } else if ([self openHit:0]) {
      [panel makeFirstResponder:textView];
    }
    return YES;
  }
  if (!listed || !sel_isEqual(command, @selector(moveDown:))) return NO;
  [panel makeFirstResponder:textView];
  return [textView selectLink:+1];
}

- (BOOL)textView:(NSTextView *)view clickedOnLink:(id)link atIndex:(NSUInteger)index {
  std::string const text = utf8(link);
  if (_state->history.empty()) return NO;
  if (_state->place.path.empty() && text.starts_with(kHitLink)) {
    if (![self openHit:std::strtoul(text.c_str() + kHitLink.size(), nullptr, 10)]) NSBeep();
    return YES;
  }
  HelpTarget const place = resolve_help_link(_state->place.path, text);
  if (place.path.empty()) return [[NSWorkspace sharedWorkspace] openURL:[NSURL URLWithString:ns(text)]];
  if (![self visit:place]) NSBeep();
  return YES;
}

// The window's delegate.

- (void)windowDidResize:(NSNotification *)notification {
  if (_state->page.blocks.empty() || [scroller contentSize].width - 2 * kMargin - 10 == _state->width) return;
  NSLayoutManager *layout = [textView layoutManager];
  NSPoint const top = [[scroller contentView] bounds].origin;
  NSUInteger const glyph = [layout glyphIndexForPoint:top inTextContainer:[textView textContainer]];
  NSUInteger const character = [layout characterIndexForGlyphAtIndex:glyph];
  [self render];
  [self scrollToCharacter:character below:kAboveHeading];
}

- (void)windowWillClose:(NSNotification *)notification {
  // The window below gets the keyboard back; the toolkit leaves it with nobody while a dialog is modal.
  NSWindow *modal = [NSApp modalWindow];
  if (modal) [modal performSelector:@selector(makeKeyWindow) withObject:nil afterDelay:0
                            inModes:[NSArray arrayWithObject:NSModalPanelRunLoopMode]];
}

@end
