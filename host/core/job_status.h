// What has become of a job, in words: from what the print service says of it to what a person reads, in the user's
// language.
#pragma once

#include <cups/cups.h>
#include <ctime>
#include <string>
#include <vector>

namespace fax::host {

// What the print service says of one job and its queue at one time. Text is UTF-8; what it does not say is "" or 0.
struct JobReport {
  ipp_jstate_t state = IPP_JSTATE_PENDING;
  std::vector<std::string> reasons{};  // job-state-reasons, without "none"
  std::string message{};               // job-printer-state-message: the last word of the filter or the backend
  std::string hold_until{};            // job-hold-until: a keyword, or a time of day in UTC; "" for no hold
  int pages_done = 0;
  int pages = 0;
  bool began = false;  // it was processed, or is
  std::string uuid{};  // tells the job from another one that was given the same number later
  ipp_pstate_t printer_state = IPP_PSTATE_IDLE;
  std::vector<std::string> printer_reasons{};
  std::string printer_message{};
};

// Reads the answers to Get-Job-Attributes and Get-Printer-Attributes; either may be nullptr.
JobReport read_report(ipp_t *job, ipp_t *printer);

enum class JobPhase { waiting, held, processing, done, failed, cancelled, lost };

struct JobStatus {
  JobPhase phase = JobPhase::waiting;
  std::string headline;
  std::vector<std::string> details;  // whole sentences, the most important one first
  bool can_cancel = false;
  bool can_retry = false;  // only after a failure or a cancel: what was done is not done twice

  // Nothing more comes of the job by itself.
  bool over() const;
  bool operator==(JobStatus const &) const = default;
};

// now: to say "tomorrow" of a held job. Times are told in the local time zone.
JobStatus job_status(JobReport const &report, std::time_t now);

// Of a job that the print service does not know any more.
JobStatus lost_job_status();

}  // namespace fax::host
