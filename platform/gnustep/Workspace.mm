// NSWorkspace by bundle identifiers. The toolkit takes an identifier for an application's name, looks it up in a list
// that a tool of its own rarely writes, starts a workspace manager to ask what is running, and may show a panel on the
// way. Here the application folders are searched, the kernel tells what is running, and the window manager brings it
// forward.
#import <AppKit/AppKit.h>

#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "platform/application_folders.h"
#include "platform/bridge.h"
#include "platform/gnustep/repair.h"
#include "platform/launch.h"
#include "platform/running_programs.h"
#include "platform/window_activation.h"

namespace {

// The toolkit's parser descends once for each bracket: longer files could exhaust the stack.
constexpr std::size_t kMostInformation = 64 << 10;
constexpr int kSubfolderLevels = 2;

// Of an information dictionary; empty where it says nothing, or is none.
struct Application {
  std::string identifier, executable;
};

struct Known {
  fax::FileStamp stamp;
  Application application;
};

std::string text_under(NSDictionary *information, NSString *key) {
  return fax::to_utf8(fax::object_of<NSString>([information objectForKey:key], [NSString class])).value_or("");
}

Application read_application(std::string const &file) {
  auto const bytes = fax::file_bytes(file, kMostInformation);
  if (!bytes) return {};
  return fax::pooled(__func__, Application{}, [&] {
    id const list = [NSPropertyListSerialization propertyListFromData:[NSData dataWithBytes:bytes->data()
                                                                                     length:bytes->size()]
                                                     mutabilityOption:NSPropertyListImmutable
                                                               format:nullptr
                                                     errorDescription:nullptr];
    NSDictionary *information = fax::object_of<NSDictionary>(list, [NSDictionary class]);
    if (information == nil) return Application{};
    Application read{text_under(information, @"CFBundleIdentifier"), text_under(information, @"NSExecutable")};
    if (read.executable.empty()) read.executable = text_under(information, @"CFBundleExecutable");
    return read;
  });
}

// A wrapper's information, read again only when the file is another than the last time.
Application application_at(std::string const &wrapper) {
  static std::mutex gate;
  static auto &known = *new std::map<std::string, Known>;
  auto const file = fax::information_file(wrapper);
  if (!file) return {};
  std::lock_guard const lock(gate);
  auto const [entry, is_new] = known.try_emplace(file->path);
  if (is_new || entry->second.stamp != file->stamp) entry->second = {file->stamp, read_application(file->path)};
  return entry->second.application;
}

// The user's folders first, the system's last.
std::vector<std::string> application_folders() {
  std::vector<std::string> folders;
  for (NSSearchPathDirectory const kind : {NSApplicationDirectory, NSAllApplicationsDirectory}) {
    NSArray *paths = NSSearchPathForDirectoriesInDomains(kind, NSAllDomainsMask, YES);
    for (NSUInteger at = 0; at < [paths count]; ++at)
      folders.push_back([[paths objectAtIndex:at] fileSystemRepresentation]);
  }
  return folders;
}

// The one that this program's own wrapper stands in.
std::vector<std::string> own_folder() {
  NSString *own = [[NSBundle mainBundle] bundlePath];
  if (![[own pathExtension] isEqualToString:@"app"]) return {};
  return {[[own stringByDeletingLastPathComponent] fileSystemRepresentation]};
}

// "" when there is none.
std::string find_wrapper(std::string const &identifier) {
  for (auto const &wrappers : {fax::application_wrappers(application_folders(), kSubfolderLevels),
                               fax::application_wrappers(own_folder(), 0)})
    for (std::string const &wrapper : wrappers)
      if (application_at(wrapper).identifier == identifier) return wrapper;
  return "";
}

NSString *path_string(std::string const &path) {
  return [[NSFileManager defaultManager] stringWithFileSystemRepresentation:path.data() length:path.size()];
}

struct RunningApplication {
  pid_t process;
  std::string wrapper, identifier;
};

// Another display's is out of reach. Without a display of our own, all are alike.
bool runs_here(pid_t process) {
  char const *display = std::getenv("DISPLAY");
  return display == nullptr || fax::was_started_for(display, process);
}

// Programs that are the executable of the wrapper they lie in.
std::vector<RunningApplication> running_applications() {
  std::vector<RunningApplication> found;
  for (fax::RunningProgram const &program : fax::running_programs()) {
    std::string const wrapper = fax::wrapper_of(program.path);
    if (wrapper.empty() || !runs_here(program.process)) continue;
    auto const application = application_at(wrapper);
    bool const is_executable = !application.executable.empty() && program.path.ends_with("/" + application.executable);
    if (is_executable) found.push_back({program.process, wrapper, application.identifier});
  }
  return found;
}

NSDictionary *description_of(RunningApplication const &application) {
  NSMutableDictionary *description = [NSMutableDictionary dictionary];
  NSString *path = path_string(application.wrapper);
  if (path != nil) [description setObject:path forKey:@"NSApplicationPath"];
  NSString *name = path_string(fax::wrapper_name(application.wrapper));
  if (name != nil) [description setObject:name forKey:@"NSApplicationName"];
  NSString *identifier = fax::to_string(application.identifier);
  if ([identifier length] > 0) [description setObject:identifier forKey:@"NSApplicationBundleIdentifier"];
  [description setObject:[NSNumber numberWithInt:application.process] forKey:@"NSApplicationProcessIdentifier"];
  return description;
}

// nullopt unless it is a text that can identify anything.
std::optional<std::string> identifier_of(id object) {
  auto text = fax::to_utf8(fax::object_of<NSString>(object, [NSString class]));
  return text && !text->empty() ? text : std::nullopt;
}

bool bring_any_forward(std::string const &identifier, bool &runs) {
  for (RunningApplication const &application : running_applications()) {
    if (application.identifier != identifier) continue;
    runs = true;
    if (fax::bring_forward(application.process)) return true;
  }
  return false;
}

// The number of the process that was started; 0 for none.
pid_t start(std::string const &identifier) {
  NSString *wrapper = path_string(find_wrapper(identifier));
  NSString *program = [wrapper length] > 0 ? [[NSBundle bundleWithPath:wrapper] executablePath] : nil;
  pid_t process = 0;
  bool const started = [program length] > 0 && fax::launch({[program fileSystemRepresentation]}, &process) == 0;
  return started ? process : 0;
}

fax::Repair<NSString *(NSString *)> absolute_path{
    "NSWorkspace", "absolutePathForAppBundleWithIdentifier:", [](id, SEL, NSString *identifier) -> NSString * {
      auto const wanted = identifier_of(identifier);
      std::string const found = wanted ? find_wrapper(*wanted) : "";
      return found.empty() ? nil : path_string(found);
    },
    fax::MethodOf::instance, fax::HostsOwn::kept};

// An array of dictionaries: path, name, process number, and the identifier of those that have one.
fax::Repair<NSArray *()> launched_applications{
    "NSWorkspace", "launchedApplications", [](id, SEL) -> NSArray * {
      NSMutableArray *all = [NSMutableArray array];
      for (RunningApplication const &each : running_applications()) [all addObject:description_of(each)];
      return all;
    },
    fax::MethodOf::instance, fax::HostsOwn::kept};

// YES when a running one came forward, or when one has been started; the launch identifier is then the
// number of the started process.
fax::Repair<BOOL(NSString *, NSUInteger, id, NSNumber **)> launch_application{
    "NSWorkspace", "launchAppWithBundleIdentifier:options:additionalEventParamDescriptor:launchIdentifier:",
    [](id, SEL, NSString *identifier, NSUInteger options, id, NSNumber **launched) -> BOOL {
      auto const wanted = identifier_of(identifier);
      if (!wanted) return NO;
      if ((options & NSWorkspaceLaunchNewInstance) == 0) {
        bool runs = false;
        bool const forward = bring_any_forward(*wanted, runs);
        if (runs) return forward ? YES : NO;
      }
      pid_t const process = start(*wanted);
      if (process != 0 && launched != nullptr) *launched = [NSNumber numberWithInt:process];
      return process != 0 ? YES : NO;
    },
    fax::MethodOf::instance, fax::HostsOwn::kept};

}  // namespace
