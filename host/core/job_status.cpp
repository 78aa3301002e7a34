#include "host/core/job_status.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <string_view>

#include "texts/texts.h"

namespace fax::host {

namespace {

std::string text_of(ipp_t *answer, char const *name) {
  ipp_attribute_t *const found = ippFindAttribute(answer, name, IPP_TAG_ZERO);
  char const *const text = found != nullptr ? ippGetString(found, 0, nullptr) : nullptr;
  return text != nullptr ? text : "";
}

int number_of(ipp_t *answer, char const *name) {
  ipp_attribute_t *const found = ippFindAttribute(answer, name, IPP_TAG_ZERO);
  ipp_tag_t const tag = found != nullptr ? ippGetValueTag(found) : IPP_TAG_ZERO;
  return tag == IPP_TAG_INTEGER || tag == IPP_TAG_ENUM ? ippGetInteger(found, 0) : 0;
}

std::vector<std::string> reasons_of(ipp_t *answer, char const *name) {
  std::vector<std::string> reasons;
  ipp_attribute_t *const found = ippFindAttribute(answer, name, IPP_TAG_KEYWORD);
  for (int at = 0; found != nullptr && at < ippGetCount(found); ++at) {
    std::string const reason = ippGetString(found, at, nullptr);
    if (reason != "none") reasons.push_back(reason);
  }
  return reasons;
}

struct Meaning {
  std::string_view keyword;
  char const *text;
};

char const *meaning_of(std::string_view keyword, auto const &table) {
  auto const found =
      std::find_if(table.begin(), table.end(), [&](Meaning const &row) { return row.keyword == keyword; });
  return found != table.end() ? found->text : nullptr;
}

// The named times of job-hold-until. When an evening begins is the print service's affair.
constexpr std::array kHoldNames = {
    //: The next ones: the state of a job that waits for a time or a person.
    Meaning{"indefinite", mark("Held until it is released")}, Meaning{"day-time", mark("Held until the day")},
    Meaning{"evening", mark("Held until the evening")},       Meaning{"night", mark("Held until the night")},
    Meaning{"second-shift", mark("Held until the second shift")},
    Meaning{"third-shift", mark("Held until the third shift")},
    Meaning{"weekend", mark("Held until the weekend")},
};

// What a queue or its printer lacks, without the grade that may stand behind it ("-error").
constexpr std::array kPrinterReasons = {
    Meaning{"connecting-to-device", mark("The connection to the printer is being made.")},
    Meaning{"cover-open", mark("A cover of the printer is open.")},
    Meaning{"door-open", mark("A door of the printer is open.")},
    Meaning{"marker-supply-empty", mark("The printer has run out of ink or toner.")},
    Meaning{"media-empty", mark("The printer has run out of paper.")},
    Meaning{"media-jam", mark("Paper is jammed in the printer.")},
    Meaning{"media-needed", mark("The printer needs paper.")},
    Meaning{"offline", mark("The printer cannot be reached.")},
    Meaning{"shutdown", mark("The printer is switched off.")},
    Meaning{"timed-out", mark("The printer does not answer.")},
    Meaning{"toner-empty", mark("The printer has run out of toner.")},
};

// What the print service itself says of a filter that failed without a word.
constexpr char kUnexplained[] = "Filter failed";

std::string_view without_grade(std::string_view reason) {
  for (std::string_view const grade : {"-error", "-warning", "-report"})
    if (reason.ends_with(grade)) return reason.substr(0, reason.size() - grade.size());
  return reason;
}

bool has(std::vector<std::string> const &reasons, std::string_view wanted) {
  return std::find(reasons.begin(), reasons.end(), wanted) != reasons.end();
}

// Seconds since midnight of "HH:MM" or "HH:MM:SS".
std::optional<int> seconds_of_day(std::string_view text) {
  int fields[3] = {0, 0, 0};
  constexpr int kLimits[3] = {24, 60, 60};
  for (int at = 0; at < 3; ++at) {
    std::size_t const colon = text.find(':');
    std::string_view const field = text.substr(0, colon);
    auto const [end, error] = std::from_chars(field.data(), field.data() + field.size(), fields[at]);
    if (error != std::errc() || end != field.data() + field.size() || fields[at] < 0 || fields[at] >= kLimits[at])
      return std::nullopt;
    if (colon == std::string_view::npos && at > 0) return fields[0] * 3600 + fields[1] * 60 + fields[2];
    if (colon == std::string_view::npos) return std::nullopt;
    text.remove_prefix(colon + 1);
  }
  return std::nullopt;
}

// A time of day in UTC, the next one to come, as it stands on the clock here. The print service releases a job a little
// late: a time that has just gone by is not tomorrow's.
std::string held_until_time(int seconds, std::time_t now) {
  constexpr std::time_t kDay = 86400;
  constexpr std::time_t kLateness = 120;
  std::time_t release = now - now % kDay + seconds;
  if (release < now - kLateness) release += kDay;
  std::tm here{}, today{};
  localtime_r(&release, &here);
  localtime_r(&now, &today);
  std::array<char, 16> clock;
  std::strftime(clock.data(), clock.size(), "%H:%M", &here);
  bool const same_day = here.tm_yday == today.tm_yday;
  return same_day ? tr("Held until {0}", clock.data()) : tr("Held until {0} tomorrow", clock.data());
}

std::string held_headline(std::string const &until, std::time_t now) {
  if (auto const seconds = seconds_of_day(until)) return held_until_time(*seconds, now);
  if (char const *const named = meaning_of(until, kHoldNames)) return tr(named);
  //: The state of a job that waits until somebody or a time releases it.
  return tr("Held");
}

void add_message(std::string const &message, std::vector<std::string> &details) {
  if (!message.empty() && std::find(details.begin(), details.end(), message) == details.end())
    details.push_back(message);
}

// Why the queue does not go on with its jobs, or does so with difficulty.
std::vector<std::string> printer_details(JobReport const &report) {
  std::vector<std::string> details;
  if (report.printer_state == IPP_PSTATE_STOPPED) {
    details.push_back(tr("The queue is stopped. The job goes on when it is started again."));
    add_message(report.printer_message, details);
  }
  for (auto const &reason : report.printer_reasons)
    if (char const *const known = meaning_of(without_grade(reason), kPrinterReasons)) details.push_back(tr(known));
  return details;
}

JobStatus waiting(JobReport const &report) {
  auto details = printer_details(report);
  if (report.printer_state == IPP_PSTATE_PROCESSING) details.push_back(tr("The printer works on another job."));
  // A backend that is tried again leaves the job waiting, with its last word.
  add_message(report.message, details);
  //: The state of a job in the queue.
  return {JobPhase::waiting, tr("Waiting"), details, true, false};
}

JobStatus held(JobReport const &report, std::time_t now) {
  auto details = printer_details(report);
  add_message(report.message, details);
  return {JobPhase::held, held_headline(report.hold_until, now), details, true, false};
}

std::string processing_headline(JobReport const &report) {
  if (report.pages_done <= 0) return tr("Processing");
  if (report.pages < report.pages_done) return tr("Processing page {0}", report.pages_done);
  return tr("Processing page {0} of {1}", report.pages_done, report.pages);
}

JobStatus processing(JobReport const &report) {
  if (has(report.reasons, "processing-to-stop-point"))
    return {JobPhase::processing, tr("Being cancelled"), {}, false, false};
  std::vector<std::string> details;
  add_message(report.message, details);
  for (auto const &more : printer_details(report)) details.push_back(more);
  return {JobPhase::processing, processing_headline(report), details, true, false};
}

// in_queue: the print service keeps the job and would go on with it if somebody told it to.
JobStatus failed(JobReport const &report, bool in_queue) {
  std::vector<std::string> details;
  if (report.message != kUnexplained) add_message(report.message, details);
  if (details.empty())
    details.push_back(tr("The printer's driver gave no reason. The print service's error log may have one."));
  if (in_queue) details.push_back(tr("The job is still in the queue; Cancel Job takes it out."));
  //: The state of a job.
  return {JobPhase::failed, tr("Failed"), details, in_queue, true};
}

JobStatus cancelled(JobReport const &report) {
  std::vector<std::string> details;
  if (has(report.reasons, "job-canceled-at-device")) details.push_back(tr("It was cancelled at the printer."));
  if (has(report.reasons, "job-canceled-by-operator")) details.push_back(tr("An operator cancelled it."));
  //: The state of a job.
  return {JobPhase::cancelled, tr("Cancelled"), details, false, true};
}

JobStatus done(JobReport const &report) {
  std::vector<std::string> details{tr("The printer has taken the whole job.")};
  if (report.pages_done > 0) details.push_back(tr("Pages: {0}", report.pages_done));
  if (has(report.reasons, "job-completed-with-warnings") || has(report.reasons, "job-completed-with-errors"))
    add_message(report.message, details);
  //: The state of a job that the printer has taken.
  return {JobPhase::done, tr("Done"), details, false, false};
}

}  // namespace

JobReport read_report(ipp_t *job, ipp_t *printer) {
  JobReport report;
  if (int const state = number_of(job, "job-state"); state != 0) report.state = static_cast<ipp_jstate_t>(state);
  report.reasons = reasons_of(job, "job-state-reasons");
  report.message = text_of(job, "job-printer-state-message");
  report.hold_until = text_of(job, "job-hold-until");
  if (report.hold_until == "no-hold") report.hold_until.clear();
  report.pages_done =
      std::max(number_of(job, "job-impressions-completed"), number_of(job, "job-media-sheets-completed"));
  report.pages = number_of(job, "job-impressions");
  report.began = number_of(job, "time-at-processing") > 0;
  report.uuid = text_of(job, "job-uuid");
  if (int const state = number_of(printer, "printer-state"); state != 0)
    report.printer_state = static_cast<ipp_pstate_t>(state);
  report.printer_reasons = reasons_of(printer, "printer-state-reasons");
  report.printer_message = text_of(printer, "printer-state-message");
  return report;
}

bool JobStatus::over() const {
  return phase == JobPhase::done || phase == JobPhase::failed || phase == JobPhase::cancelled ||
         phase == JobPhase::lost;
}

JobStatus job_status(JobReport const &report, std::time_t now) {
  switch (report.state) {
    case IPP_JSTATE_HELD: return held(report, now);
    case IPP_JSTATE_PROCESSING: return processing(report);
    case IPP_JSTATE_STOPPED: return failed(report, true);
    case IPP_JSTATE_ABORTED: return failed(report, false);
    case IPP_JSTATE_CANCELED: return cancelled(report);
    case IPP_JSTATE_COMPLETED: return done(report);
    default: return waiting(report);
  }
}

JobStatus lost_job_status() {
  return {JobPhase::lost,
          tr("No longer in the queue"),
          {tr("The print service has no record of the job any more. What became of it cannot be told.")},
          false,
          false};
}

}  // namespace fax::host
