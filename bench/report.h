// Medians, and the table and the file that show them.
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace fax::bench {

// What work takes, in milliseconds of the wall clock.
double milliseconds(std::function<void()> const &work);

// The middle one of at least one value.
double median(std::vector<double> values);

struct Figure {
  std::string name;
  std::size_t entries = 0;
  double value = 0;
  std::string unit;
  std::optional<double> limit;  // the value must not be above it

  bool met() const { return !limit || value <= *limit; }
};

class Report {
 public:
  void add(Figure figure) { figures_.push_back(std::move(figure)); }
  bool all_met() const;
  // One line a figure.
  void print() const;
  // The same as JSON; false when the file cannot be written.
  bool write(std::string const &path, unsigned seed) const;

 private:
  std::vector<Figure> figures_;
};

}  // namespace fax::bench
