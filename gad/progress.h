// A bar on the terminal for work that takes long.
#pragma once

#include <chrono>
#include <string>

namespace fax::tool {

// Shows itself on standard error when that is a terminal and the work takes longer than a moment, and is gone at its
// end.
class Progress {
public:
  Progress(std::string label, bool quiet);
  ~Progress();
  Progress(Progress const &) = delete;
  Progress &operator=(Progress const &) = delete;

  // The share that is done, 0 to 1. Cheap.
  void show(double share);

private:
  using Clock = std::chrono::steady_clock;
  std::string label_;
  Clock::time_point next_;
  bool enabled_, shown_ = false;
};

}  // namespace fax::tool
