#include "gad/progress.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace fax::tool {
namespace {

constexpr std::chrono::milliseconds patience{300}, pause{50};
constexpr int width = 30;

}  // namespace

Progress::Progress(std::string label, bool quiet)
    : label_(std::move(label)), next_(Clock::now() + patience), enabled_(!quiet && isatty(STDERR_FILENO) == 1) {}

Progress::~Progress() {
  if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::show(double share) {
  if (!enabled_ || Clock::now() < next_) return;
  next_ = Clock::now() + pause;
  shown_ = true;
  int const full = std::clamp(int(share * width), 0, width);
  std::fprintf(stderr, "\r%s [%s%s] %3d %%", label_.c_str(), std::string(std::size_t(full), '#').c_str(),
               std::string(std::size_t(width - full), '.').c_str(), int(share * 100));
  std::fflush(stderr);
}

}  // namespace fax::tool
