// +[NSTask launchedTaskWithLaunchPath:arguments:] for the program of an application wrapper. The toolkit's task gives it
// our streams and high descriptors, which then hold whatever waits for us; and where the system refuses a
// program after all (no program, no interpreter), it ends the child by way of our own exit handlers, in our own memory,
// and calls the task launched. An application goes its own way instead, and a refusal raises, as on macOS. Tools are
// left to the toolkit.
#import <Foundation/Foundation.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <string>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

#include "platform/application_folders.h"
#include "platform/bridge.h"
#include "platform/gnustep/repair.h"
#include "platform/launch.h"

namespace {

// Without a handle the process had ended before one could be asked for.
bool has_ended(int handle) {
  pollfd process{handle, POLLIN, 0};
  return handle < 0 || poll(&process, 1, 0) == 1;
}

}  // namespace

// The application is nobody's child, so its exit status is not known: terminationStatus is 0 once it has ended.
@interface DirectFaxApplicationTask : NSTask {
  int processHandle;  // a pidfd; -1 before the launch
}
@end

// The toolkit's own, of NSTask.
@interface NSTask (DirectFaxToolkit)
- (NSString *)validatedLaunchPath;
@end

@implementation DirectFaxApplicationTask

- (id)init {
  if ((self = [super init]) != nil) processHandle = -1;
  return self;
}

- (void)dealloc {
  if (processHandle >= 0) close(processHandle);
  [super dealloc];
}

- (void)launch {
  NSString *path = _hasLaunched ? nil : [self validatedLaunchPath];
  if (path == nil) [NSException raise:NSInvalidArgumentException format:@"NSTask - cannot launch %@", _launchPath];
  std::vector<std::string> words{[path fileSystemRepresentation]};
  for (NSUInteger at = 0; at < [_arguments count]; ++at)
    words.push_back(fax::to_utf8([[_arguments objectAtIndex:at] description]).value_or(""));
  pid_t process = 0;
  if (int const error = fax::launch(words, &process); error != 0)
    [NSException raise:NSInvalidArgumentException format:@"NSTask - %@: %s", path, std::strerror(error)];
  _taskId = process;
  _hasLaunched = YES;
  processHandle = int(syscall(SYS_pidfd_open, process, 0));
}

- (void)_collectChild {
  if (has_ended(processHandle)) _hasCollected = _hasTerminated = YES;
}

- (void)tell:(int)signalNumber {
  if ([self isRunning]) syscall(SYS_pidfd_send_signal, processHandle, signalNumber, nullptr, 0);
}

- (void)interrupt {
  [self tell:SIGINT];
}

- (void)terminate {
  [self tell:SIGTERM];
}

- (BOOL)suspend {
  return NO;
}

- (BOOL)resume {
  return NO;
}

@end

namespace {

bool is_of_application(NSString *path) {
  if (![path isKindOfClass:[NSString class]] || [path length] == 0) return false;
  char const *bytes = [path fileSystemRepresentation];
  return bytes != nullptr && !fax::wrapper_of(bytes).empty();
}

fax::Repair<id(NSString *, NSArray *)> launched_task{
    "NSTask", "launchedTaskWithLaunchPath:arguments:",
    [](id self, SEL command, NSString *path, NSArray *arguments) -> id {
      if (!is_of_application(path)) return launched_task(self, command, path, arguments);
      NSTask *task = [[[DirectFaxApplicationTask alloc] init] autorelease];
      [task setLaunchPath:path];
      [task setArguments:arguments];
      [task launch];
      return task;
    },
    fax::MethodOf::class_object, fax::HostsOwn::kept};

}  // namespace
