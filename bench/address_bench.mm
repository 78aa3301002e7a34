// Address lists at scale: from the file to the drawn table, a key in the search field, a group, the memory.
#import "bench/table_window.h"

#include "bench/generated_book.h"
#include "bench/report.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <sqlite3.h>
#include <unistd.h>

namespace {

using namespace fax::bench;

constexpr int kRounds = 9;
char const *const kKeys[] = {"s", "sc", "sch", "schm", "schmi", "schmid", "schmidt", "schmid", "e", "ü", "qq", ""};

double resident_mebibytes() {
  std::ifstream file("/proc/self/statm");
  long total = 0, resident = 0;
  file >> total >> resident;
  return static_cast<double>(resident) * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1024.0 * 1024.0);
}

fax::AddressBook read_book(std::string const &path) {
  fax::AddressBook book;
  sqlite3 *database = nullptr;
  sqlite3_stmt *rows = nullptr;
  sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
  sqlite3_prepare_v2(database, "select id, name, number, company, note from individuals", -1, &rows, nullptr);
  while (sqlite3_step(rows) == SQLITE_ROW) {
    std::u16string_view text[4];
    for (int at = 0; at < 4; ++at) {
      auto const *units = static_cast<char16_t const *>(sqlite3_column_text16(rows, at + 1));
      text[at] = {units, static_cast<std::size_t>(sqlite3_column_bytes16(rows, at + 1)) / 2};
    }
    book.add_individual(static_cast<std::uint16_t>(sqlite3_column_int(rows, 0)), text[0], text[1], text[2], text[3]);
  }
  sqlite3_finalize(rows);
  sqlite3_close(database);
  return book;
}

class Bench {
 public:
  Bench(unsigned seed, std::string folder) : seed_(seed), folder_(std::move(folder)) {}

  void run(std::size_t entries) {
    std::string const path = folder_ + "/" + std::to_string(entries) + ".gad";
    write_book(path, invented_people(entries, seed_));
    memory(entries, path);
    reading(entries, path);
    searching(entries);
    expanding(entries);
    [ui_.list showRows:nil];
    draw(ui_.window);
  }
  Report const &report() const { return report_; }

 private:
  void memory(std::size_t entries, std::string const &path) {
    double const empty = resident_mebibytes();
    NSAutoreleasePool *pool = [NSAutoreleasePool new];
    [ui_.list showRows:[AddressRows rowsOfBook:read_book(path)]];
    draw(ui_.window);
    [pool release];
    report_.add({"Memory of the loaded list", entries, resident_mebibytes() - empty, "MiB", 64.0});
  }

  void reading(std::size_t entries, std::string const &path) {
    std::vector<double> steps, shown, drawn;
    for (int round = 0; round < kRounds; ++round) {
      NSAutoreleasePool *pool = [NSAutoreleasePool new];
      steps.push_back(milliseconds([&] { step_through(path); }));
      shown.push_back(milliseconds([&] { [ui_.list showRows:[AddressRows rowsOfBook:read_book(path)]]; }));
      drawn.push_back(shown.back() + milliseconds([&] { draw(ui_.window); }));
      [pool release];
    }
    double const step = median(steps);
    report_.add({"Bare step loop over the file", entries, step, "ms", {}});
    report_.add({"File to sorted list, times the step loop", entries, median(shown) / step, "x", 3.0});
    report_.add({"File to drawn table", entries, median(drawn), "ms", entries <= 10000 ? 100.0 : 500.0});
  }

  void searching(std::size_t entries) {
    rows_ = [[AddressRows rowsOfBook:read_book(folder_ + "/" + std::to_string(entries) + ".gad")] retain];
    std::vector<double> all;
    std::vector<double> worst_of_rounds;
    for (int round = 0; round < kRounds; ++round) {
      double worst = 0;
      for (char const *key : kKeys) {
        NSAutoreleasePool *pool = [NSAutoreleasePool new];
        NSString *text = [NSString stringWithUTF8String:key];
        double const took = milliseconds([&] {
          [ui_.search setStringValue:text];
          [ui_.list showRows:[rows_ rowsNamed:[ui_.search stringValue]]];
          draw(ui_.window);
        });
        all.push_back(took);
        worst = std::max(worst, took);
        [pool release];
      }
      worst_of_rounds.push_back(worst);
    }
    double const limit = entries <= 10000 ? 16.0 : 33.0;
    report_.add({"Key in the search field to drawn table", entries, median(all), "ms", limit});
    report_.add({"Worst key of a round", entries, median(worst_of_rounds), "ms", limit});
    [ui_.list showRows:rows_];
  }

  void expanding(std::size_t entries) {
    std::mt19937 random(seed_);
    NSMutableArray *ids = [NSMutableArray array];
    for (int at = 0; at < 1000; ++at) {
      [ids addObject:[NSNumber numberWithUnsignedShort:static_cast<unsigned short>(1 + random() % std::min<std::size_t>(
                                                                                            entries, 65535))]];
    }
    NSDictionary *group = [NSDictionary dictionaryWithObject:ids forKey:@"userIDList"];
    std::vector<double> took;
    for (int round = 0; round < kRounds; ++round) {
      NSAutoreleasePool *pool = [NSAutoreleasePool new];
      BOOL complete = NO;
      took.push_back(milliseconds([&] { fax::members_of_group(group, ui_.list, &complete); }));
      [pool release];
    }
    report_.add({"Group of 1,000 members", entries, median(took), "ms", 2.0});
    [rows_ release];
  }

  unsigned seed_;
  std::string folder_;
  TableWindow ui_ = open_table_window();
  AddressRows *rows_ = nil;
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
  char folder[] = "/tmp/address_bench.XXXXXX";
  if ([sizes count] == 0 || output == nil || mkdtemp(folder) == nullptr) {
    std::fprintf(stderr, "usage: address_bench -seed N -entries N[,N...] -json FILE\n");
    _exit(2);
  }
  bool met = false;
  try {
    Bench bench(seed, folder);
    for (NSUInteger at = 0; at < [sizes count]; ++at) {
      bench.run(static_cast<std::size_t>([[sizes objectAtIndex:at] integerValue]));
    }
    bench.report().print();
    met = bench.report().all_met();
    if (!bench.report().write([output UTF8String], seed)) {
      std::fprintf(stderr, "address_bench: cannot write %s\n", [output UTF8String]);
      met = false;
    }
  } catch (std::exception const &failure) {
    std::fprintf(stderr, "address_bench: %s\n", failure.what());
  }
  std::filesystem::remove_all(folder);
  [pool release];
  std::fflush(stdout);
  // The toolkit's own clean-up at exit waits for its daemons.
  _exit(met ? 0 : 1);
}
