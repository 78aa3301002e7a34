// The printer's own address book: from the directory server to the drawn table.
#pragma once
#import "bench/book_dialog.h"

#include "bench/report.h"

#include <string>

namespace fax::bench {

// Where the book is; $DIRECTFAX_PRINTER_BOOK says how it is reached.
struct Printer {
  std::string address;   // numeric
  std::string password;
  std::size_t contacts;  // how many it must be
};

// std::runtime_error when the printer does not answer with that many contacts.
void measure_printer(BookDialog const &dialog, Printer const &printer, Report &report);

}  // namespace fax::bench
