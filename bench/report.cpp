#include "bench/report.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

namespace fax::bench {

double milliseconds(std::function<void()> const &work) {
  auto const start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double processor_milliseconds(std::function<void()> const &work) {
  auto const now = [] {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  };
  double const start = now();
  work();
  return now() - start;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  std::size_t const middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

double ratio(std::vector<double> const &one, std::vector<double> const &other) {
  return *std::min_element(one.begin(), one.end()) / *std::min_element(other.begin(), other.end());
}

void Report::write(std::string const &path) const {
  nlohmann::json list = nlohmann::json::array();
  for (Figure const &figure : figures_) {
    nlohmann::json one = {{"name", figure.name}, {"who", figure.who}, {"value", figure.value}, {"unit", figure.unit}};
    if (figure.entries != 0) one["entries"] = figure.entries;
    if (figure.at_most) one["at_most"] = *figure.at_most;
    if (figure.at_least) one["at_least"] = *figure.at_least;
    list.push_back(one);
  }
  std::ofstream file(path);
  file << list.dump(2) << '\n';
  if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

}  // namespace fax::bench
