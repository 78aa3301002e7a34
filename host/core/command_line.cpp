#include "host/core/command_line.h"

#include <algorithm>
#include <charconv>
#include <getopt.h>

#include "host/core/option_guard.h"
#include "host/core/utf8.h"

namespace fax::host {

namespace {

constexpr int kMostCopies = 9999;

enum Long : int { kList = 256, kExtension, kTiming, kUiMap, kOutput, kTo, kTheme, kVersion, kNoStatus, kPages, kForget };

constexpr option kLongOptions[] = {
    {"printer", required_argument, nullptr, 'd'},
    {"option", required_argument, nullptr, 'o'},
    {"copies", required_argument, nullptr, 'n'},
    {"title", required_argument, nullptr, 't'},
    {"pages", required_argument, nullptr, kPages},
    {"forget", no_argument, nullptr, kForget},
    {"help", no_argument, nullptr, 'h'},
    {"list", no_argument, nullptr, kList},
    {"extension", required_argument, nullptr, kExtension},
    {"timing", no_argument, nullptr, kTiming},
    {"no-status", no_argument, nullptr, kNoStatus},
    {"ui-map", required_argument, nullptr, kUiMap},
    {"output", required_argument, nullptr, kOutput},
    {"to", required_argument, nullptr, kTo},
    {"theme", required_argument, nullptr, kTheme},
    {"version", no_argument, nullptr, kVersion},
    {nullptr, 0, nullptr, 0},
};

Failure wrong(std::string const &what) { return {ExitCode::usage, what, "Try 'faxprint --help'."}; }

// An option's code as a person writes it: the long form, or "-x" for a letter that is no option.
std::string spelled(int code) {
  for (auto const &known : kLongOptions)
    if (known.name != nullptr && known.val == code) return std::string("--") + known.name;
  return std::string("-") + static_cast<char>(code);
}

std::optional<Failure> add_option(std::string const &argument, std::vector<Setting> &options) {
  std::size_t const equals = argument.find('=');
  if (equals == std::string::npos) return wrong("--option takes KEY=VALUE, not \"" + argument + "\".");
  Setting setting{argument.substr(0, equals), argument.substr(equals + 1)};
  if (setting.key == "copies") return wrong("The number of copies is given by --copies.");
  if (setting.key == "page-ranges") return wrong("The pages are given by --pages.");
  if (setting.key == "job-name") return wrong("The title of the job is given by --title.");
  if (!is_safe_key(setting.key)) return wrong("\"" + setting.key + "\" is no key for --option.");
  options.push_back(std::move(setting));
  return std::nullopt;
}

std::optional<int> number_of_copies(std::string const &argument) {
  int copies = 0;
  auto const [end, error] = std::from_chars(argument.data(), argument.data() + argument.size(), copies);
  if (error != std::errc() || end != argument.data() + argument.size() || copies < 1 || copies > kMostCopies)
    return std::nullopt;
  return copies;
}

std::optional<Destination> destination_named(std::string const &name) {
  if (name == "printer") return Destination::printer;
  if (name == "file") return Destination::file;
  if (name == "preview") return Destination::preview;
  return std::nullopt;
}

// What only the whole command line can tell.
std::optional<Failure> complete(CommandLine &line, std::optional<Destination> to,
                                std::vector<std::string> const &files) {
  if (line.output && to && *to != Destination::file)
    return wrong("--output goes with --to file only.");
  line.destination = to.value_or(line.output ? Destination::file : Destination::printer);
  if (line.action != CommandLine::Action::print) {
    if (!files.empty())
      return wrong(std::string(line.action == CommandLine::Action::list ? "--list" : "--forget") +
                   " takes no FILE, but \"" + files[0] + "\" was given.");
    return std::nullopt;
  }
  if (files.empty()) return wrong("No FILE was given.");
  if (std::count(files.begin(), files.end(), "") > 0) return wrong("The name of FILE is empty.");
  if (std::count(files.begin(), files.end(), "-") > 1) return wrong("Standard input (-) can be read once only.");
  line.files = files;
  return std::nullopt;
}

}  // namespace

Result<CommandLine> parse_command_line(std::vector<std::string> const &arguments) {
  std::vector<std::string> words{"faxprint"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char *> argv;
  for (auto &word : words) argv.push_back(word.data());
  argv.push_back(nullptr);

  CommandLine line;
  std::optional<Destination> to;
  optind = 0;  // makes glibc start afresh
  opterr = 0;
  for (;;) {
    int const code = getopt_long(static_cast<int>(words.size()), argv.data(), ":d:o:n:t:h", kLongOptions, nullptr);
    if (code == -1) break;
    std::string const argument = optarg != nullptr ? optarg : "";
    bool const may_be_empty = code == 'o' || code == 't';
    if (optarg != nullptr && argument.empty() && !may_be_empty)
      return wrong(spelled(code) + " needs a value that is not empty.");
    bool const is_path = code == kExtension || code == kUiMap || code == kOutput;
    if (!is_path && !is_utf8(argument)) return wrong("The value of " + spelled(code) + " is not valid UTF-8 text.");
    switch (code) {
      case 'd':
        line.printer = argument;
        break;
      case 'o':
        if (auto failure = add_option(argument, line.options)) return *failure;
        break;
      case 'n':
        if (auto const copies = number_of_copies(argument))
          line.copies = *copies;
        else
          return wrong("--copies takes a number from 1 to 9999, not \"" + argument + "\".");
        break;
      case 't':
        line.title = argument;
        break;
      case 'h':
        line.action = CommandLine::Action::help;
        return line;
      case kVersion:
        line.action = CommandLine::Action::version;
        return line;
      case kPages:
        line.pages = argument;
        break;
      case kForget:
        line.action = CommandLine::Action::forget;
        break;
      case kList:
        line.action = CommandLine::Action::list;
        break;
      case kExtension:
        line.extension = argument;
        break;
      case kTiming:
        line.timing = true;
        break;
      case kNoStatus:
        line.status = false;
        break;
      case kUiMap:
        line.ui_map = argument;
        break;
      case kOutput:
        line.output = argument;
        break;
      case kTo:
        to = destination_named(argument);
        if (!to) return wrong("--to takes printer, file or preview, not \"" + argument + "\".");
        break;
      case kTheme:
        if (argument != "auto" && argument != "light" && argument != "dark")
          return wrong("--theme takes auto, light or dark, not \"" + argument + "\".");
        line.theme = argument;
        break;
      case ':':
        return wrong(spelled(optopt) + " needs a value.");
      default:
        if (optopt == 0)
          return wrong("The option \"" + std::string(argv[optind - 1]) + "\" is not known, or could be several.");
        if (std::string const name = spelled(optopt); name.starts_with("--")) return wrong(name + " takes no value.");
        return wrong("The option \"" + spelled(optopt) + "\" is not known.");
    }
  }
  std::vector<std::string> const files(argv.begin() + optind, argv.end() - 1);
  if (auto failure = complete(line, to, files)) return *failure;
  return line;
}

std::string version_text() { return "faxprint (DirectFax) " FAXPRINT_VERSION "\n"; }

std::string help_text() {
  return R"(Usage: faxprint [OPTION]... FILE...
       faxprint --list
       faxprint --forget

Shows the print dialog for FILE, with the fax panel of the printer's driver, and
submits it to CUPS as one job: several FILEs one behind the other, as one PDF.
FILE is a PDF, PostScript, an image or a text; "-" is standard input.

  -d, --printer NAME      print queue; without it the one used last, or the default
      --list              list the print queues and end
  -o, --option KEY=VALUE  set a job option or a PPD option; may be repeated
  -n, --copies N          number of copies, 1 to 9999
  -t, --title TEXT        title of the job; without it the name of FILE
      --pages RANGE       pages to send, such as 1-3,5 or 2-; counted over all FILEs
      --to DESTINATION    where the dialog starts: printer, file or preview
      --output FILE       file to write to; without --to it means --to file
      --extension BUNDLE  print dialog extension to load; without it the one that
                          the printer's PPD file names (*APDialogExtension)
      --no-status         end as soon as the job is submitted, without the window
                          that follows it
      --theme THEME       auto, light or dark; auto, which holds without it, follows
                          the desktop
      --timing            print to standard error how long each step took
      --ui-map FILE       write the positions of the dialog's controls to FILE
      --forget            forget printer, options and window size of the last use
  -h, --help              print this text and end
      --version           print the version and end

Examples:
  faxprint report.pdf
  faxprint --printer fax --option QXFaxImageQuality=Fine report.pdf
  faxprint --to file --output copy.pdf report.pdf
  faxprint --pages 2- letter.pdf map.png
  man -t lp | faxprint -

Exit codes:
  0  the job was submitted, whatever became of it there, or the text that was
     asked for was printed
  1  cancelled; nothing was submitted
  2  wrong command line
  3  the document cannot be read, or the output file cannot be written
  4  no print service, no such queue, or a broken PPD file
  5  the queue did not take the job; nothing is left in the queue
  6  the print dialog extension cannot be loaded

The print service is found as by every CUPS program: CUPS_SERVER, client.conf.
Printer, its options and the window's size are kept for the next time in
~/.config/directfax/faxprint.json; recipients and passwords never are.
)";
}

}  // namespace fax::host
