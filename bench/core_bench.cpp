// The parts without a window, beside those of other libraries on the same work: search, sort and read of an address
// book, and base64. All of them take turns, and what is measured is the processor's time.
#include "bench/generated_book.h"
#include "bench/peers.h"
#include "bench/report.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <map>
#include <random>
#include <stdexcept>
#include <unistd.h>

namespace {

using namespace fax::bench;

// The size that the bars are for.
constexpr std::size_t kBarEntries = 10000;
constexpr char kOwn[] = "DirectFax";

// Times of each that takes part, a turn each.
using Times = std::map<std::string, std::vector<double>>;

// As many turns as one book's size leaves time for.
int turns(std::size_t entries) { return entries <= 3000 ? 15 : entries <= 10000 ? 9 : entries <= 30000 ? 5 : 3; }

class CoreBench {
 public:
  CoreBench(unsigned seed, std::string folder) : seed_(seed), folder_(std::move(folder)) {}

  void run(std::size_t entries) {
    std::string const path = folder_ + "/" + std::to_string(entries) + ".gad";
    write_book(path, entries, seed_);
    reading(entries, path);
    searching(entries, path);
    std::filesystem::remove(path);
  }
  void run_base64(std::size_t bytes);
  Report const &report() const { return report_; }

 private:
  void add(std::string name, std::size_t entries, Times const &times, double scale, std::string unit) {
    for (auto const &[who, values] : times) {
      report_.add({.name = name, .entries = entries, .value = median(values) * scale, .unit = unit, .who = who});
    }
  }

  void reading(std::size_t entries, std::string const &path) {
    constexpr char kLoop[] = "SQLite", kLoopAlone[] = "SQLite without mutexes";
    Times read, sorted, both;
    for (int turn = 0; turn < 4 * turns(entries); ++turn) {
      read[kLoop].push_back(processor_milliseconds([&] { step_through(path); }));
      read[kLoopAlone].push_back(processor_milliseconds([&] { step_through_alone(path); }));
      both[kLoop].push_back(read[kLoop].back());
      for (ModelMaker const &maker : models()) {
        auto const model = maker.make();
        read[maker.who].push_back(processor_milliseconds([&] { model->read(path); }));
        sorted[maker.who].push_back(processor_milliseconds([&] { model->sort(); }));
        both[maker.who].push_back(read[maker.who].back() + sorted[maker.who].back());
      }
    }
    add("Read a file", entries, read, 1, "ms");
    add("First sort", entries, sorted, 1, "ms");
    bool const bar = entries == kBarEntries;
    auto const at_most = [bar](double limit) { return bar ? std::optional(limit) : std::nullopt; };
    report_.add({"Read a file, times the bare SQLite loop", entries, ratio(read.at(kOwn), read.at(kLoop)), "x", at_most(2)});
    report_.add({"Read a file, times that loop without mutexes", entries, ratio(read.at(kOwn), read.at(kLoopAlone)), "x"});
    report_.add({"Read and sort, times the bare SQLite loop", entries, ratio(both.at(kOwn), both.at(kLoop)), "x", at_most(3)});
    compare("First sort, how much slower", entries, sorted, {});
    compare("Read and sort, how much slower", entries, both, {});
  }

  void searching(std::size_t entries, std::string const &path) {
    char const *const keys[] = {"s", "sc", "sch", "schm", "schmi", "schmid", "schmidt", ""};
    std::map<std::string, std::unique_ptr<Model>> all;
    for (ModelMaker const &maker : models()) {
      auto &model = all[maker.who] = maker.make();
      model->read(path);
      model->sort();
    }
    Times mean, worst;
    for (int turn = 0; turn < turns(entries); ++turn) {
      std::map<std::string, std::size_t> found;
      for (auto const &[who, model] : all) {
        double sum = 0, longest = 0;
        for (char const *const key : keys) {
          std::size_t hits = 0;
          double const took = processor_milliseconds([&] { hits = model->search(key); });
          sum += took;
          longest = std::max(longest, took);
          if (found.try_emplace(key, hits).first->second != hits) throw std::runtime_error(who + " finds others");
        }
        mean[who].push_back(sum / std::size(keys));
        worst[who].push_back(longest);
      }
      if (found["s"] == entries || found["schmidt"] == 0) throw std::runtime_error("the search is none");
    }
    add("A key in the search field", entries, mean, 1000, "us");
    add("The slowest key", entries, worst, 1000, "us");
    compare("A key, how much slower", entries, mean, entries == kBarEntries ? std::optional(50.0) : std::nullopt);
  }

  // How many times as long as DirectFax each other model takes.
  void compare(std::string const &name, std::size_t entries, Times const &times, std::optional<double> at_least) {
    for (ModelMaker const &maker : models()) {
      if (maker.who == kOwn) continue;
      report_.add({.name = name, .entries = entries,
                   .value = ratio(times.at(maker.who), times.at(kOwn)), .unit = "x",
                   .at_least = at_least, .who = maker.who});
    }
  }

  unsigned seed_;
  std::string folder_;
  Report report_;
};

void CoreBench::run_base64(std::size_t bytes) {
  constexpr int kTurns = 201;
  std::mt19937 random(seed_);
  std::vector<std::uint8_t> raw(bytes), text(bytes / 3 * 4 + 8), back(bytes + 8), expected;
  std::generate(raw.begin(), raw.end(), [&random] { return static_cast<std::uint8_t>(random()); });
  Times encode, decode;
  for (int turn = 0; turn < kTurns; ++turn) {
    for (Base64 const &one : base64s()) {
      std::size_t length = 0;
      encode[one.who].push_back(processor_milliseconds([&] { length = one.encode(raw.data(), raw.size(), text.data()); }));
      text[length] = 0;
      if (expected.empty()) expected.assign(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(length));
      bool const same = std::equal(expected.begin(), expected.end(), text.begin()) && length == expected.size();
      std::size_t decoded = 0;
      decode[one.who].push_back(processor_milliseconds([&] { decoded = one.decode(text.data(), length, back.data()); }));
      if (!same || decoded < bytes || std::memcmp(raw.data(), back.data(), bytes) != 0) {
        throw std::runtime_error(one.who + ": other base64");
      }
    }
  }
  std::string const size = " " + std::to_string(bytes / 1024) + " KiB";
  add("Base64, encode" + size, 0, encode, 1000, "us");
  add("Base64, decode" + size, 0, decode, 1000, "us");
  for (Base64 const &one : base64s()) {
    if (one.who == kOwn) continue;
    report_.add({.name = "Base64, encode" + size + ", how much slower", .value = ratio(encode.at(one.who), encode.at(kOwn)),
                 .unit = "x", .at_least = 2, .who = one.who});
    report_.add({.name = "Base64, decode" + size + ", how much slower", .value = ratio(decode.at(one.who), decode.at(kOwn)),
                 .unit = "x", .at_least = 1, .who = one.who});
  }
}

// "1000,10000"; empty for anything else.
std::vector<std::size_t> numbers(std::string_view text) {
  std::vector<std::size_t> list;
  char const *at = text.data(), *const end = at + text.size();
  while (true) {
    std::size_t number = 0;
    auto const [behind, error] = std::from_chars(at, end, number);
    if (error != std::errc() || number == 0 || (behind != end && *behind != ',')) return {};
    list.push_back(number);
    if (behind == end) return list;
    at = behind + 1;
  }
}

}  // namespace

int main(int count, char **arguments) {
  std::vector<std::size_t> const entries = count == 4 ? numbers(arguments[2]) : std::vector<std::size_t>();
  std::string folder = std::filesystem::temp_directory_path() / "core_bench.XXXXXX";
  if (entries.empty() || mkdtemp(folder.data()) == nullptr) {
    std::fprintf(stderr, "usage: core_bench SEED ENTRIES[,ENTRIES...] FILE\n");
    return 2;
  }
  int code = 0;
  try {
    CoreBench bench(static_cast<unsigned>(std::strtoul(arguments[1], nullptr, 10)), folder);
    for (std::size_t const size : entries) bench.run(size);
    bench.run_base64(64 * 1024);
    bench.report().write(arguments[3]);
  } catch (std::exception const &failure) {
    std::fprintf(stderr, "core_bench: %s\n", failure.what());
    code = 1;
  }
  std::filesystem::remove_all(folder);
  return code;
}
