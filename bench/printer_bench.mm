#import "bench/printer_bench.h"

#include "quoltanis/printer_book.h"

#include <stdexcept>
#include <vector>

namespace fax::bench {

namespace {

constexpr int kRounds = 9;
// Of a book of 10,000 contacts.
constexpr double kLimit = 1000.0;

void expect(std::size_t contacts, Printer const &printer) {
  if (contacts == printer.contacts) return;
  throw std::runtime_error("the printer's book has " + std::to_string(contacts) + " contacts");
}

// The library alone.
double read_book(Printer const &printer) {
  AddressData data;
  double const took = milliseconds([&] {
    PrinterBook book;
    if (book.initialize() != Status::success) throw std::runtime_error("the printer's settings have a fault");
    book.set_address(printer.address);
    if (book.read(printer.password, data) != Status::success) throw std::runtime_error("the printer cannot be read");
  });
  expect(data.individuals(Source::printer), printer);
  return took;
}

// What the tab does when it is opened: a look whether the printer answers, a connection to read, the sorted list.
double show_book(BookDialog const &dialog) {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  double const took = milliseconds([&] {
    [dialog.controller initDeviceAddressTab];
    draw(dialog.window);
  });
  [pool release];
  return took;
}

}  // namespace

void measure_printer(BookDialog const &dialog, Printer const &printer, Report &report) {
  std::vector<double> read, drawn;
  // First of all, for where that fails the dialog would show an alert and wait.
  for (int round = 0; round < kRounds; ++round) read.push_back(read_book(printer));
  [dialog.controller setIPAddress:[NSString stringWithUTF8String:printer.address.c_str()]];
  [dialog.controller setPassword:[NSString stringWithUTF8String:printer.password.c_str()]];
  show_tab(dialog, 1);
  for (int round = 0; round < kRounds; ++round) drawn.push_back(show_book(dialog));
  std::size_t contacts = 0;
  NSArray *rows = [dialog.printer_entries arrangedObjects];
  for (NSUInteger at = 0; at < [rows count]; ++at) {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    if ([[rows objectAtIndex:at] valueForKey:@"userIDList"] == nil) ++contacts;
    [pool release];
  }
  expect(contacts, printer);
  report.add({"Printer's book over StartTLS, read", printer.contacts, median(read), "ms", kLimit});
  report.add({"Printer's book over StartTLS, to drawn table", printer.contacts, median(drawn), "ms", kLimit});
}

}  // namespace fax::bench
