#include "host/core/background.h"

#include <array>
#include <fcntl.h>
#include <thread>
#include <unistd.h>

namespace fax::host {

Background::Background(std::function<void(Stop const &)> work) {
  std::array<int, 2> ends{-1, -1};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) return;
  ended_ = Descriptor(ends[0]);
  auto over = std::make_shared<Descriptor>(ends[1]);
  std::thread([work = std::move(work), stopped = stopped_, over]() mutable {
    try {
      work([&] { return stopped->load(); });
    } catch (...) {
      // Its answer stays away, and whoever waits for it sees the end.
    }
    over.reset();
  }).detach();
}

Background::~Background() { *stopped_ = true; }

}  // namespace fax::host
