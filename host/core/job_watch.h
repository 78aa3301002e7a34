// Follows one job in the print service, on a thread of its own, and gives it orders there.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "host/core/job.h"
#include "host/core/job_status.h"
#include "host/core/server.h"

namespace fax::host {

// A job that the print service has taken, with what it was made of.
struct SubmittedJob {
  int number = 0;
  JobRequest request;
};

// What is known of the job.
struct JobNews {
  enum class Order { none, cancelling, sending_again };

  int number = 0;  // another one after the document was sent again
  JobStatus status;
  std::string trouble;        // why the print service cannot be asked now, a sentence; "" when it can
  std::string note;           // what came of the last order; "" for nothing to say
  Order order = Order::none;  // under way

  bool operator==(JobNews const &) const = default;
};

// How long one question to the print service may take, and how often it is asked while something can change.
struct WatchPace {
  int patience_seconds = 5;
  std::chrono::milliseconds between{700};
};

// The thread is never waited for: it ends with its question when this object goes, which leaves the job as it is. Every
// function returns at once.
class JobWatch {
public:
  // Throws std::system_error where no thread or descriptor can be had.
  JobWatch(Server const &server, SubmittedJob const &job, WatchPace pace = {});
  ~JobWatch();
  JobWatch(JobWatch const &) = delete;
  JobWatch &operator=(JobWatch const &) = delete;

  // A descriptor that is readable from each change of the news until read_news(). The caller owns it; -1 when there is
  // none to be had.
  int copy_descriptor() const;
  JobNews read_news();

  // Takes the job out of the queue, or breaks off the sending of a document that is being sent again.
  void cancel_job();

  // Only when the status can be retried. The print service restarts the job where it has kept its document; else the
  // job is submitted anew with the same settings, and one that waits in the queue after a failure is cancelled first. A
  // hold is kept only for a job that never left it. Where no answer comes, nothing is sent a second time.
  void retry();

private:
  std::shared_ptr<struct WatchBoard> const board_;
};

}  // namespace fax::host
