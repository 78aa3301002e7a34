// Medians, and the file that the figures of one program go into.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace fax::bench {

// What work takes, in milliseconds of the wall clock.
double milliseconds(std::function<void()> const &work);
// The same of the processor's time that the process has, which leaves out what others on the machine do meanwhile.
double processor_milliseconds(std::function<void()> const &work);

// The middle one of at least one value.
double median(std::vector<double> values);

// How many times as long one took as the other, by the shortest of each.
double ratio(std::vector<double> const &one, std::vector<double> const &other);

struct Figure {
  std::string name;
  std::size_t entries = 0;  // 0: of no book
  double value = 0;
  std::string unit;
  std::optional<double> at_most{}, at_least{};  // its bar
  std::string who = "DirectFax";
};

class Report {
 public:
  void add(Figure figure) { figures_.push_back(std::move(figure)); }
  // As JSON; std::runtime_error when the file cannot be written.
  void write(std::string const &path) const;

 private:
  std::vector<Figure> figures_;
};

}  // namespace fax::bench
