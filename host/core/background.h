// One piece of work on a thread of its own, whose end the toolkit's loop can be told of.
#pragma once

#include <atomic>
#include <functional>
#include <memory>

#include "host/core/child.h"

namespace fax::host {

class Background {
public:
  // Starts work, which is asked to stop by its argument and should then soon do so. It sees nothing that may end before
  // it; what it throws is lost.
  explicit Background(std::function<void(Stop const &)> work);
  // Asks it to stop and does not wait.
  ~Background();
  Background(Background const &) = delete;
  Background &operator=(Background const &) = delete;

  // Becomes readable (end of file) when the work is over. The caller owns it from now on; empty the second time.
  Descriptor take_descriptor() { return std::move(ended_); }

private:
  std::shared_ptr<std::atomic<bool>> stopped_ = std::make_shared<std::atomic<bool>>(false);
  Descriptor ended_;
};

}  // namespace fax::host
