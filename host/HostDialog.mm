#import "host/HostDialog.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>
#include <set>

#include "host/core/job.h"
#include "host/core/summary.h"
#include "host/extension_choice.h"
#include "host/output.h"
#include "host/print_settings.h"

#import "host/HostExtension.h"
#import "host/HostProgress.h"
#import "host/HostScreenMap.h"
#import "host/controls.h"
#import "host/text.h"

using namespace fax::host;
using Clock = std::chrono::steady_clock;

struct HostDialogState {
  explicit HostDialogState(DialogRequest const &given) : request(given) {
    PMCreatePrintSettings(&settings);
    PMCreateSession(&session);
  }
  ~HostDialogState() {
    if (settings) PMRelease(settings);
    if (session) PMRelease(session);
  }
  HostDialogState(HostDialogState const &) = delete;
  HostDialogState &operator=(HostDialogState const &) = delete;

  DialogRequest request;
  std::shared_ptr<PpdFile> ppd;
  std::size_t queue = 0;  // the one shown, in request.queues
  PMPrintSettings settings = nullptr;
  PMPrintSession session = nullptr;
  NSInteger shown = -1;             // the panel shown, as an item of the panel pop-up
  std::vector<std::string> unsaid;  // sentences to tell when the run loop comes round
  std::set<std::string> told;       // problems of extensions that were told
  bool restore_due = false;
  bool telling = false;
  bool printing = false;
  bool at_gate = false;  // between the question shouldPrint and its answer
  bool dialog_timed = false;
  NSWindow *top = nil;       // the modal window that came up last; only compared, never sent anything unless visible
  NSWindow *under = nil;     // the window that top was put above
  bool finished = false;
  ExitCode exit_code = ExitCode::cancelled;
  Clock::time_point print_pressed;
  std::optional<double> first_dialog_ms;
  NSSize smallest = {560, 470};
};

static double MillisecondsSince(Clock::time_point start) {
  return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

static NSString *const kStatusNone = @"";

@interface HostDialog ()
- (void)makeWindow;
- (void)layOut;
- (void)fillPopUps;
- (void)dropPanels;
- (void)usePPD:(std::shared_ptr<PpdFile> const &)ppd;
- (void)makePanels;
- (void)sendDestination;
- (BOOL)leavePanel;
- (void)showPanel:(NSInteger)item;
- (void)makeRoomFor:(NSView *)view;
- (void)placePanel;
- (void)joinFocus;
- (void)restorePanel:(HostPanel *)panel;
- (BOOL)savePanel:(HostPanel *)panel;
- (void)refreshSummary;
- (void)tellLater:(std::string const &)sentence;
- (void)tellProblemOnce:(NSString *)problem;
- (void)runPrint;
- (BOOL)panelsLetPrint;
- (BOOL)deliver;
- (BOOL)submitJob;
- (BOOL)saveFile;
- (BOOL)preview;
@end

@implementation HostDialog

- (id)initWithRequest:(DialogRequest const &)request
                owner:(id<HostDialogOwner>)owner
               alerts:(id<HostAlerting>)alerts {
  if (!(self = [super init])) return nil;
  _state = new HostDialogState(request);
  _owner = owner;
  _alerts = [(id)alerts retain];
  _extensions = [NSMutableDictionary new];
  _panels = [NSMutableArray new];
  _features = [[HostFeatures alloc] initWithOwner:self];
  _summary = [HostSummary new];
  _help = [HostHelpWindow new];
  [_help serveHelpBooks];
  [self makeWindow];
  [self fillPopUps];
  auto const &queues = _state->request.queues;
  auto const chosen = std::find_if(queues.begin(), queues.end(),
                                   [&](Queue const &queue) { return queue.name == request.queue.name; });
  _state->queue = chosen == queues.end() ? 0 : static_cast<std::size_t>(chosen - queues.begin());
  [printerPopUp selectItemAtIndex:static_cast<NSInteger>(_state->queue)];
  [self sendDestination];
  [self usePPD:request.ppd];
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(windowBecameKey:)
                                               name:NSWindowDidBecomeKeyNotification
                                             object:nil];
  return self;
}

- (void)dealloc {
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [self dropPanels];
  [window setDelegate:nil];
  [window orderOut:nil];
  [window release];
  [_features release];
  [_summary release];
  [_help release];
  [_panels release];
  [_extensions release];
  [(id)_alerts release];
  delete _state;
  [super dealloc];
}

- (NSWindow *)window {
  return window;
}

- (ExitCode)exitCode {
  return _state->exit_code;
}

- (NSString *)status {
  return [statusLine toolTip] ? [statusLine toolTip] : kStatusNone;
}

- (void)setStatus:(NSString *)text {
  [statusLine setToolTip:text];
  [statusLine setStringValue:fitted(text, [statusLine frame].size.width)];
}

// The window and where its controls are.

- (void)makeWindow {
  NSUInteger const style =
      NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask | NSResizableWindowMask;
  NSRect const frame = {NSZeroPoint, _state->smallest};
  window = [[NSWindow alloc] initWithContentRect:frame styleMask:style backing:NSBackingStoreBuffered defer:NO];
  [window setReleasedWhenClosed:NO];
  [window setTitle:HostFormat(@"Print \"%@\"", ns(_state->request.document.title()))];
  HostFlippedView *content = [[[HostFlippedView alloc] initWithFrame:frame] autorelease];
  [window setContentView:content];
  printerLabel = make_label(HostText(@"Printer:"), NSRightTextAlignment);
  printerPopUp = make_pop_up(self, @selector(choosePrinter:));
  destinationLabel = make_label(HostText(@"Destination:"), NSRightTextAlignment);
  destinationPopUp = make_pop_up(self, @selector(chooseDestination:));
  copiesLabel = make_label(HostText(@"Copies:"), NSRightTextAlignment);
  copiesField = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 60, kRow)] autorelease];
  [copiesField setFont:[NSFont systemFontOfSize:0]];
  [copiesField setAlignment:NSRightTextAlignment];
  [copiesField setDelegate:(id)self];
  [copiesField setIntValue:_state->request.command_line.copies];
  copiesStepper = [[[NSStepper alloc] initWithFrame:NSMakeRect(0, 0, 19, kRow)] autorelease];
  [copiesStepper setMinValue:1];
  [copiesStepper setMaxValue:9999];
  [copiesStepper setIncrement:1];
  [copiesStepper setValueWraps:NO];
  [copiesStepper setIntValue:_state->request.command_line.copies];
  [copiesStepper setTarget:self];
  [copiesStepper setAction:@selector(stepCopies:)];
  panelLabel = make_label(HostText(@"Options:"), NSRightTextAlignment);
  panelPopUp = make_pop_up(self, @selector(choosePanel:));
  panelArea = [[[NSBox alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  [panelArea setTitlePosition:NSNoTitle];
  [panelArea setBorderType:NSLineBorder];
  [panelArea setContentViewMargins:NSMakeSize(kGap, kGap)];
  statusLine = make_label(kStatusNone, NSLeftTextAlignment);
  helpButton = make_button(HostText(@"Help"), self, @selector(help:));
  cancelButton = make_button(HostText(@"Cancel"), self, @selector(cancel:));
  printButton = make_button(HostText(@"Print"), self, @selector(printPressed:));
  [cancelButton setKeyEquivalent:@"\e"];
  [printButton setKeyEquivalent:@"\r"];
  NSView *const views[] = {printerLabel, printerPopUp, destinationLabel, destinationPopUp, copiesLabel,
                           copiesField,  copiesStepper, panelLabel,      panelPopUp,       panelArea,
                           statusLine,   helpButton,    cancelButton,    printButton};
  for (NSView *view : views) [content addSubview:view];
  [window setDefaultButtonCell:[printButton cell]];
  [window setInitialFirstResponder:printerPopUp];
  [window setContentMinSize:_state->smallest];
  [window setDelegate:(id)self];
  [self layOut];
  [window center];
}

- (void)layOut {
  NSSize const size = [[window contentView] bounds].size;
  CGFloat labelWidth = 0;
  NSTextField *const labels[] = {printerLabel, destinationLabel, copiesLabel, panelLabel};
  NSView *const controls[] = {printerPopUp, destinationPopUp, copiesField, panelPopUp};
  for (NSTextField *label : labels) labelWidth = std::max(labelWidth, roomy_width([label stringValue]));
  CGFloat const left = kMargin + labelWidth + kGap;
  CGFloat const width = size.width - left - kMargin;
  CGFloat y = kMargin;
  for (std::size_t at = 0; at < std::size(labels); ++at) {
    if (labels[at] == panelLabel) y += kGap;
    [labels[at] setFrame:NSMakeRect(kMargin, y + 3, labelWidth, 18)];
    [controls[at] setFrame:NSMakeRect(left, y, controls[at] == copiesField ? 60 : width, kRow)];
    y += kRow + kGap;
  }
  NSRect const copies = [copiesField frame];
  [copiesStepper setFrameOrigin:NSMakePoint(NSMaxX(copies) + 4, copies.origin.y)];
  CGFloat const buttons = size.height - kMargin - kRow;
  CGFloat const status = buttons - kGap - 18;
  [panelArea setFrame:NSMakeRect(kMargin, y, size.width - 2 * kMargin, std::max<CGFloat>(20, status - kGap - y))];
  [statusLine setFrame:NSMakeRect(kMargin, status, size.width - 2 * kMargin, 18)];
  [helpButton setFrameOrigin:NSMakePoint(kMargin, buttons)];
  CGFloat right = size.width - kMargin - [printButton frame].size.width;
  [printButton setFrameOrigin:NSMakePoint(right, buttons)];
  right -= kGap + [cancelButton frame].size.width;
  [cancelButton setFrameOrigin:NSMakePoint(right, buttons)];
  [self setStatus:[self status]];
  [self placePanel];
  [[window contentView] setNeedsDisplay:YES];
}

- (void)windowDidResize:(NSNotification *)notification {
  [self layOut];
}

- (BOOL)windowShouldClose:(id)sender {
  [self cancel:sender];
  return NO;
}

- (void)fillPopUps {
  NSMutableArray *titles = [NSMutableArray array];
  for (auto const &queue : _state->request.queues) {
    NSString *const name = ns(queue.display_name());
    [titles addObject:queue.fax_capable ? HostFormat(@"%@ (fax)", name) : name];
  }
  fill_pop_up(printerPopUp, titles);
  fill_pop_up(destinationPopUp, [NSArray arrayWithObjects:HostText(@"Printer"), HostText(@"Save as File…"),
                                                          HostText(@"Preview"), nil]);
  [destinationPopUp selectItemAtIndex:static_cast<NSInteger>(_state->request.command_line.destination)];
}

- (void)show {
  [window makeKeyAndOrderFront:nil];
  auto const start = Clock::now();
  [self showPanel:[panelPopUp indexOfSelectedItem]];
  draw_now(window);
  if (_state->request.command_line.timing) {
    std::printf("panel view: %.1f ms\n", MillisecondsSince(start));
    std::fflush(stdout);
  }
}

// Printer, PPD, extension.

- (Queue const &)queue {
  return _state->request.queues.at(_state->queue);
}

- (void)dropPanels {
  [_callback detach];
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    HostPanel *panel = [_panels objectAtIndex:at];
    [panel detach];
  }
  [panelArea setContentView:[[[NSView alloc] initWithFrame:NSZeroRect] autorelease]];
  _state->shown = -1;
  [_panels removeAllObjects];
  [_callback release];
  _callback = nil;
}

// Makes everything that depends on the printer. ppd may be empty.
- (void)usePPD:(std::shared_ptr<PpdFile> const &)ppd {
  [self dropPanels];
  _state->ppd = ppd;
  PMPrinter printer = PMPrinterCreateFromPrinterID(reinterpret_cast<CFStringRef>(ns([self queue].name)));
  _callback = [[HostCallback alloc] initWithPPD:ppd
                                        printer:printer
                                       settings:_state->settings
                                        session:_state->session
                                          owner:self];
  if (printer) PMRelease(printer);
  [self makePanels];
  std::set<std::string> taken;
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    NSArray *keys = [[_panels objectAtIndex:at] supportedKeys];
    for (NSUInteger key = 0; key < [keys count]; ++key) taken.insert(utf8([keys objectAtIndex:key]));
  }
  [_features showPPD:ppd except:taken];
  NSMutableArray *titles = [NSMutableArray array];
  for (NSUInteger at = 0; at < [_panels count]; ++at) [titles addObject:[[_panels objectAtIndex:at] name]];
  [titles addObject:HostText(@"Printer Features")];
  [titles addObject:HostText(@"Summary")];
  fill_pop_up(panelPopUp, titles);
  if (![self queue].fax_capable) [panelPopUp selectItemAtIndex:static_cast<NSInteger>([_panels count])];
  if (![self queue].accepts_jobs) {
    [self setStatus:HostFormat(@"The queue %@ does not accept jobs now.", ns([self queue].name))];
  }
}

- (void)makePanels {
  auto const &request = _state->request;
  auto const path = choose_extension(_state->ppd ? _state->ppd->extension_paths() : std::vector<std::string>{},
                                     request.command_line.extension, [self queue].fax_capable, request.application);
  if (!path) return;
  NSString *const key = ns(path->string());
  HostExtension *extension = [_extensions objectForKey:key];
  if (!extension) {
    extension = [[[HostExtension alloc] initWithPath:key] autorelease];
    [_extensions setObject:extension forKey:key];
  }
  [_panels addObjectsFromArray:[extension panelsForCallback:_callback owner:self]];
  if ([extension problem]) [self tellProblemOnce:[extension problem]];
}

- (void)choosePrinter:(id)sender {
  auto const chosen = static_cast<std::size_t>([printerPopUp indexOfSelectedItem]);
  if (chosen == _state->queue || chosen >= _state->request.queues.size()) return;
  if (![self leavePanel]) {
    [printerPopUp selectItemAtIndex:static_cast<NSInteger>(_state->queue)];
    return;
  }
  [self setStatus:kStatusNone];
  _state->queue = chosen;
  std::shared_ptr<PpdFile> ppd;
  auto read = PpdFile::of_queue(_state->request.server, [self queue].name);
  if (read) {
    ppd = std::move(read.value());
    if (ppd) {
      if (auto failed = ppd->mark_initial([self queue].defaults, _state->request.command_line.options)) {
        [self tellLater:failed->text()];
        ppd->mark_initial([self queue].defaults, {});
      }
    }
  } else {
    [self tellLater:read.failure().text()];
  }
  [self usePPD:ppd];
  [self showPanel:[panelPopUp indexOfSelectedItem]];
}

- (void)sendDestination {
  static PMDestinationType const kTypes[] = {kPMDestinationPrinter, kPMDestinationFile, kPMDestinationPreview};
  NSInteger const at = std::clamp<NSInteger>([destinationPopUp indexOfSelectedItem], 0, 2);
  PMSessionSetDestination(_state->session, _state->settings, kTypes[at], nullptr, nullptr);
}

- (Destination)destination {
  return static_cast<Destination>(std::clamp<NSInteger>([destinationPopUp indexOfSelectedItem], 0, 2));
}

- (void)chooseDestination:(id)sender {
  [self sendDestination];
  [self refreshSummary];
}

// Copies.

// 0 when the field holds no number from 1 to 9999.
- (int)copies {
  NSString *const text =
      [[copiesField stringValue] stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
  NSCharacterSet *const others = [[NSCharacterSet characterSetWithCharactersInString:@"0123456789"] invertedSet];
  if ([text length] == 0 || [text length] > 4 || [text rangeOfCharacterFromSet:others].length > 0) return 0;
  return [text intValue];
}

- (void)stepCopies:(id)sender {
  [copiesField setIntValue:[copiesStepper intValue]];
  [self setStatus:kStatusNone];
  [self refreshSummary];
}

- (void)controlTextDidEndEditing:(NSNotification *)notification {
  if ([notification object] != copiesField) return;
  int const copies = [self copies];
  if (copies > 0) {
    [copiesStepper setIntValue:copies];
    [self setStatus:kStatusNone];
    [self refreshSummary];
  } else {
    [self setStatus:HostText(@"Copies must be a number from 1 to 9999.")];
  }
}

// Panels.

- (HostPanel *)panelAt:(NSInteger)item {
  bool const own = item < 0 || static_cast<NSUInteger>(item) >= [_panels count];
  return own ? nil : [_panels objectAtIndex:static_cast<NSUInteger>(item)];
}

- (BOOL)summaryShown {
  return _state->shown == static_cast<NSInteger>([_panels count]) + 1;
}

// Asks the panel shown whether it may go, and keeps what was typed into it. NO leaves everything as it is.
- (BOOL)leavePanel {
  HostPanel *panel = [self panelAt:_state->shown];
  if (!panel) return YES;
  [window makeFirstResponder:nil];
  if (![panel shouldHide]) {
    [self setStatus:HostFormat(@"\"%@\" has to stay open for now.", [panel name])];
    return NO;
  }
  return [self savePanel:panel];
}

- (void)choosePanel:(id)sender {
  NSInteger const item = [panelPopUp indexOfSelectedItem];
  if (item == _state->shown) return;
  if (![self leavePanel]) {
    [panelPopUp selectItemAtIndex:_state->shown];
    return;
  }
  [self setStatus:kStatusNone];
  [self showPanel:item];
}

- (NSView *)emptyPanelView {
  NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, 300, 60)] autorelease];
  NSTextField *text = make_label(HostText(@"This panel has nothing to show."), NSCenterTextAlignment);
  [text setFrame:NSMakeRect(0, 30, 300, 18)];
  [view addSubview:text];
  return view;
}

// Fills the area with a panel without asking the one before it.
- (void)showPanel:(NSInteger)item {
  if (item < 0) return;
  [panelPopUp selectItemAtIndex:item];
  NSView *view = nil;
  if (HostPanel *panel = [self panelAt:item]) {
    view = [panel view];
    if (!view) view = [self emptyPanelView];
    [self restorePanel:panel];
    [panel willShow];
  } else if (item == static_cast<NSInteger>([_panels count])) {
    view = [_features view];
    [_features refresh];
  } else {
    view = [_summary view];
  }
  _state->shown = item;
  [[[panelArea contentView] subviews] makeObjectsPerformSelector:@selector(removeFromSuperview)];
  [[panelArea contentView] addSubview:view];
  [self makeRoomFor:view];
  [self placePanel];
  [self refreshSummary];
  [self joinFocus];
  [panelArea setNeedsDisplay:YES];
}

// Makes the window larger when the view needs it, never smaller.
- (void)makeRoomFor:(NSView *)view {
  if (![self panelAt:_state->shown]) return;
  NSSize const needed = [view frame].size;
  NSSize const room = [[panelArea contentView] bounds].size;
  NSSize const more = NSMakeSize(std::max<CGFloat>(0, needed.width - room.width),
                                 std::max<CGFloat>(0, needed.height - room.height));
  if (more.width <= 0 && more.height <= 0) return;
  NSSize const now = [[window contentView] bounds].size;
  NSSize const enough = NSMakeSize(now.width + more.width, now.height + more.height);
  [window setContentMinSize:enough];
  NSRect frame = [window frame];
  frame.size.width += more.width;
  frame.size.height += more.height;
  frame.origin.y -= more.height;
  [window setFrame:frame display:YES];
  [self layOut];
}

- (void)placePanel {
  NSView *area = [panelArea contentView];
  NSView *view = [[area subviews] count] ? [[area subviews] objectAtIndex:0] : nil;
  if (!view) return;
  NSSize const room = [area bounds].size;
  if (![self panelAt:_state->shown]) {
    [view setFrame:[area bounds]];
    return;
  }
  NSRect frame = [view frame];
  NSUInteger const mask = [view autoresizingMask];
  if (mask & NSViewWidthSizable) frame.size.width = std::max(frame.size.width, room.width);
  frame.origin.x = std::floor(std::max<CGFloat>(0, (room.width - frame.size.width) / 2));
  frame.origin.y = std::floor(room.height - frame.size.height);
  [view setFrame:frame];
  // The place is chosen here, not by the view's own mask.
  [view setNeedsDisplay:YES];
}

- (void)joinFocus {
  NSMutableArray *ring = [NSMutableArray arrayWithObjects:printerPopUp, destinationPopUp, copiesField, panelPopUp, nil];
  [ring addObjectsFromArray:focus_order([panelArea contentView])];
  [ring addObject:helpButton];
  [ring addObject:cancelButton];
  [ring addObject:printButton];
  join_focus(ring);
}

- (void)restorePanel:(HostPanel *)panel {
  NSString *message = nil;
  if (![panel restore:&message]) {
    [self setStatus:message ? message : HostFormat(@"\"%@\" could not read its settings.", [panel name])];
  }
}

// Lets a panel write its values. On a NO the field that the panel set back is named and gets the focus.
- (BOOL)savePanel:(HostPanel *)panel {
  NSView *const view = [self panelAt:_state->shown] == panel ? [panel view] : nil;
  NSArray *const fields = view ? HostEditableFields(view) : [NSArray array];
  NSMutableArray *const before = [NSMutableArray array];
  for (NSUInteger at = 0; at < [fields count]; ++at) [before addObject:[[fields objectAtIndex:at] stringValue]];
  NSString *message = nil;
  if ([panel save:&message]) return YES;
  for (NSUInteger at = 0; at < [fields count]; ++at) {
    NSTextField *field = [fields objectAtIndex:at];
    if ([[field stringValue] isEqual:[before objectAtIndex:at]]) continue;
    NSString *const label = HostLabelOf(field, view);
    if (!message && [label length]) {
      message = HostFormat(@"The value of \"%@\" was not accepted and is as it was before.", label);
    }
    [window makeFirstResponder:field];
    break;
  }
  [self setStatus:message ? message : HostFormat(@"\"%@\" holds a value that is not accepted.", [panel name])];
  return NO;
}

- (void)refreshSummary {
  if (![self summaryShown]) return;
  std::vector<SummarySection> sections;
  SummarySection own{utf8(HostText(@"Print Job")), {}};
  own.rows.push_back({utf8(HostText(@"Printer")), utf8([printerPopUp titleOfSelectedItem])});
  own.rows.push_back({utf8(HostText(@"Destination")), utf8([destinationPopUp titleOfSelectedItem])});
  own.rows.push_back({utf8(HostText(@"Copies")), utf8([copiesField stringValue])});
  own.rows.push_back({utf8(HostText(@"Document")), _state->request.document.title()});
  sections.push_back(std::move(own));
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    HostPanel *panel = [_panels objectAtIndex:at];
    if (![self savePanel:panel]) continue;
    sections.push_back({utf8([panel name]), [panel summary]});
  }
  [_summary showSections:sections];
}

// Things to tell when the run loop comes round.

- (void)scheduleNews {
  NSArray *modes = [NSArray arrayWithObjects:NSDefaultRunLoopMode, NSModalPanelRunLoopMode, nil];
  [NSObject cancelPreviousPerformRequestsWithTarget:self selector:@selector(tellNews) object:nil];
  [self performSelector:@selector(tellNews) withObject:nil afterDelay:0 inModes:modes];
}

- (void)tellLater:(std::string const &)sentence {
  auto &unsaid = _state->unsaid;
  if (std::find(unsaid.begin(), unsaid.end(), sentence) == unsaid.end()) unsaid.push_back(sentence);
  [self scheduleNews];
}

- (void)tellProblemOnce:(NSString *)problem {
  [self setStatus:problem];
  if (_state->told.insert(utf8(problem)).second) [self tellLater:utf8(problem)];
}

- (void)tellNews {
  if (_state->telling || _state->finished) return;
  _state->telling = true;
  if (_state->restore_due) {
    _state->restore_due = false;
    for (NSUInteger at = 0; at < [_panels count]; ++at) {
      // What was typed is saved first: to restore means to read the settings.
      HostPanel *panel = [_panels objectAtIndex:at];
      [self savePanel:panel];
      [self restorePanel:panel];
    }
  }
  while (!_state->unsaid.empty()) {
    std::string const sentence = _state->unsaid.front();
    _state->unsaid.erase(_state->unsaid.begin());
    [_alerts tell:ns(sentence) advice:@""];
  }
  _state->telling = false;
}

- (void)callback:(HostCallback *)callback didMark:(NSString *)keyword {
  [_features refresh];
}

- (void)callback:(HostCallback *)callback didRefuse:(NSString *)keyword reason:(NSString *)reason {
  _state->restore_due = true;
  [self tellLater:utf8(reason)];
}

- (void)panel:(HostPanel *)panel didRaise:(NSString *)what {
  [self tellProblemOnce:what];
}

- (void)featureDidChange:(NSString *)keyword choice:(NSString *)choice {
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    [[_panels objectAtIndex:at] optionDidChange:keyword choice:choice];
  }
}

- (void)featureRefused:(NSString *)keyword reason:(NSString *)reason {
  [self tellLater:utf8(reason)];
}

// The buttons.

- (void)help:(id)sender {
  HostPanel *panel = [self panelAt:_state->shown];
  if (panel && ![panel shouldShowHelp]) return;
  NSString *page = [[NSBundle mainBundle] pathForResource:@"PrintDialog" ofType:@"html"];
  if (!page || ![_help showPage:page anchor:nil]) {
    [_alerts tell:HostText(@"The help of the print dialog cannot be opened.")
           advice:HostText(@"Install the program again.")];
  }
}

- (void)finish:(ExitCode)code {
  if (_state->finished) return;
  _state->finished = true;
  _state->exit_code = code;
  [_help close];
  [window orderOut:nil];
  [_owner dialogDidFinish:self];
}

- (void)cancel:(id)sender {
  if (!_state->printing) [self finish:ExitCode::cancelled];
}

// The button would stay lit for as long as its action runs, and that can be a whole modal dialog.
- (void)printPressed:(id)sender {
  [self performSelector:@selector(print:)
             withObject:sender
             afterDelay:0
                inModes:[NSArray arrayWithObject:NSDefaultRunLoopMode]];
}

- (void)print:(id)sender {
  if (_state->printing || _state->finished) return;
  _state->print_pressed = Clock::now();
  _state->printing = true;
  [self setStatus:kStatusNone];
  [self runPrint];
  _state->printing = false;
}

- (void)runPrint {
  [window makeFirstResponder:nil];
  if ([self copies] == 0) {
    [self setStatus:HostText(@"Copies must be a number from 1 to 9999.")];
    [window makeFirstResponder:copiesField];
    return;
  }
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    if ([self savePanel:[_panels objectAtIndex:at]]) continue;
    NSString *const why = [[[self status] copy] autorelease];
    if (_state->shown != static_cast<NSInteger>(at)) [self showPanel:static_cast<NSInteger>(at)];
    [self setStatus:why];
    return;
  }
  // A panel may write a job's keys while it is asked; when no job comes of it they must not leak into the next one.
  auto const before = read_settings(_state->settings);
  if (![self panelsLetPrint] || ![self deliver]) restore_settings(_state->settings, before);
}

- (BOOL)panelsLetPrint {
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    _state->at_gate = true;
    _state->dialog_timed = false;
    BOOL const yes = [[_panels objectAtIndex:at] shouldPrint];
    _state->at_gate = false;
    if (!yes) {
      [window makeKeyAndOrderFront:nil];
      return NO;
    }
  }
  return YES;
}

// Hands the document over. NO when it went nowhere; the user was told.
- (BOOL)deliver {
  switch ([self destination]) {
    case Destination::file: return [self saveFile];
    case Destination::preview: return [self preview];
    case Destination::printer: break;
  }
  return [self submitJob];
}

- (BOOL)deliverWith:(NSString *)what work:(std::function<std::optional<Failure>(ProgressCall const &)> const &)work {
  std::optional<Failure> failed;
  run_with_progress(what, [&](ProgressCall const &progress) { failed = work(progress); });
  [window makeKeyAndOrderFront:nil];
  if (!failed) return YES;
  if (failed->code == ExitCode::cancelled) {
    [self setStatus:ns(failed->text())];
  } else {
    [_alerts tell:ns(failed->what) advice:ns(failed->advice)];
    [self setStatus:ns(failed->what)];
  }
  return NO;
}

- (BOOL)submitJob {
  auto const &request = _state->request;
  JobRequest job{[self queue].name, request.command_line.title.value_or(""), request.document, [self copies],
                 {}, {}, {}, [self queue].defaults};
  for (auto const &option : request.command_line.options) {
    if (!_state->ppd || !_state->ppd->has_option(option.key)) job.options.push_back(option);
  }
  if (_state->ppd) job.choices = _state->ppd->job_options();
  if ([_panels count]) job.settings = read_settings(_state->settings);
  int number = 0;
  NSString *const queue = ns(job.queue);
  NSString *const what = HostFormat(@"Handing \"%@\" to the queue %@.", ns(request.document.title()), queue);
  BOOL const done = [self deliverWith:what
                                 work:[&](ProgressCall const &progress) -> std::optional<Failure> {
                                   auto const result = submit(request.server, job, progress);
                                   if (!result) return result.failure();
                                   number = result.value();
                                   return std::nullopt;
                                 }];
  if (!done) return NO;
  NSString *const text = HostFormat(@"Job %d was handed to the queue %@.", number, queue);
  std::printf("%s\n", [text UTF8String]);
  std::fflush(stdout);
  [self setStatus:text];
  [_alerts tell:text advice:@""];
  [self finish:ExitCode::ok];
  return YES;
}

- (BOOL)saveFile {
  auto const &request = _state->request;
  NSString *const name = [ns(request.document.title()) stringByAppendingPathExtension:@"pdf"];
  NSString *const path = request.command_line.output ? ns(*request.command_line.output) : [_alerts askPathFor:name];
  if (!path) return NO;
  CFURLRef const location = reinterpret_cast<CFURLRef>([NSURL fileURLWithPath:path]);
  PMSessionSetDestination(_state->session, _state->settings, kPMDestinationFile, nullptr, location);
  std::string const target = utf8(path);
  if (![self deliverWith:HostFormat(@"Writing %@.", path)
                    work:[&](ProgressCall const &progress) {
                      return write_output(request.document, target, progress);
                    }]) {
    return NO;
  }
  [self finish:ExitCode::ok];
  return YES;
}

- (BOOL)preview {
  Document const &document = _state->request.document;
  if (![self deliverWith:HostText(@"Opening the preview.")
                    work:[&](ProgressCall const &progress) {
                      return open_preview(document, progress);
                    }]) {
    return NO;
  }
  [self setStatus:HostText(@"The preview was opened in another window.")];
  return YES;
}

// A window came up above the dialog: an alert, or one of the extension's.
- (void)windowBecameKey:(NSNotification *)notification {
  NSWindow *const shown = [notification object];
  if (shown == window || shown == [_help panel] || ![window isVisible]) return;
  // A click on the dialog below would else cover the modal window that everything waits for.
  if (shown != _state->top && shown != _state->under) {
    bool const nested =
        _state->top && [[NSApp windows] indexOfObjectIdenticalTo:_state->top] != NSNotFound && [_state->top isVisible];
    _state->under = nested ? _state->top : window;
    _state->top = shown;
    keep_above(shown, _state->under);
  }
  bool const timed = _state->at_gate && !_state->dialog_timed && _state->request.command_line.timing;
  if (!timed) return;
  _state->dialog_timed = true;
  draw_now(shown);
  double const took = MillisecondsSince(_state->print_pressed);
  if (!_state->first_dialog_ms) {
    _state->first_dialog_ms = took;
    std::printf("print to dialog: %.1f ms\n", took);
  } else {
    std::printf("print to dialog: %.1f ms (warm %.1f ms)\n", *_state->first_dialog_ms, took);
  }
  std::fflush(stdout);
}

@end
