// Submission of one job to the print service.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/core/document.h"
#include "host/core/failure.h"
#include "host/core/server.h"
#include "host/core/setting.h"

namespace fax::host {

// All text is UTF-8.
struct JobRequest {
  std::string queue;
  std::string title;  // "" becomes the document's
  Document document;
  int copies = 1;
  std::vector<Setting> options;   // --option of the command line that are no PPD option
  std::vector<Setting> choices;   // PpdFile::job_options()
  std::vector<Setting> settings;  // print settings, exact values, in their order
  std::vector<Setting> queue_defaults;  // Queue::defaults: not sent, but the print service adds its own, so they count
};

// Bytes given to the print service so far, and the document's size. False cancels the job. Must not throw.
using Progress = std::function<bool(std::uint64_t done, std::uint64_t total)>;

// The options as they go to CUPS: options, choices and settings joined, each key once without regard to letter case (the
// last one of a key counts, at the place of the first), values guarded (guarded_value).
std::vector<Setting> job_options(JobRequest const &request);

// What can be known before anything is sent (ExitCode::submission): a key that is not safe, text that is not UTF-8 or
// holds a NUL, a value of more than kLargestValue bytes, options of more than kLargestOptions bytes, copies outside
// 1..9999. nullopt: nothing is wrong.
std::optional<Failure> check_request(JobRequest const &request);

// Submits and answers the job's number. Blocks until the print service has taken the whole document: call it off the
// main thread where a window must stay alive. Thread-safe: uses a connection of its own. progress, which may be empty,
// is called on the calling thread before the first byte, after each piece of at most 64 KiB, and every second in which
// the print service keeps us waiting. On failure and on cancel the half-made job is taken out of the queue again over a
// new connection, which takes 5 s or so where the service is silent; where that fails, the sentence gives the job's
// number. Failure: ExitCode::cancelled, file (the document can no longer be read), queue (no print service, no such
// queue), submission (everything else).
Result<int> submit(Server const &server, JobRequest const &request, Progress const &progress);

}  // namespace fax::host
