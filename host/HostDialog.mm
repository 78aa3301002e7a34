#import "host/HostDialog.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <optional>

#include <DirectFaxPrinter.h>

#include "host/core/job.h"
#include "host/core/summary.h"
#include "host/extension_choice.h"
#include "host/print_settings.h"

#import "host/HostExtension.h"
#import "host/controls.h"
#import "host/fence.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;
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
  std::shared_ptr<PpdFile> ppd;  // of the printer chosen
  std::optional<std::filesystem::path> extension;
  std::size_t queue = 0;  // the one chosen, in request.queues
  PMPrintSettings settings = nullptr;
  PMPrintSession session = nullptr;
  bool ready = false;
  bool printing = false;
  bool finished = false;
  ExitCode exit_code = ExitCode::cancelled;
  std::optional<SubmittedJob> submitted;
};

namespace {

// Of all documents together.
std::string first_title(DialogRequest const &request) {
  std::vector<Document> documents{request.document};
  documents.insert(documents.end(), request.further.begin(), request.further.end());
  return PrintPlan(documents).title();
}

// In the language of the dialog's own texts, else in English; nil when it is not installed.
NSString *own_help_page() {
  NSBundle *program = [NSBundle mainBundle];
  NSString *page = [program pathForResource:@"PrintDialog" ofType:@"html"];
  return page ? page : [program pathForResource:@"PrintDialog" ofType:@"html" inDirectory:nil forLocalization:@"English"];
}

}  // namespace

@interface HostDialog ()
- (void)fillPopUps;
- (void)layOutPages;
- (void)usePPD:(std::shared_ptr<PpdFile> const &)ppd;
- (void)makePanels;
- (void)showPrinterStatus;
- (Destination)destination;
- (void)sendDestination;
- (void)runPrint;
- (BOOL)panelsLetPrint;
- (BOOL)deliver;
- (JobRequest)job;
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
  _window = [[HostDialogWindow alloc] initWithTitle:ns(tr("Print \"{0}\"", first_title(request)))
                                             copies:request.command_line.copies
                                             target:self];
  _help = [HostHelpWindow new];
  [_help serveHelpBooks];
  [_help addBook:own_help_page()];
  _news = [[HostNews alloc] initWithAlerts:alerts owner:self];
  _panels = [[HostPanels alloc] initWithWindow:_window news:_news owner:self];
  _preview = [[HostPreview alloc] initWithRequest:request window:_window alerts:alerts owner:self];
  if (auto const size = request.memory.window) [_window setSize:NSMakeSize(size->width, size->height)];
  _finder = [[HostPrinterFinder alloc] initForOwner:self];
  _delivery = [[HostDelivery alloc] initWithRequest:&_state->request window:_window alerts:alerts];
  _overlay = [[HostOverlay alloc] initAbove:[_window window] help:_help timing:request.command_line.timing];
  [self fillPopUps];
  [self sendDestination];
  [self usePPD:request.ppd];
  return self;
}

- (void)dealloc {
  [_finder stop];
  [_preview stop];
  [_preview release];
  [_overlay release];
  [_delivery release];
  [_panels drop];
  [_panels release];
  [_finder release];
  [_news stop];
  [_news release];
  [_window release];
  [_help release];
  [_extensions release];
  [(id)_alerts release];
  delete _state;
  [super dealloc];
}

- (NSWindow *)window {
  return [_window window];
}

- (BOOL)isReady {
  return _state->ready;
}

- (ExitCode)exitCode {
  return _state->exit_code;
}

- (SubmittedJob const *)submittedJob {
  return _state->submitted ? &*_state->submitted : nullptr;
}

- (NSString *)status {
  return [_window status];
}

- (void)fillPopUps {
  auto const &request = _state->request;
  NSMutableArray *titles = [NSMutableArray array];
  for (std::size_t at = 0; at < request.queues.size(); ++at) {
    Queue const &queue = request.queues[at];
    std::string const &name = queue.display_name();
    //: The name of a queue that can fax.
    [titles addObject:ns(queue.fax_capable ? tr("{0} (fax)", name) : name)];
    if (queue.name == request.queue.name) _state->queue = at;
  }
  fill_pop_up([_window printerPopUp], titles);
  [[_window printerPopUp] selectItemAtIndex:static_cast<NSInteger>(_state->queue)];
  //: Where the job goes: to the printer, into a file, or into a window that shows it.
  fill_pop_up([_window destinationPopUp], [NSArray arrayWithObjects:ns(tr("Printer")), ns(tr("Save as File…")),
                                                                    ns(tr("Preview")), nil]);
  [[_window destinationPopUp] selectItemAtIndex:static_cast<NSInteger>(request.command_line.destination)];
}

- (void)show {
  auto const start = Clock::now();
  // A panel may need a larger window, and one on the screen would be drawn twice.
  [_panels showChosen];
  [[_window window] makeKeyAndOrderFront:nil];
  draw_now([_window window]);
  if (_state->request.command_line.timing) {
    std::printf("panel view: %.1f ms\n", std::chrono::duration<double, std::milli>(Clock::now() - start).count());
    std::fflush(stdout);
  }
  [self layOutPages];
  [_preview start];
}

// Printer, PPD, extension.

- (Queue const &)queue {
  return _state->request.queues.at(_state->queue);
}

// Begins everything that depends on the printer. ppd may be empty.
- (void)usePPD:(std::shared_ptr<PpdFile> const &)ppd {
  auto const &request = _state->request;
  [_panels drop];
  _state->ppd = ppd;
  _state->extension = choose_extension(ppd ? ppd->extension_paths() : std::vector<std::string>{},
                                       request.command_line.extension, [self queue].fax_capable, request.application);
  if (_state->extension) {
    [_finder findDevice:[self queue].device_uri];
  } else {
    [_finder stop];
  }
  [self showPrinterStatus];
  _state->ready = !_state->extension || [_finder isReady];
  [_window setReady:_state->ready];
  if (_state->ready) {
    [self makePanels];
  } else {
    [_panels showNotice:ns(tr("The options come as soon as the search is over."))];
  }
  if (![self queue].accepts_jobs) {
    [_window setStatus:ns(tr("The queue {0} does not accept jobs now.", [self queue].name))];
  }
}

// Only an extension asks for the printer's address.
- (void)showPrinterStatus {
  AddressStatus const status = _state->extension ? [_finder status] : AddressStatus{};
  [_window setPrinterStatus:ns(status.line) advice:ns(status.advice)];
}

- (void)finderDidAnswer:(HostPrinterFinder *)finder {
  [self showPrinterStatus];
  if (!_state->ready) {
    _state->ready = true;
    [_window setReady:YES];
    [self makePanels];
    [_panels showChosen];
  }
  [[_window window] displayIfNeeded];
}

// The printer as the panels see it; the caller releases it. NULL when the print service no longer knows it.
- (PMPrinter)copyPrinter {
  PMPrinter const printer = PMPrinterCreateFromPrinterID(reinterpret_cast<CFStringRef>(ns([self queue].name)));
  if (!printer) return nullptr;
  NSString *const uri = [_finder panelURI];
  PMPrinter const prepared = DirectFaxPrinterWithDeviceURI(printer, reinterpret_cast<CFStringRef>(uri));
  PMRelease(printer);
  return prepared;
}

- (HostExtension *)extension {
  NSString *const path = ns(_state->extension->string());
  HostExtension *extension = [_extensions objectForKey:path];
  if (!extension) {
    extension = [[[HostExtension alloc] initWithPath:path] autorelease];
    [_extensions setObject:extension forKey:path];
  }
  return extension;
}

- (void)makePanels {
  NSArray *panels = [NSArray array];
  HostCallback *callback = nil;
  if (_state->extension) {
    PMPrinter const printer = [self copyPrinter];
    callback = [[[HostCallback alloc] initWithPPD:_state->ppd
                                          printer:printer
                                         settings:_state->settings
                                          session:_state->session
                                            owner:_panels] autorelease];
    if (printer) PMRelease(printer);
    HostExtension *extension = [self extension];
    panels = [extension panelsForCallback:callback owner:_panels];
    if (NSString *problem = [extension problem]) {
      [_window setStatus:problem];
      [_news tellOnce:utf8(problem)];
    }
  }
  [_panels usePanels:panels callback:callback ppd:_state->ppd featuresFirst:![self queue].fax_capable];
}

- (void)choosePrinter:(id)sender {
  auto const chosen = static_cast<std::size_t>([[_window printerPopUp] indexOfSelectedItem]);
  if (chosen == _state->queue || chosen >= _state->request.queues.size()) return;
  if (![_panels leave]) {
    [[_window printerPopUp] selectItemAtIndex:static_cast<NSInteger>(_state->queue)];
    return;
  }
  [_window setStatus:@""];
  _state->queue = chosen;
  std::shared_ptr<PpdFile> ppd;
  auto read = PpdFile::of_queue(_state->request.server, [self queue].name);
  if (read) {
    ppd = std::move(read.value());
    if (ppd) {
      auto const &request = _state->request;
      if (auto failed = mark_remembered(*ppd, request.memory, [self queue], request.command_line.options)) {
        [_news tellLater:failed->text()];
        ppd->mark_initial([self queue].defaults, {});
      }
    }
  } else {
    [_news tellLater:read.failure().text()];
  }
  [self usePPD:ppd];
  [_panels showChosen];
  [self layOutPages];
}

// Texts and images are laid out for the printer's paper.
- (void)layOutPages {
  PageLayout layout{[self queue].name, layout_options(_state->request.command_line.options)};
  if (_state->ppd) {
    for (auto const &option : layout_options(_state->ppd->job_options())) layout.options.push_back(option);
  } else {
    layout.queue = "";
  }
  [_preview useLayout:layout];
}

- (void)previewDidChange {
  [_panels refreshSummary];
}

- (void)sendDestination {
  static PMDestinationType const kTypes[] = {kPMDestinationPrinter, kPMDestinationFile, kPMDestinationPreview};
  PMSessionSetDestination(_state->session, _state->settings, kTypes[static_cast<int>([self destination])], nullptr,
                          nullptr);
}

- (Destination)destination {
  NSInteger const at = [[_window destinationPopUp] indexOfSelectedItem];
  return static_cast<Destination>(std::clamp<NSInteger>(at, 0, 2));
}

- (void)chooseDestination:(id)sender {
  [self sendDestination];
  [_panels refreshSummary];
}

- (void)copiesDidChange {
  [_panels refreshSummary];
}

- (void)choosePanel:(id)sender {
  [_panels userDidChoose];
  [self layOutPages];
}

- (SummarySection)dialogSummary {
  //: The heading of a table of what will be printed; the next five are its rows.
  SummarySection own{tr("Print Job"), {}};
  own.rows.push_back({tr("Printer"), utf8([[_window printerPopUp] titleOfSelectedItem])});
  own.rows.push_back({tr("Destination"), utf8([[_window destinationPopUp] titleOfSelectedItem])});
  int const copies = [_window copies];
  own.rows.push_back({tr("Copies"), copies > 0 ? std::to_string(copies) : ""});
  own.rows.push_back({tr("Document"), utf8([_preview title])});
  own.rows.push_back({tr("Pages"), utf8([_preview pagesSummary])});
  return own;
}

- (void)newsWillBeTold {
  [_panels restoreIfDue];
}

- (Memory)memory {
  Memory memory = _state->request.memory;
  NSSize const size = [_window size];
  memory.window = WindowSize{static_cast<int>(size.width), static_cast<int>(size.height)};
  if (_state->exit_code != ExitCode::ok) return memory;
  memory.printer = [self queue].name;
  if (_state->ppd) memory.options[memory.printer] = worth_remembering(_state->ppd->job_options());
  return memory;
}

// The buttons.

- (void)help:(id)sender {
  HostPanel *panel = [_panels shownPanel];
  if (panel && ![panel shouldShowHelp]) return;
  NSString *page = own_help_page();
  if (!page || ![_help showPage:page anchor:nil]) {
    [_alerts tell:ns(tr("The help of the print dialog cannot be opened."))
           advice:ns(tr("Install the program again."))];
  }
}

- (void)finish:(ExitCode)code {
  if (_state->finished) return;
  _state->finished = true;
  _state->exit_code = code;
  [_finder stop];
  [_preview stop];
  [_news stop];
  [_help close];
  [[_window window] orderOut:nil];
  [_owner dialogDidFinish:self];
}

- (void)cancel:(id)sender {
  if (!_state->printing) [self finish:ExitCode::cancelled];
}

- (void)print:(id)sender {
  if (!_state->ready || _state->printing || _state->finished) return;
  [_overlay printPressed];
  _state->printing = true;
  [_window setStatus:@""];
  NSException *const raised = fenced([&] { [self runPrint]; });
  _state->printing = false;
  if (raised) [raised raise];
}

- (void)runPrint {
  [[_window window] makeFirstResponder:nil];
  if ([_window copies] == 0) return [_window refuseCopies];
  if (![_panels saveAll]) return;
  [self layOutPages];
  auto const document = [_preview documentToPrint];
  if (!document) return;
  _state->request.document = *document;
  // A panel may write a job's keys while it is asked; when no job comes of it they must not leak into the next one.
  auto const before = read_settings(_state->settings);
  if (![self panelsLetPrint] || ![self deliver]) restore_settings(_state->settings, before);
}

- (BOOL)panelsLetPrint {
  [_overlay beginGate];
  BOOL const yes = [_panels letPrint];
  [_overlay endGate];
  if (!yes) [[_window window] makeKeyAndOrderFront:nil];
  return yes;
}

// Hands the document over. NO when it went nowhere; the user was told.
- (BOOL)deliver {
  switch ([self destination]) {
    case Destination::preview: return [_delivery openPreview];
    case Destination::file: {
      NSString *const path = [_delivery pathOfFile];
      if (!path) return NO;
      CFURLRef const location = reinterpret_cast<CFURLRef>([NSURL fileURLWithPath:path]);
      PMSessionSetDestination(_state->session, _state->settings, kPMDestinationFile, nullptr, location);
      if (![_delivery writeFile:path]) return NO;
      break;
    }
    case Destination::printer: {
      JobRequest const job = [self job];
      int const number = [_delivery submitJob:job];
      if (number == 0) return NO;
      _state->submitted = SubmittedJob{number, job};
      break;
    }
  }
  [self finish:ExitCode::ok];
  return YES;
}

- (JobRequest)job {
  auto const &request = _state->request;
  JobRequest job{[self queue].name, request.command_line.title.value_or(""), request.document, [_window copies],
                 {}, {}, {}, [self queue].defaults};
  for (auto const &option : request.command_line.options) {
    if (!_state->ppd || !_state->ppd->has_option(option.key)) job.options.push_back(option);
  }
  if (_state->ppd) job.choices = _state->ppd->job_options();
  if ([_panels hasPanels]) job.settings = read_settings(_state->settings);
  return job;
}

@end
