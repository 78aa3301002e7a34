#import "host/HostPreview.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <memory>

#include "host/core/background.h"
#include "host/core/preview_work.h"

#import "host/HostProgress.h"
#import "host/controls.h"
#import "toolkit/gnustep_texts.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

static CGFloat const kWidth = 222;      // of the pane: a page of A4 as high as the window is at least
static CGFloat const kTextRow = 18;
static CGFloat const kSmallButton = 32;
static NSTimeInterval const kPatience = 0.15;  // so long the last page stays while the next one is drawn
static NSTimeInterval const kSettled = 0.2;    // after so long without a change the window's size is the one meant

struct HostPreviewState {
  explicit HostPreviewState(DialogRequest const &request)
      : plan({request.document}), tool(request.application / "faxpages"), server(request.server) {
    for (auto const &document : request.further) plan.add(document);
    plan.use_range(request.command_line.pages);
  }

  PrintPlan plan;
  PageTool tool;
  Server server;
  int page = 1;
  bool drawn = false;  // the page at the size that there is room for
  bool running = false;
  std::unique_ptr<Background> work;
  std::shared_ptr<PreviewAnswer> answer;
};

namespace {

Result<Document> prepared(PrintPlan &plan, HostPreviewState const &state) {
  std::optional<Result<Document>> outgoing;
  run_with_progress(ns(tr("Preparing the pages.")), [&](ProgressCall const &progress) {
    outgoing = plan.prepare(state.tool, state.server, [&] { return !progress(0, 0); });
  });
  return *outgoing;
}

}  // namespace

@interface HostPreview ()
- (void)makeControls;
- (void)layOut;
- (void)fillDocuments;
- (void)showState;
- (void)take:(fax::host::PreviewAnswer const &)answer;
- (void)goOn;
- (void)drop;
- (void)turnToChosenPage;
@end

// Lays its owner's controls out anew when it becomes larger or smaller.
@interface HostPreviewPane : HostFlippedView {
 @public
  HostPreview *owner;
}
@end

@implementation HostPreviewPane
- (void)resizeSubviewsWithOldSize:(NSSize)size {
  [owner layOut];
}
@end

@implementation HostPreview

- (id)initWithRequest:(DialogRequest const &)request
               window:(HostDialogWindow *)window
               alerts:(id<HostAlerting>)alerts
                owner:(id<HostPreviewOwner>)owner {
  if (!(self = [super init])) return nil;
  _state = new HostPreviewState(request);
  _window = [window retain];
  _alerts = [(id)alerts retain];
  _owner = owner;
  [self makeControls];
  HostPreviewPane *pane = [[[HostPreviewPane alloc] initWithFrame:NSMakeRect(0, 0, kWidth, 460)] autorelease];
  pane->owner = self;
  NSView *const views[] = {pageView,      previousPageButton, pageLabel,            nextPageButton,   rangePopUp,
                           rangeField,    documentPopUp,      removeDocumentButton, addDocumentButton};
  for (NSView *view : views) [pane addSubview:view];
  [_window setSide:pane];
  [self layOut];
  [self fillDocuments];
  [self showState];
  return self;
}

- (void)dealloc {
  [self stop];
  [pageView forgetOwner];
  [rangeField setDelegate:nil];
  static_cast<HostPreviewPane *>([pageView superview])->owner = nil;
  [_drops release];
  [_window release];
  [(id)_alerts release];
  delete _state;
  [super dealloc];
}

- (void)start {
  _state->running = true;
  [self goOn];
  [self performSelector:@selector(takeDrops) withObject:nil afterDelay:0];
}

- (void)takeDrops {
  if (!_drops) _drops = [[HostDrops alloc] initOnWindow:[_window window] owner:self];
}

- (void)stop {
  _state->running = false;
  [_drops stop];
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  [self drop];
  _owner = nil;
}

// Making it.

- (NSButton *)small:(NSString *)title toolTip:(NSString *)tip action:(SEL)action {
  NSButton *button = make_button(title, self, action);
  [button setToolTip:tip];
  [button setFrameSize:NSMakeSize(kSmallButton, kRow)];
  return button;
}

- (void)makeControls {
  pageView = [[[HostPageView alloc] initWithOwner:self] autorelease];
  previousPageButton = [self small:@"‹" toolTip:ns(tr("Previous page")) action:@selector(previousPage:)];
  nextPageButton = [self small:@"›" toolTip:ns(tr("Next page")) action:@selector(nextPage:)];
  pageLabel = make_label(@"", NSCenterTextAlignment);
  rangePopUp = make_pop_up(self, @selector(chooseRange:));
  //: Which pages are sent; a field for their numbers stands behind the second.
  fill_pop_up(rangePopUp, [NSArray arrayWithObjects:ns(tr("All Pages")), ns(tr("Only Pages")), nil]);
  rangeField = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 60, kRow)] autorelease];
  [rangeField setFont:[NSFont systemFontOfSize:0]];
  [rangeField setDelegate:(id)self];
  [rangeField setToolTip:ns(tr("Pages to send, such as 1-3,5"))];
  [rangeField setStringValue:ns(_state->plan.range())];
  [rangePopUp selectItemAtIndex:_state->plan.range().empty() ? 0 : 1];
  documentPopUp = make_pop_up(self, @selector(chooseDocument:));
  removeDocumentButton = [self small:@"−" toolTip:ns(tr("Take this document out of the job"))
                              action:@selector(removeDocument:)];
  addDocumentButton = make_button(ns(tr("Add Document…")), self, @selector(addDocument:));
}

// As wide as the longer choice; the field beside it keeps room for a short range.
- (CGFloat)rangeWidth {
  CGFloat widest = 0;
  for (NSInteger at = 0; at < [rangePopUp numberOfItems]; ++at)
    widest = std::max(widest, text_width([rangePopUp itemTitleAtIndex:at]));
  return std::clamp<CGFloat>(widest + 36, 80, kWidth - 66);
}

- (void)layOut {
  NSSize const size = [[pageView superview] bounds].size;
  CGFloat y = size.height - kRow;
  [addDocumentButton setFrame:NSMakeRect(0, y, size.width, kRow)];
  y -= kGap + kRow;
  [documentPopUp setFrame:NSMakeRect(0, y, size.width - kSmallButton - 4, kRow)];
  [removeDocumentButton setFrameOrigin:NSMakePoint(size.width - kSmallButton, y)];
  y -= kGap + kRow;
  CGFloat const range = [self rangeWidth];
  [rangePopUp setFrame:NSMakeRect(0, y, range, kRow)];
  [rangeField setFrame:NSMakeRect(range + 6, y, size.width - range - 6, kRow)];
  y -= kGap + kRow;
  [previousPageButton setFrameOrigin:NSMakePoint(0, y)];
  [nextPageButton setFrameOrigin:NSMakePoint(size.width - kSmallButton, y)];
  [pageLabel setFrame:NSMakeRect(kSmallButton, y + 3, size.width - 2 * kSmallButton, kTextRow)];
  [pageView setFrame:NSMakeRect(0, 0, size.width, std::max<CGFloat>(20, y - kGap))];
  _state->drawn = false;
  [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(goOn) object:nil];
  [self performSelector:@selector(goOn) withObject:nil afterDelay:kSettled];
}

// What it shows.

- (void)fillDocuments {
  NSMutableArray *titles = [NSMutableArray array];
  for (auto const &planned : _state->plan.documents())
    [titles addObject:[NSString stringWithFormat:@"%d. %@", static_cast<int>([titles count]) + 1,
                                                 ns(planned.source.title())]];
  fill_pop_up(documentPopUp, titles);
  [removeDocumentButton setEnabled:[titles count] > 1];
}

- (BOOL)pageIsLeft {
  auto const chosen = _state->plan.chosen();
  return chosen.ok() && !holds_page(chosen.value(), _state->page);
}

- (NSString *)pageText {
  auto const &plan = _state->plan;
  int const known = plan.pages().value_or(0);
  if (known == 0) return @"";
  return ns(tr("Page {0} of {1}", _state->page, known));
}

- (void)showState {
  auto const &plan = _state->plan;
  int const known = plan.pages().value_or(0);
  [pageLabel setStringValue:[self pageText]];
  [pageView setLeft:[self pageIsLeft]];
  [previousPageButton setEnabled:_state->page > 1];
  [nextPageButton setEnabled:_state->page < known];
  if (auto const spot = plan.spot(_state->page))
    [documentPopUp selectItemAtIndex:static_cast<NSInteger>(spot->document)];
  auto const problem = plan.problem();
  if (problem && !plan.spot(_state->page)) {
    NSString *const still = ns(tr("It can be printed as it is, if the printer can read it."));
    NSString *const what = ns(problem->what);
    [pageView showText:plan.documents().size() == 1 ? [NSString stringWithFormat:@"%@\n\n%@", what, still] : what];
  } else if (!_state->drawn && ![pageView showsPicture]) {
    [pageView showText:ns(tr("Reading the pages…"))];
  }
}

- (void)changed {
  [self showState];
  [_owner previewDidChange];
}

- (NSString *)title {
  return ns(_state->plan.title());
}

- (NSString *)pagesSummary {
  auto const chosen = _state->plan.chosen();
  if (!chosen) return @"";
  int const all = *_state->plan.pages();
  int const sent = pages_in(chosen.value());
  if (sent == all) return [NSString stringWithFormat:@"%d", all];
  //: How many of how many pages, and which.
  return ns(tr("{0} of {1} ({2})", sent, all, page_range_text(chosen.value())));
}

// The work.

- (void)drop {
  [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(goOn) object:nil];
  [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(loseOldPage) object:nil];
  _state->work.reset();
  _state->answer.reset();
  if (!_ended) return;
  [[NSNotificationCenter defaultCenter] removeObserver:self name:nil object:_ended];
  [_ended closeFile];
  [_ended autorelease];
  _ended = nil;
}

- (void)begin:(PreviewWork const &)work {
  auto const answer = std::make_shared<PreviewAnswer>();
  _state->answer = answer;
  _state->work = std::make_unique<Background>(std::bind(work, answer, std::placeholders::_1));
  Descriptor descriptor = _state->work->take_descriptor();
  if (!descriptor) return;
  _ended = [[NSFileHandle alloc] initWithFileDescriptor:descriptor.release() closeOnDealloc:YES];
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(ended:)
                                               name:NSFileHandleDataAvailableNotification
                                             object:_ended];
  [_ended waitForDataInBackgroundAndNotify];
}

- (void)ended:(NSNotification *)notification {
  auto const answer = _state->answer;
  [self drop];
  if (answer) [self take:*answer];
  [self goOn];
  [[_window window] displayIfNeeded];
}

- (void)take:(PreviewAnswer const &)answer {
  if (answer.read) {
    _state->plan.take(answer.document, *answer.read);
    [self turnToChosenPage];
    [self changed];
  }
  if (!answer.picture) return;
  _state->drawn = true;
  if (*answer.picture) {
    [pageView showPicture:answer.picture->value()];
  } else {
    [pageView showText:ns(tr("Page {0} cannot be shown. {1}", _state->page, answer.picture->failure().what))];
  }
  [self showState];
}

// The page that the user looks at comes before the documents behind it.
- (void)goOn {
  if (!_state->running || _ended) return;
  if (!_state->drawn && _state->plan.spot(_state->page)) {
    NSSize const room = [pageView room];
    [self performSelector:@selector(loseOldPage) withObject:nil afterDelay:kPatience];
    [self begin:drawing(_state->plan, _state->page, _state->tool, static_cast<int>(room.width),
                        static_cast<int>(room.height))];
  } else if (auto const at = _state->plan.unread()) {
    [self begin:reading(_state->plan, *at, _state->tool, _state->server)];
  }
}

// The picture would be another page than the line below it says.
- (void)loseOldPage {
  [pageView showText:ns(tr("Reading the pages…"))];
}

- (void)showAnew {
  _state->drawn = false;
  [self drop];
  [self changed];
  [self goOn];
}

- (void)useLayout:(PageLayout const &)layout {
  if (_state->plan.use_layout(layout)) [self showAnew];
}

// Turning pages.

- (void)goToPage:(int)page {
  int const known = _state->plan.pages().value_or(1);
  int const wanted = std::clamp(page, 1, known);
  if (wanted == _state->page) return;
  _state->page = wanted;
  [self showAnew];
}

- (void)turnBy:(int)pages {
  [self goToPage:_state->page + pages];
}

// Whoever chooses pages sees the first one that goes out.
- (void)turnToChosenPage {
  auto const chosen = _state->plan.chosen();
  if (!chosen || holds_page(chosen.value(), _state->page)) return;
  _state->page = chosen.value().front().first;
  _state->drawn = false;
}

- (void)previousPage:(id)sender {
  [self turnBy:-1];
}

- (void)nextPage:(id)sender {
  [self turnBy:1];
}

// Which pages.

- (void)sayWrongRange {
  auto const chosen = _state->plan.chosen();
  bool const wrong = !chosen && chosen.failure().code == ExitCode::usage;
  [_window setStatus:wrong ? ns(chosen.failure().text()) : @""];
}

- (void)takeRange {
  bool const all = [rangePopUp indexOfSelectedItem] <= 0;
  _state->plan.use_range(all ? "" : utf8([rangeField stringValue]));
  [self turnToChosenPage];
  [self showAnew];
}

- (void)chooseRange:(id)sender {
  [self takeRange];
  if ([rangePopUp indexOfSelectedItem] == 1)
    [[_window window] makeFirstResponder:rangeField];
  else
    [_window setStatus:@""];
}

- (void)controlTextDidChange:(NSNotification *)notification {
  [rangePopUp selectItemAtIndex:[[rangeField stringValue] length] ? 1 : 0];
}

- (void)controlTextDidEndEditing:(NSNotification *)notification {
  std::string const before = _state->plan.range();
  bool const all = [rangePopUp indexOfSelectedItem] <= 0;
  if (before == (all ? "" : utf8([rangeField stringValue]))) return;
  [self takeRange];
  [self sayWrongRange];
}

// Which documents.

- (void)chooseDocument:(id)sender {
  auto const at = static_cast<std::size_t>(std::max<NSInteger>(0, [documentPopUp indexOfSelectedItem]));
  [self goToPage:_state->plan.first_page_of(at)];
}

- (void)documentsChanged {
  _state->page = std::clamp(_state->page, 1, std::max(1, _state->plan.pages().value_or(_state->page)));
  [self fillDocuments];
  [[_window window] setTitle:ns(tr("Print \"{0}\"", _state->plan.title()))];
  [self showAnew];
}

- (void)removeDocument:(id)sender {
  _state->plan.remove(static_cast<std::size_t>(std::max<NSInteger>(0, [documentPopUp indexOfSelectedItem])));
  [pageView showText:@""];
  [self documentsChanged];
}

- (void)addPaths:(NSArray *)paths {
  for (NSUInteger at = 0; at < [paths count]; ++at) {
    auto document = Document::open(utf8([paths objectAtIndex:at]));
    if (document)
      _state->plan.add(document.value());
    else
      [_alerts tell:ns(document.failure().what) advice:ns(document.failure().advice)];
  }
  [self documentsChanged];
}

- (void)takeDroppedPaths:(NSArray *)paths others:(NSArray *)others {
  if ([paths count]) [self addPaths:paths];
  if ([others count] == 0) return;
  [_alerts tell:ns(tr("\"{0}\" is no file of this computer.", utf8([others objectAtIndex:0])))
         advice:ns(tr("Save it as a file, then add that."))];
}

- (void)addDocument:(id)sender {
  NSOpenPanel *panel = [NSOpenPanel openPanel];
  [panel setTitle:ns(tr("Add Document"))];
  fit_buttons(panel);
  [panel setAllowsMultipleSelection:YES];
  [panel setCanChooseDirectories:NO];
  if ([panel runModalForTypes:nil] == NSOKButton) [self addPaths:[panel filenames]];
  [[_window window] makeKeyAndOrderFront:nil];
}

// At Print.

- (void)refuse:(Failure const &)failure {
  [_window setStatus:ns(failure.text())];
  if (failure.code == ExitCode::usage)
    [[_window window] makeFirstResponder:rangeField];
  else if (failure.code != ExitCode::cancelled)
    [_alerts tell:ns(failure.what) advice:ns(failure.advice)];
}

- (std::optional<Document>)documentToPrint {
  [self drop];
  PrintPlan plan = _state->plan;
  auto const outgoing = prepared(plan, *_state);
  _state->plan = plan;
  [self changed];
  [self goOn];
  if (outgoing) return outgoing.value();
  [self refuse:outgoing.failure()];
  return std::nullopt;
}

@end
