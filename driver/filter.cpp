// norvalt-fax-filter job user title copies options [file]
//
// The driver's filter. Leaves the fax as job-N.json and job-N.pdf (or whatever the document is) in the folder that
// DIRECTFAX_TICKETS names, and hands the document on to the backend unchanged. The ticket appears last: whoever finds it
// finds the document too.
//
// A job that cannot be faxed ends with exit code 1: CUPS then stops that job alone, keeps it with the reason shown, and
// goes on with the queue. Nothing is written for it.
#include "driver/fax_printer.h"
#include "driver/ticket.h"
#include "driver/ticket_folder.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <cups/cups.h>
#include <fcntl.h>
#include <iostream>
#include <stdexcept>
#include <unistd.h>

namespace {

void listen_to_cups() {
  struct sigaction action {};
  // The job was cancelled.
  action.sa_handler = [](int) {
    fax::remove_unfinished_files();
    _exit(EXIT_FAILURE);
  };
  sigaction(SIGTERM, &action, nullptr);
  // A backend that went away shows as a failed write.
  action.sa_handler = SIG_IGN;
  sigaction(SIGPIPE, &action, nullptr);
  // So does a file that may not grow.
  sigaction(SIGXFSZ, &action, nullptr);
}

fax::JobOptions parse_options(char const *text) {
  cups_option_t *parsed = nullptr;
  int const count = cupsParseOptions(text, 0, &parsed);
  fax::JobOptions options;
  for (int i = 0; i < count; ++i) options[parsed[i].name] = parsed[i].value;
  cupsFreeOptions(count, parsed);
  return options;
}

void run(int argc, char **argv) {
  if (argc != 6 && argc != 7)
    throw std::runtime_error{"Usage: norvalt-fax-filter job user title copies options [file]"};
  char const *ppd = std::getenv("PPD");
  if (ppd == nullptr) throw std::runtime_error{"CUPS names no PPD file"};
  auto const ticket = fax::read_ticket({argv[1], argv[2], argv[3], argv[4]}, parse_options(argv[5]),
                                       fax::read_fax_printer(ppd));

  int const in = argc == 7 ? open(argv[6], O_RDONLY | O_CLOEXEC) : STDIN_FILENO;
  if (in < 0) throw std::runtime_error{"Cannot read the document \"" + std::string{argv[6]} + "\": " + std::strerror(errno)};
  char const *named = std::getenv("DIRECTFAX_TICKETS");
  std::string const folder = named != nullptr && *named != '\0' ? named : fax::kDefaultTicketFolder;
  fax::NewFile document{folder};
  auto const copied = fax::copy_document(in, STDOUT_FILENO, document);
  if (copied.bytes == 0) throw std::runtime_error{"The document is empty"};

  auto const stem = "job-" + std::to_string(ticket.job);
  auto const document_name = stem + "." + copied.extension;
  fax::NewFile ticket_file{folder};
  ticket_file.write(fax::ticket_text(ticket, document_name, copied.bytes));
  document.publish(document_name);
  ticket_file.publish(stem + ".json");
  document.keep();
  ticket_file.keep();
  std::cerr << "INFO: Fax to " << ticket.destinations.size() << " destinations accepted\n";
}

}  // namespace

int main(int argc, char **argv) {
  try {
    listen_to_cups();
    run(argc, argv);
    return EXIT_SUCCESS;
  } catch (std::exception const &error) {
    std::cerr << "ERROR: " << error.what() << "\n";
    return EXIT_FAILURE;
  }
}
