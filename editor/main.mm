// The Address Book Editor.
#import <AppKit/AppKit.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#import "editor/EditorController.h"

#include "editor/core/command_line.h"
#include "host/theme/display.h"
#include "host/theme/preference.h"
#include "texts/texts.h"

#import "host/theme/FaxTheme.h"
#import "toolkit/gnustep_texts.h"

using namespace fax::editor;

static int Show(CommandLine const &line) {
  [[NSUserDefaults standardUserDefaults]
      registerDefaults:[NSDictionary dictionaryWithObject:@"YES" forKey:@"GSSuppressAppIcon"]];
  fax::theme::start_application(fax::theme::choice_named(line.theme).value_or(fax::theme::Choice::automatic));
  EditorController *controller = [[EditorController alloc] initWithCommandLine:line];
  [NSApp setDelegate:(id)controller];
  [NSApp run];
  [NSApp setDelegate:nil];
  [controller release];
  return 0;
}

static int Run(std::vector<std::string> const &arguments) {
  CommandLine const line = parse_command_line(arguments, std::filesystem::current_path().string());
  if (!line.fault.empty()) {
    std::fprintf(stderr, "AddressBookEditor: %s %s\n", line.fault.c_str(), fax::tr("--help shows what can be said.").c_str());
    return 2;
  }
  if (line.help || line.version) {
    std::fputs(line.help ? help_text().c_str() : "AddressBookEditor " EDITOR_VERSION "\n", stdout);
    return 0;
  }
  if (!fax::theme::display_answers()) {
    std::fprintf(stderr, "AddressBookEditor: %s\n",
                 fax::tr("Start it in a desktop session, or set {0}.", "DISPLAY").c_str());
    return 2;
  }
  return Show(line);
}

int main(int argc, char **argv) {
  fax::speak(fax::catalogue_folders());
  fax::toolkit::translate_gnustep();
  // The toolkit reads the arguments too, and would open a file named there as a document of its own.
  char program[] = "AddressBookEditor";
  char *own[] = {argc > 0 ? argv[0] : program, nullptr};
  [NSProcessInfo initializeWithArguments:own count:1 environment:environ];
  // A file that may not grow shows as a failed write.
  std::signal(SIGXFSZ, SIG_IGN);
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  int const code = Run({argv + (argc > 0 ? 1 : 0), argv + argc});
  [pool release];
  std::fflush(nullptr);
  // The toolkit's own clean-up at exit waits for its daemons; every edit is on the disk.
  _exit(code);
}
