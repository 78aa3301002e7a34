// What the editor is started with: by the panel of the print dialog, by a desktop, from a shell.
#pragma once

#include <string>
#include <vector>

namespace fax::editor {

enum class Connection { unknown, network, usb };

struct CommandLine {
  Connection connection = Connection::unknown;
  std::string address;             // of a network printer, numeric
  std::vector<std::string> books;  // absolute paths
  std::vector<std::string> lists;  // the same of .vcf and .csv files, to be imported
  std::string theme = "auto";      // a word as for theme::choice_named
  bool help = false, version = false;
  std::string fault;  // not empty: a sentence about an argument that makes no sense
};

// The panel gives single arguments with a space inside ("-DFAXConnectionType NET", "-DFAXAddress 192.168.1.20"); the
// same as two arguments is understood too. folder is what relative paths are relative to.
CommandLine parse_command_line(std::vector<std::string> const &arguments, std::string const &folder);

std::string help_text();

}  // namespace fax::editor
