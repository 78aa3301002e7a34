#import "host/HostDelivery.h"

#include <cstdio>
#include <functional>
#include <optional>

#include "host/output.h"

#import "host/HostProgress.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

@implementation HostDelivery

- (id)initWithRequest:(DialogRequest const *)request
               window:(HostDialogWindow *)window
               alerts:(id<HostAlerting>)alerts {
  if (!(self = [super init])) return nil;
  _request = request;
  _window = [window retain];
  _alerts = [(id)alerts retain];
  return self;
}

- (void)dealloc {
  [_window release];
  [(id)_alerts release];
  [super dealloc];
}

- (BOOL)run:(NSString *)what work:(std::function<std::optional<Failure>(ProgressCall const &)> const &)work {
  std::optional<Failure> failed;
  run_with_progress(what, [&](ProgressCall const &progress) { failed = work(progress); });
  [[_window window] makeKeyAndOrderFront:nil];
  if (!failed) return YES;
  if (failed->code == ExitCode::cancelled) {
    [_window setStatus:ns(failed->text())];
  } else {
    [_alerts tell:ns(failed->what) advice:ns(failed->advice)];
    [_window setStatus:ns(failed->what)];
  }
  return NO;
}

- (int)submitJob:(JobRequest const &)job {
  int number = 0;
  Server const &server = _request->server;
  auto const work = [&](ProgressCall const &progress) -> std::optional<Failure> {
    auto const result = submit(server, job, progress);
    if (!result) return result.failure();
    number = result.value();
    return std::nullopt;
  };
  NSString *const what = ns(tr("Handing \"{0}\" to the queue {1}.", _request->document.title(), job.queue));
  if (![self run:what work:work]) return 0;
  NSString *const text = ns(tr("Job {0} was handed to the queue {1}.", number, job.queue));
  std::printf("%s\n", [text UTF8String]);
  std::fflush(stdout);
  [_window setStatus:text];
  return number;
}

- (NSString *)pathOfFile {
  if (_request->command_line.output) return ns(*_request->command_line.output);
  return [_alerts askPathFor:[ns(_request->document.title()) stringByAppendingPathExtension:@"pdf"]];
}

- (BOOL)writeFile:(NSString *)path {
  std::string const target = utf8(path);
  Document const &document = _request->document;
  auto const work = [&](ProgressCall const &progress) { return write_output(document, target, progress); };
  return [self run:ns(tr("Writing {0}.", target)) work:work];
}

- (BOOL)openPreview {
  Document const &document = _request->document;
  auto const work = [&](ProgressCall const &progress) { return open_preview(document, progress); };
  if (![self run:ns(tr("Opening the preview.")) work:work]) return NO;
  [_window setStatus:ns(tr("The preview was opened in another window."))];
  return YES;
}

@end
