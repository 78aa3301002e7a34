// The two questions about a printer's address that somebody else answers: the name service, and the local network. Each
// is asked on a thread of its own, so that nobody who waits for the answer stands still.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "host/core/device_place.h"

namespace fax::host {

struct LookupAnswer {
  enum class Outcome {
    found,
    failed,        // for a reason
    silent,        // nobody answered in time
    no_discovery,  // nobody on this machine can look for services
    reached,       // of reach_discovery() alone: somebody can
  };
  Outcome outcome = Outcome::failed;
  std::optional<NumericAddress> address;  // set exactly when found
  std::string reason;                     // what the library says, without a full stop; "" when found
};

// A question under way. The thread is never waited for: it ends when its question does, whoever still wants to know.
class Lookup {
public:
  // Starts work. Where no thread can be had, the answer is there at once. work sees nothing that may end before it.
  explicit Lookup(std::function<LookupAnswer()> work);
  ~Lookup();
  Lookup(Lookup const &) = delete;
  Lookup &operator=(Lookup const &) = delete;

  // Becomes readable (end of file) when the answer is there. The caller owns it from now on and closes it; -1 when
  // there was none, or the second time.
  int take_descriptor();
  // Waits for the answer, for at most so long. Before the descriptor is taken; true when the answer is there.
  bool wait(std::chrono::milliseconds limit) const;

  // nullopt while the question is under way. Any thread.
  std::optional<LookupAnswer> answer() const;

private:
  struct Shared;
  std::shared_ptr<Shared> shared_;
  int descriptor_ = -1;
};

// The first address that the resolver gives for a name, of either family. Blocks as long as the resolver does.
LookupAnswer look_up_name(std::string const &name);

// Whether Avahi can be asked: reached, or no_discovery. Blocks as long as the message bus does, 25 s where Avahi hangs.
LookupAnswer reach_discovery();

// The address of a DNS-SD service, by Avahi. service: "Office MFP._ipp._tcp.local", UTF-8; the domain is "local"
// whatever it says. Blocks for at most about limit once Avahi was reached.
LookupAnswer look_up_service(std::string const &service, std::chrono::milliseconds limit);

}  // namespace fax::host
