#include "host/core/command_line.h"

#include <algorithm>
#include <charconv>
#include <getopt.h>
#include <iterator>

#include "host/core/option_guard.h"
#include "host/core/utf8.h"
#include "texts/texts.h"

namespace fax::host {

namespace {

constexpr int kMostCopies = 9999;

enum Long : int { kList = 256, kExtension, kTiming, kUiMap, kOutput, kTo, kTheme, kScale, kAlert, kVersion, kNoStatus, kPages, kForget };

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
    {"scale", required_argument, nullptr, kScale},
    {"alert", no_argument, nullptr, kAlert},
    {"version", no_argument, nullptr, kVersion},
    {nullptr, 0, nullptr, 0},
};

Failure wrong(std::string const &what) { return {ExitCode::usage, what, tr("Try '{0}'.", "faxprint --help")}; }

// An option's code as a person writes it: the long form, or "-x" for a letter that is no option.
std::string spelled(int code) {
  for (auto const &known : kLongOptions)
    if (known.name != nullptr && known.val == code) return std::string("--") + known.name;
  return std::string("-") + static_cast<char>(code);
}

std::optional<Failure> add_option(std::string const &argument, std::vector<Setting> &options) {
  std::size_t const equals = argument.find('=');
  if (equals == std::string::npos) return wrong(tr("{0} takes KEY=VALUE, not \"{1}\".", "--option", argument));
  Setting setting{argument.substr(0, equals), argument.substr(equals + 1)};
  if (setting.key == "copies") return wrong(tr("The number of copies is given by {0}.", "--copies"));
  if (setting.key == "page-ranges") return wrong(tr("The pages are given by {0}.", "--pages"));
  if (setting.key == "job-name") return wrong(tr("The title of the job is given by {0}.", "--title"));
  if (!is_safe_key(setting.key)) return wrong(tr("\"{0}\" is no key for {1}.", setting.key, "--option"));
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

// 0 for "auto".
std::optional<double> scale_named(std::string const &argument) {
  if (argument == "auto") return 0;
  double scale = 0;
  auto const [end, error] = std::from_chars(argument.data(), argument.data() + argument.size(), scale);
  if (error != std::errc() || end != argument.data() + argument.size() || !(scale >= 1 && scale <= 4))
    return std::nullopt;
  return scale;
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
    return wrong(tr("{0} goes with {1} only.", "--output", "--to file"));
  line.destination = to.value_or(line.output ? Destination::file : Destination::printer);
  if (line.action != CommandLine::Action::print) {
    if (!files.empty())
      return wrong(tr("{0} takes no FILE, but \"{1}\" was given.",
                      line.action == CommandLine::Action::list ? "--list" : "--forget", files[0]));
    return std::nullopt;
  }
  if (files.empty()) return wrong(tr("No FILE was given."));
  if (std::count(files.begin(), files.end(), "") > 0) return wrong(tr("The name of FILE is empty."));
  if (std::count(files.begin(), files.end(), "-") > 1) return wrong(tr("Standard input (-) can be read once only."));
  line.files = files;
  return std::nullopt;
}

// The help text. Its lines are broken here and in each translation, so that they fit into 80 columns.

constexpr char const *kPurpose =
    //: Break the lines at 80 columns.
    mark("Shows the print dialog for FILE, with the fax panel of the printer's driver, and\n"
         "submits it to CUPS as one job: several FILEs one behind the other, as one PDF.\n"
         "FILE is a PDF, PostScript, an image or a text; \"-\" is standard input.");

struct OptionHelp {
  char const *spelling;
  char const *meaning;
};

// Break the lines of these at 54 columns.
constexpr OptionHelp kOptionHelp[] = {
    {"-d, --printer NAME", mark("print queue; without it the one used last, or the default")},
    {"    --list", mark("list the print queues and end")},
    {"-o, --option KEY=VALUE", mark("set a job option or a PPD option; may be repeated")},
    {"-n, --copies N", mark("number of copies, 1 to 9999")},
    {"-t, --title TEXT", mark("title of the job; without it the name of FILE")},
    {"    --pages RANGE", mark("pages to send, such as 1-3,5 or 2-; counted over all FILEs")},
    //: "printer", "file" and "preview" are typed as they stand here.
    {"    --to DESTINATION", mark("where the dialog starts: printer, file or preview")},
    {"    --output FILE", mark("file to write to; without --to it means --to file")},
    {"    --extension BUNDLE", mark("print dialog extension to load; without it the one that\n"
                                    "the printer's PPD file names (*APDialogExtension)")},
    {"    --no-status", mark("end as soon as the job is submitted, without the window\n"
                             "that follows it")},
    {"    --alert", mark("say in a window, too, why the dialog cannot be shown; for\n"
                         "those who start it without a terminal")},
    //: "auto", "light" and "dark" are typed as they stand here.
    {"    --theme THEME", mark("auto, light or dark; auto, which holds without it, follows\n"
                               "the desktop")},
    {"    --scale FACTOR", mark("size of the dialog, 1 to 4, such as 1.5; auto, which\n"
                                "holds without it, is as large as the desktop has its\n"
                                "text")},
    {"    --timing", mark("print to standard error how long each step took")},
    {"    --ui-map FILE", mark("write the positions of the dialog's controls to FILE")},
    {"    --forget", mark("forget printer, options and window size of the last use")},
    {"-h, --help", mark("print this text and end")},
    {"    --version", mark("print the version and end")},
};

constexpr char const *kExamples[] = {
    "faxprint report.pdf",
    "faxprint --printer fax --option QXFaxImageQuality=Fine report.pdf",
    "faxprint --to file --output copy.pdf report.pdf",
    "faxprint --pages 2- letter.pdf map.png",
    "man -t lp | faxprint -",
};

// By their number.
constexpr char const *kExitCodeHelp[] = {
    //: This and the next six: what an exit code means.
    mark("the job was submitted, whatever became of it there, or the text that was\n"
         "asked for was printed"),
    mark("cancelled; nothing was submitted"),
    mark("wrong command line"),
    mark("the document cannot be read, or the output file cannot be written"),
    mark("no print service, no such queue, or a broken PPD file"),
    mark("the queue did not take the job; nothing is left in the queue"),
    mark("the print dialog extension cannot be loaded"),
};

constexpr char const *kRemarks =
    //: Break the lines at 80 columns.
    mark("The print service is found as by every CUPS program: CUPS_SERVER, client.conf.\n"
         "Printer, its options and the window's size are kept for the next time in\n"
         "~/.config/directfax/faxprint.json; recipients and passwords never are.");

// A word, and what it means from a column on; further lines of that begin there too.
std::string help_row(std::string word, std::size_t column, std::string const &meaning) {
  std::string row = std::move(word);
  row.resize(std::max(column, row.size() + 1), ' ');
  for (char const letter : meaning) {
    row += letter;
    if (letter == '\n') row.append(column, ' ');
  }
  return row + "\n";
}

}  // namespace

Result<CommandLine> parse_command_line(std::vector<std::string> const &arguments) {
  std::vector<std::string> words{"faxprint"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char *> argv;
  argv.reserve(words.size() + 1);
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
      return wrong(tr("{0} needs a value that is not empty.", spelled(code)));
    bool const is_path = code == kExtension || code == kUiMap || code == kOutput;
    if (!is_path && !is_utf8(argument)) return wrong(tr("The value of {0} is not valid UTF-8 text.", spelled(code)));
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
          return wrong(tr("{0} takes a number from {1} to {2}, not \"{3}\".", "--copies", 1, kMostCopies, argument));
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
        if (!to) return wrong(tr("{0} takes {1}, {2} or {3}, not \"{4}\".", "--to", "printer", "file", "preview", argument));
        break;
      case kTheme:
        if (argument != "auto" && argument != "light" && argument != "dark")
          return wrong(tr("{0} takes {1}, {2} or {3}, not \"{4}\".", "--theme", "auto", "light", "dark", argument));
        line.theme = argument;
        break;
      case kAlert:
        line.alert = true;
        break;
      case kScale:
        if (auto const scale = scale_named(argument))
          line.scale = *scale;
        else
          return wrong(tr("{0} takes {1} or a number from 1 to 4, not \"{2}\".", "--scale", "auto", argument));
        break;
      case ':':
        return wrong(tr("{0} needs a value.", spelled(optopt)));
      default:
        if (optopt == 0)
          return wrong(tr("The option \"{0}\" is not known, or could be several.", argv[optind - 1]));
        if (std::string const name = spelled(optopt); name.starts_with("--")) 
          return wrong(tr("{0} takes no value.", name));
        return wrong(tr("The option \"{0}\" is not known.", spelled(optopt)));
    }
  }
  std::vector<std::string> const files(argv.begin() + optind, argv.end() - 1);
  if (auto failure = complete(line, to, files)) return *failure;
  return line;
}

std::string version_text() { return "faxprint (DirectFax) " FAXPRINT_VERSION "\n"; }

std::string help_text() {
  std::string text = tr("Usage: {0}", "faxprint [OPTION]... FILE...") + "\n";
  for (auto const *const line : {"faxprint --list", "faxprint --forget"}) text += std::string(7, ' ') + line + "\n";
  text += "\n" + tr(kPurpose) + "\n\n";
  for (auto const &[spelling, meaning] : kOptionHelp) text += help_row(std::string("  ") + spelling, 26, tr(meaning));
  text += "\n" + tr("Examples:") + "\n";
  for (auto const *const line : kExamples) text += std::string("  ") + line + "\n";
  text += "\n" + tr("Exit codes:") + "\n";
  for (std::size_t code = 0; code < std::size(kExitCodeHelp); ++code)
    text += help_row("  " + std::to_string(code), 5, tr(kExitCodeHelp[code]));
  return text + "\n" + tr(kRemarks) + "\n";
}

}  // namespace fax::host
