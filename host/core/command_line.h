// The command line of faxprint.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/core/failure.h"
#include "host/core/setting.h"

namespace fax::host {

// Where the document goes first when the dialog opens; the user can change it there.
enum class Destination { printer, file, preview };

struct CommandLine {
  enum class Action { print, list, forget, help, version };

  Action action = Action::print;
  std::optional<std::string> printer;    // queue name; none: the default queue
  std::vector<Setting> options;          // --option in the order given; of two with one key the later counts
  int copies = 1;                        // 1..9999
  std::optional<std::string> title;      // none: the document's
  std::optional<std::string> extension;  // path of a print dialog extension bundle; none: the PPD's
  bool timing = false;                   // print how long each step took
  bool alert = false;                    // say in a window, too, why there is no dialog
  bool status = true;                    // follow the job in a window after Print
  std::optional<std::string> ui_map;     // file to write the positions of the dialog's controls to
  std::optional<std::string> output;     // file for Destination::file
  std::string theme = "auto";            // or "light", "dark"
  double scale = 0;                      // --scale, 1..4; 0: as large as the desktop has it
  Destination destination = Destination::printer;
  std::string pages;                     // --pages as typed; "": all pages
  std::vector<std::string> files;        // paths of the documents, "-" for standard input; filled exactly to print
};

// Arguments without the program's own name. "--" ends the options; options and FILE may come in any order. Failure
// (ExitCode::usage) names the argument at fault and says "Try 'faxprint --help'". --help, --version, --list and --forget need
// no FILE; --output alone means --to file. Not thread-safe (getopt_long).
Result<CommandLine> parse_command_line(std::vector<std::string> const &arguments);

// The whole text of --help and of --version, each ending in a line break.
std::string help_text();
std::string version_text();

}  // namespace fax::host
