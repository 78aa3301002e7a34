#include "bench/report.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <nlohmann/json.hpp>

namespace fax::bench {

double milliseconds(std::function<void()> const &work) {
  auto const start = std::chrono::steady_clock::now();
  work();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  std::size_t const middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

bool Report::all_met() const {
  return std::all_of(figures_.begin(), figures_.end(), [](Figure const &figure) { return figure.met(); });
}

void Report::print() const {
  std::printf("%-46s %8s %10s %10s\n", "", "entries", "median", "bar");
  for (Figure const &figure : figures_) {
    std::printf("%-46s %8zu %10.2f ", figure.name.c_str(), figure.entries, figure.value);
    if (figure.limit) {
      std::printf("%10.2f %-4s %s\n", *figure.limit, figure.unit.c_str(), figure.met() ? "pass" : "FAIL");
    } else {
      std::printf("%10s %s\n", "-", figure.unit.c_str());
    }
  }
  std::fflush(stdout);
}

bool Report::write(std::string const &path, unsigned seed) const {
  nlohmann::json figures = nlohmann::json::array();
  for (Figure const &figure : figures_) {
    nlohmann::json one = {{"name", figure.name}, {"entries", figure.entries}, {"value", figure.value},
                          {"unit", figure.unit}, {"met", figure.met()}};
    if (figure.limit) one["limit"] = *figure.limit;
    figures.push_back(one);
  }
  std::ofstream file(path);
  file << nlohmann::json{{"seed", seed}, {"figures", figures}}.dump(2) << '\n';
  return file.flush().good();
}

}  // namespace fax::bench
