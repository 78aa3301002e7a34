// faxprint: the print dialog for Linux.
#import <AppKit/AppKit.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <future>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

#include "host/core/command_line.h"
#include "host/core/document.h"
#include "host/core/memory.h"
#include "host/core/ppd_file.h"
#include "host/core/queues.h"
#include "host/core/trusted_path.h"
#include "host/theme/display.h"
#include "host/theme/preference.h"

#import "host/HostDialog.h"
#import "host/HostScreenMap.h"
#import "host/HostStatusWindow.h"
#import "host/controls.h"
#import "host/fence.h"
#import "toolkit/gnustep_texts.h"
#import "toolkit/text.h"
#import "host/theme/FaxTheme.h"

using namespace fax::host;
using namespace fax::toolkit;

// Shows the dialog when the application is ready, then what becomes of its job, and ends the application with that.
@interface HostApplication : NSObject <HostDialogOwner, HostStatusWindowOwner> {
  DialogRequest const *_request;
  HostDialog *_dialog;
  HostStatusWindow *_status;
  HostScreenMap *_map;
  NSFileHandle *_wake;  // readable at once, which wakes the run loop
}
- (id)initWithRequest:(DialogRequest const *)request;
- (ExitCode)exitCode;
@end

static void Tell(std::string const &sentence) { std::fprintf(stderr, "faxprint: %s\n", sentence.c_str()); }

@interface HostApplication ()
- (void)follow:(SubmittedJob const &)job;
- (void)end;
@end

@implementation HostApplication

- (id)initWithRequest:(DialogRequest const *)request {
  if (!(self = [super init])) return nil;
  _request = request;
  return self;
}

- (void)dealloc {
  [_map stop];
  [_map release];
  [_status release];
  [_dialog release];
  [_wake release];
  [super dealloc];
}

- (ExitCode)exitCode {
  return _dialog ? [_dialog exitCode] : ExitCode::cancelled;
}

// How long the toolkit needs for a window without anything in it: what the dialog's own times are compared with.
- (void)timeEmptyWindow {
  auto const start = std::chrono::steady_clock::now();
  NSWindow *empty = [[NSWindow alloc] initWithContentRect:NSMakeRect(100, 100, 560, 470)
                                                styleMask:NSTitledWindowMask | NSClosableWindowMask
                                                  backing:NSBackingStoreBuffered
                                                    defer:NO];
  [empty setReleasedWhenClosed:NO];
  [empty makeKeyAndOrderFront:nil];
  draw_now(empty);
  std::chrono::duration<double, std::milli> const took = std::chrono::steady_clock::now() - start;
  [empty orderOut:nil];
  [empty release];
  std::printf("empty window: %.1f ms\n", took.count());
  std::fflush(stdout);
}

- (void)applicationDidFinishLaunching:(NSNotification *)notification {
  if (_request->command_line.timing) [self timeEmptyWindow];
  _dialog = [[HostDialog alloc] initWithRequest:*_request owner:self alerts:[[HostAlerts new] autorelease]];
  if (_request->command_line.ui_map) {
    _map = [[HostScreenMap alloc] initWithPath:ns(*_request->command_line.ui_map)];
    [_map start];
  }
  [_dialog show];
}

- (void)dialogDidFinish:(HostDialog *)dialog {
  if (auto const failed = save_memory([dialog memory], memory_file())) {
    Tell(failed->text());
  }
  SubmittedJob const *const job = [dialog submittedJob];
  if (job && _request->command_line.status) [self follow:*job];
  if (!_status) [self end];
}

- (void)follow:(SubmittedJob const &)job {
  try {
    _status = [[HostStatusWindow alloc] initWithServer:_request->server job:job owner:self];
    [_status show];
  } catch (std::system_error const &failed) {
    // The job is on its way all the same.
    Tell(tr("The job cannot be followed: {0}", failed.what()));
  }
}

- (void)statusWindowDidClose:(HostStatusWindow *)window {
  [self end];
}

- (void)end {
  [NSApp stop:self];
  // The loop looks at the stop only after an event, and at an event of our own only when something comes in.
  [NSApp postEvent:[NSEvent otherEventWithType:NSApplicationDefined
                                      location:NSZeroPoint
                                 modifierFlags:0
                                     timestamp:0
                                  windowNumber:0
                                       context:nil
                                       subtype:0
                                         data1:0
                                         data2:0]
           atStart:NO];
  int ends[2];
  if (pipe(ends) != 0) return;
  _wake = [[NSFileHandle alloc] initWithFileDescriptor:ends[0] closeOnDealloc:YES];
  [_wake waitForDataInBackgroundAndNotifyForModes:[NSArray arrayWithObjects:NSDefaultRunLoopMode,
                                                                            NSModalPanelRunLoopMode, nil]];
  close(ends[1]);
}

@end

static int Fail(Failure const &failure) {
  Tell(failure.text());
  return static_cast<int>(failure.code);
}

// The application wrapper, or the folder that the program is in.
static std::filesystem::path ApplicationFolder() {
  std::error_code failed;
  auto const program = std::filesystem::read_symlink("/proc/self/exe", failed);
  return failed ? std::filesystem::current_path() : program.parent_path();
}

static Result<std::vector<Document>> OpenAll(std::vector<std::string> const &files) {
  std::vector<Document> documents;
  for (auto const &file : files) {
    auto document = file == "-" ? Document::of_stream(STDIN_FILENO, "-", tr("Standard Input")) : Document::open(file);
    if (!document) return document.failure();
    documents.push_back(document.value());
  }
  return documents;
}

// A memory that is broken is told of and left out.
static Memory Remembered() {
  auto memory = load_memory(memory_file());
  if (memory) return memory.value();
  Tell(memory.failure().text());
  return {};
}

// Of the command line alone; the one that a PPD file names is checked when it is loaded.
static std::optional<Failure> CheckExtension(CommandLine const &line) {
  if (!line.extension) return std::nullopt;
  std::error_code ignored;
  if (!std::filesystem::is_directory(*line.extension, ignored))
    return Failure{ExitCode::extension, tr("There is no print dialog extension at \"{0}\".", *line.extension),
                   tr("Give the path of a bundle with {0}.", "--extension")};
  auto const trusted = trusted_path(*line.extension);
  if (!trusted.weak) return std::nullopt;
  return Failure{ExitCode::extension,
                 tr("The print dialog extension \"{0}\" is not loaded: other users may change \"{1}\".",
                    *line.extension, trusted.weak->string()),
                 //: chown and chmod are commands, go-w is what to say to chmod.
                 tr("Take that right from them (chown, chmod go-w), or use a copy in a folder of your own.")};
}

// Everything that can go wrong before there is a window.
static Result<DialogRequest> Prepare(CommandLine const &line) {
  auto documents = OpenAll(line.files);
  if (!documents) return documents.failure();
  if (auto unusable = CheckExtension(line)) return *unusable;
  Server const server = Server::current();
  auto queues = list_queues(server);
  if (!queues) return queues.failure();
  Memory const memory = Remembered();
  auto queue = line.printer ? choose_queue(queues.value(), line.printer)
                            : queue_to_begin_with(queues.value(), memory.printer);
  if (!queue) return queue.failure();
  auto ppd = PpdFile::of_queue(server, queue.value().name);
  if (!ppd) return ppd.failure();
  if (ppd.value()) {
    if (auto failed = mark_remembered(*ppd.value(), memory, queue.value(), line.options)) return *failed;
  }
  auto &all = documents.value();
  return DialogRequest{server, queues.value(), queue.value(), std::move(ppd.value()), all.front(), line,
                       ApplicationFolder(), {all.begin() + 1, all.end()}, memory};
}

static int Broken(NSException *raised) {
  return Fail({ExitCode::submission, tr("The dialog failed: {0}", utf8([raised reason])), ""});
}

// Where no thread can be had the work is done when its result is asked for.
template <typename Work>
static std::future<std::invoke_result_t<Work>> InBackground(Work work) {
  return std::async(std::launch::async | std::launch::deferred, std::move(work));
}

static void StartApplication(CommandLine const &line) {
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
  fax::theme::start_application(fax::theme::choice_named(line.theme).value_or(fax::theme::Choice::automatic), line.scale);
  // The toolkit's handlers wait for its loop, end the application as if all had gone well, and can hang inside a modal
  // dialog.
  std::signal(SIGTERM, SIG_DFL);
  std::signal(SIGINT, SIG_DFL);
}

// For who started the program without a terminal.
static void ShowFailure(Failure const &failure) {
  fenced([&] {
    [NSApp finishLaunching];
    [NSApp activateIgnoringOtherApps:YES];
    [[[HostAlerts new] autorelease] tell:ns(failure.what) advice:ns(failure.advice)];
  });
}

static int ShowDialog(DialogRequest const &request) {
  int code = 0;
  NSException *raised = fenced([&] {
    HostApplication *application = [[HostApplication alloc] initWithRequest:&request];
    [NSApp setDelegate:(id)application];
    [NSApp run];
    code = static_cast<int>([application exitCode]);
    [NSApp setDelegate:nil];
    [application release];
  });
  return raised ? Broken(raised) : code;
}

static Failure NoDisplay() {
  return {ExitCode::usage, tr("There is no display to show the print dialog on."),
          tr("Start it in a desktop session, or set {0}.", "DISPLAY")};
}

// The print service answers while the toolkit starts: each takes a good part of the time until the dialog is there.
static int Print(CommandLine const &line) {
  std::future<Result<DialogRequest>> preparing = InBackground([&] { return Prepare(line); });
  bool const display = fax::theme::display_answers();
  NSException *const raised = display ? fenced([&] { StartApplication(line); }) : nil;
  auto const request = preparing.get();
  if (!request) {
    if (line.alert && display && !raised) ShowFailure(request.failure());
    return Fail(request.failure());
  }
  if (!display) return Fail(NoDisplay());
  return raised ? Broken(raised) : ShowDialog(request.value());
}

static int Run(std::vector<std::string> const &arguments) {
  auto const line = parse_command_line(arguments);
  if (!line) return Fail(line.failure());
  switch (line.value().action) {
    case CommandLine::Action::help: std::fputs(help_text().c_str(), stdout); return 0;
    case CommandLine::Action::version: std::fputs(version_text().c_str(), stdout); return 0;
    case CommandLine::Action::list: {
      auto const queues = list_queues(Server::current());
      if (!queues) return Fail(queues.failure());
      std::fputs(queue_table(queues.value()).c_str(), stdout);
      return 0;
    }
    case CommandLine::Action::forget: {
      auto const failed = forget_memory(memory_file());
      return failed ? Fail(*failed) : 0;
    }
    case CommandLine::Action::print: break;
  }
  return Print(line.value());
}

int main(int argc, char **argv) {
  fax::speak(fax::catalogue_folders());
  translate_gnustep();
  // The toolkit reads the arguments too and would open a file named there as a document of its own.
  char program[] = "faxprint";
  char *own[] = {argc > 0 ? argv[0] : program, nullptr};
  [NSProcessInfo initializeWithArguments:own count:1 environment:environ];
  // A file that may not grow shows as a failed write.
  std::signal(SIGXFSZ, SIG_IGN);
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  int const code = Run({argv + (argc > 0 ? 1 : 0), argv + argc});
  [pool release];
  std::fflush(nullptr);
  // The toolkit's own clean-up at exit waits for its daemons; everything of ours is done.
  _exit(code);
}
