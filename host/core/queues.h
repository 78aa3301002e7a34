// The print queues of the print service.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/core/failure.h"
#include "host/core/server.h"
#include "host/core/setting.h"

namespace fax::host {

enum class QueueState { idle, printing, stopped };

// One queue as it was when it was listed. All text is UTF-8; what the service does not say is "".
struct Queue {
  std::string name;
  std::string info;  // description for people
  std::string location;
  std::string make_and_model;
  std::string device_uri;
  bool is_default = false;
  bool accepts_jobs = true;
  bool fax_capable = false;  // by the queue's type, or by a group QXFaxSettings in its PPD file
  QueueState state = QueueState::idle;
  std::vector<std::string> state_reasons;  // keywords such as "paused"; never "none"
  std::vector<Setting> defaults;           // the queue's default options and the user's own (lpoptions)

  // info, or name where info is empty.
  std::string const &display_name() const { return info.empty() ? name : info; }
};

// Every queue of the print service, in its order; printers that are only seen on the network are not queues. Bounded by
// the server's time-out and a few seconds. An empty list is no failure. Failure (ExitCode::queue): no print service, or
// it refused to answer. Any thread.
Result<std::vector<Queue>> list_queues(Server const &server);

// The queue of that name (exact match); without a name the default queue, or else the only one. Failure
// (ExitCode::queue): there are no queues; no queue has that name (the advice offers the names close to it, or all);
// there is no default among several.
Result<Queue> choose_queue(std::vector<Queue> const &queues, std::optional<std::string> const &name);

// The one to begin with when nobody has named one: the one used last, if there still is one of that name (last may be ""),
// else what choose_queue answers, else the first that can fax, else the first. Failure (ExitCode::queue): there are none.
Result<Queue> queue_to_begin_with(std::vector<Queue> const &queues, std::string const &last);

// For --list: a line for each queue, name first, the default marked, fax queues marked, each line ended. Where there is
// none, a sentence that says so.
std::string queue_table(std::vector<Queue> const &queues);

}  // namespace fax::host
