// The bundle's dialogs. The address-book dialog at scale: from the file to the drawn table, a key in the search field, a
// group, the memory, and the printer's book. Besides, what the panel and the fax dialog do without showing anything.
#import "bench/book_dialog.h"

#include "bench/generated_book.h"
#include "bench/panel_bench.h"
#include "bench/printer_bench.h"
#include "bench/report.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <numeric>
#include <optional>
#include <random>
#include <stdexcept>
#include <unistd.h>

namespace {

using namespace fax::bench;

constexpr int kRounds = 21;
// Books up to here have limits of their own.
constexpr std::size_t kSmallBook = 10000;
constexpr unichar kBack = 0x7F;
constexpr unichar kKeys[] = {'s', 'c', 'h', 'm', 'i', 'd', 't', kBack, kBack, kBack, kBack, kBack, kBack, kBack, 'e', kBack};

double resident_mebibytes() {
  std::ifstream file("/proc/self/statm");
  long total = 0, resident = 0;
  file >> total >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

class Bench {
 public:
  Bench(unsigned seed, std::string folder) : seed_(seed), folder_(std::move(folder)), dialog_(open_book_dialog()) {}

  void run(std::size_t entries) {
    std::string const path = folder_ + "/" + std::to_string(entries) + ".gad";
    write_book(path, entries, seed_);
    choose_file(dialog_, path);
    double const empty = resident_mebibytes();
    read();
    draw(dialog_.window);
    expect(entries);
    report_.add({"Memory of the loaded dialog", entries, resident_mebibytes() - empty, "MiB", 64.0});
    reading(entries, path);
    searching(entries);
    report_.add({"The same after all readings and searches", entries, resident_mebibytes() - empty, "MiB", {}});
    expanding(entries);
    [dialog_.entries setContent:[NSMutableArray array]];
    draw(dialog_.window);
    std::filesystem::remove(path);
  }
  void run_panel() {
    measure_job(dialog_, report_);
    measure_addresses(report_);
  }
  void run_printer(Printer const &printer) { measure_printer(dialog_, printer, report_); }
  Report const &report() const { return report_; }

 private:
  void read() {
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [dialog_.controller initPCAdressBookTab];
    [pool release];
  }
  std::size_t shown() { return [[dialog_.entries arrangedObjects] count]; }
  void expect(std::size_t entries) {
    if (shown() != entries) throw std::runtime_error("shows " + std::to_string(shown()) + " entries");
  }

  void reading(std::size_t entries, std::string const &path) {
    std::vector<double> steps, steps_alone, shown, shown_alone, drawn;  // alone: without the machine's other work
    for (int round = 0; round < kRounds; ++round) {
      NSAutoreleasePool *pool = [NSAutoreleasePool new];
      steps_alone.push_back(
          processor_milliseconds([&] { steps.push_back(milliseconds([&] { step_through(path); })); }));
      shown_alone.push_back(processor_milliseconds([&] { shown.push_back(milliseconds([&] { read(); })); }));
      drawn.push_back(shown.back() + milliseconds([&] { draw(dialog_.window); }));
      [pool release];
    }
    expect(entries);
    report_.add({"Bare SQLite loop over the file", entries, median(steps), "ms", {}});
    report_.add({"File to sorted list", entries, median(shown), "ms", {}});
    std::optional<double> const limit = entries == kSmallBook ? std::optional(3.0) : std::nullopt;
    report_.add({"File to sorted list, times that loop", entries, ratio(shown_alone, steps_alone), "x", limit});
    report_.add({"File to drawn table", entries, median(drawn), "ms", entries <= kSmallBook ? 100.0 : 500.0});
  }

  // Types a name letter by letter and takes it back.
  void searching(std::size_t entries) {
    std::vector<double> all, worst;
    std::size_t fewest = entries;
    for (int round = 0; round < kRounds; ++round) {
      [dialog_.window makeFirstResponder:dialog_.search];
      worst.push_back(0);
      for (unichar const key : kKeys) {
        NSAutoreleasePool *pool = [NSAutoreleasePool new];
        all.push_back(milliseconds([&] {
          press(dialog_, key);
          draw(dialog_.window);
        }));
        worst.back() = std::max(worst.back(), all.back());
        fewest = std::min(fewest, this->shown());
        [pool release];
      }
      expect(entries);
    }
    if (fewest == entries) throw std::runtime_error("the search field does not search");
    double const limit = entries <= kSmallBook ? 16.0 : 33.0;
    report_.add({"Key in the search field to drawn table", entries, median(all), "ms", limit});
    report_.add({"The slowest key of a round", entries, median(worst), "ms", limit});
  }

  void expanding(std::size_t entries) {
    std::vector<unsigned short> ids(std::min<std::size_t>(entries, 65535));
    std::iota(ids.begin(), ids.end(), static_cast<unsigned short>(1));
    std::shuffle(ids.begin(), ids.end(), std::mt19937(seed_));
    ids.resize(std::min<std::size_t>(ids.size(), 1000));
    NSMutableArray *members = [NSMutableArray array];
    for (unsigned short const member : ids) [members addObject:[NSNumber numberWithUnsignedShort:member]];
    NSDictionary *group = [NSDictionary dictionaryWithObject:members forKey:@"userIDList"];
    std::vector<double> took;
    for (int round = 0; round < kRounds; ++round) {
      NSAutoreleasePool *pool = [NSAutoreleasePool new];
      NSArray *found = nil;
      took.push_back(
          milliseconds([&] { found = [dialog_.controller getAddressListFrom:group ofAddressBook:dialog_.entries]; }));
      if ([found count] != ids.size()) throw std::runtime_error("members are missing");
      [pool release];
    }
    report_.add({"Group of 1,000 members", entries, median(took), "ms", 2.0});
  }

  unsigned seed_;
  std::string folder_;
  BookDialog dialog_;
  Report report_;
};

}  // namespace

// The toolkit reads the command line as pairs (-name value) and opens any other word as a file.
int main() {
  NSAutoreleasePool *pool = [NSAutoreleasePool new];
  [NSApplication sharedApplication];
  [NSApp finishLaunching];
  NSUserDefaults *arguments = [NSUserDefaults standardUserDefaults];
  unsigned const seed = static_cast<unsigned>([arguments integerForKey:@"seed"]);
  NSArray *sizes = [[arguments stringForKey:@"entries"] componentsSeparatedByString:@","];
  NSString *output = [arguments stringForKey:@"json"];
  NSString *printer = [arguments stringForKey:@"printer"];
  std::string folder = std::filesystem::temp_directory_path() / "address_bench.XXXXXX";
  if ([sizes count] == 0 || output == nil || mkdtemp(folder.data()) == nullptr) {
    std::fprintf(stderr, "usage: address_bench -seed N -entries N[,N...] -json FILE [-printer ADDRESS -password TEXT -contacts N]\n");
    _exit(2);
  }
  bool done = false;
  try {
    Bench bench(seed, folder);
    for (NSUInteger at = 0; at < [sizes count]; ++at) {
      bench.run(static_cast<std::size_t>([[sizes objectAtIndex:at] integerValue]));
    }
    bench.run_panel();
    if (printer != nil) {
      bench.run_printer({[printer UTF8String], [[arguments stringForKey:@"password"] UTF8String],
                         static_cast<std::size_t>([arguments integerForKey:@"contacts"])});
    }
    bench.report().write([output UTF8String]);
    done = true;
  } catch (std::exception const &failure) {
    std::fprintf(stderr, "address_bench: %s\n", failure.what());
  }
  std::filesystem::remove_all(folder);
  [pool release];
  // The toolkit's own clean-up at exit waits for its daemons.
  _exit(done ? 0 : 1);
}
