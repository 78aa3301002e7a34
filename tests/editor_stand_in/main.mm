// Writes its process number's file PROCESS.txt into the folder that DIRECTFAX_EDITOR_RECORDS names: a line with the
// number of descriptors that it was given beyond its three streams, then a line for each argument. Then it shows a
// window with the arguments. DIRECTFAX_EDITOR_MODE: after the record "dies" ends it, and "waits" waits for its end,
// unknown to the toolkit's daemons.
#import <AppKit/AppKit.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

std::string variable(char const *name) {
  char const *value = std::getenv(name);
  return value != nullptr ? value : "";
}

int given_descriptors() {
  int given = -1;  // the one that lists them
  for (auto const &each : fs::directory_iterator("/proc/self/fd")) given += std::stoi(each.path().filename()) > 2;
  return given;
}

void record(int count, char **arguments) {
  fs::path const folder = variable("DIRECTFAX_EDITOR_RECORDS");
  if (folder.empty()) return;
  int const descriptors = given_descriptors();
  fs::path const file = folder / (std::to_string(getpid()) + ".txt");
  fs::path const unfinished = folder / (std::to_string(getpid()) + ".new");
  {
    std::ofstream lines(unfinished);
    lines << descriptors << '\n';
    for (int at = 1; at < count; ++at) lines << arguments[at] << '\n';
  }
  fs::rename(unfinished, file);
}

NSTextField *label(NSString *text, NSRect frame) {
  NSTextField *field = [[[NSTextField alloc] initWithFrame:frame] autorelease];
  [field setStringValue:text];
  [field setEditable:NO];
  [field setSelectable:NO];
  [field setBezeled:NO];
  [field setDrawsBackground:NO];
  return field;
}

void show_window(int count, char **arguments) {
  NSWindow *window = [[NSWindow alloc] initWithContentRect:NSMakeRect(120, 500, 420, 120)
                                                 styleMask:NSTitledWindowMask | NSClosableWindowMask |
                                                           NSMiniaturizableWindowMask
                                                   backing:NSBackingStoreBuffered
                                                     defer:NO];
  [window setTitle:@"Address Book Editor"];
  NSView *content = [window contentView];
  [content addSubview:label(@"Stand-in of the address book editor, started with:", NSMakeRect(20, 80, 380, 20))];
  for (int at = 1; at < count; ++at) {
    NSString *text = [NSString stringWithFormat:@"%d:  %s", at, arguments[at]];
    [content addSubview:label(text, NSMakeRect(36, 76 - 24 * at, 364, 20))];
  }
  if (count == 1) [content addSubview:label(@"no arguments", NSMakeRect(36, 52, 364, 20))];
  [window makeKeyAndOrderFront:nil];
}

}  // namespace

int main(int count, char **arguments) {
  record(count, arguments);
  std::string const mode = variable("DIRECTFAX_EDITOR_MODE");
  if (mode == "dies") return 1;
  alarm(120);  // nothing is left of a test that was killed
  if (mode == "waits") pause();
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [NSApplication sharedApplication];
  [NSApp finishLaunching];
  show_window(count, arguments);
  [NSApp run];
  [pool release];
}
