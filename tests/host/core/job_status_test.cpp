#include "host/core/job_status.h"

#include <cstdlib>
#include <gmock/gmock.h>

namespace fax::host {
namespace {

using testing::ElementsAreArray;

// Monday, 23 November 2026, 20:00:00 UTC: 15:00 in New York, 05:00 of the next day in Tokyo.
constexpr std::time_t kNow = 1795464000;

struct StatusCase {
  char const *name;
  JobReport report;
  JobPhase phase;
  char const *headline;
  std::vector<std::string> details;
  bool can_cancel, can_retry;
};

void PrintTo(StatusCase const &row, std::ostream *out) { *out << row.name; }

class Status : public testing::TestWithParam<StatusCase> {
protected:
  void SetUp() override { zone("America/New_York"); }
  void TearDown() override { zone(nullptr); }

  static void zone(char const *name) {
    name ? setenv("TZ", name, 1) : unsetenv("TZ");
    tzset();
  }
};

TEST_P(Status, SaysWhatTheReportMeans) {
  auto const &row = GetParam();
  auto const status = job_status(row.report, kNow);
  EXPECT_EQ(status.phase, row.phase);
  EXPECT_EQ(status.headline, row.headline);
  EXPECT_THAT(status.details, ElementsAreArray(row.details));
  EXPECT_EQ(status.can_cancel, row.can_cancel);
  EXPECT_EQ(status.can_retry, row.can_retry);
}

JobReport held(char const *until) { return {.state = IPP_JSTATE_HELD, .hold_until = until}; }

constexpr char kStopped[] = "The queue is stopped. The job goes on when it is started again.";
constexpr char kTaken[] = "The printer has taken the whole job.";
constexpr char kInQueue[] = "The job is still in the queue; Cancel Job takes it out.";
constexpr char kNoReason[] = "The printer's driver gave no reason. The print service's error log may have one.";

INSTANTIATE_TEST_SUITE_P(
    Table, Status,
    testing::Values(
        StatusCase{"waiting", {}, JobPhase::waiting, "Waiting", {}, true, false},
        StatusCase{"behind_another", {.printer_state = IPP_PSTATE_PROCESSING}, JobPhase::waiting, "Waiting",
                   {"The printer works on another job."}, true, false},
        StatusCase{"queue_stopped",
                   {.printer_state = IPP_PSTATE_STOPPED, .printer_reasons = {"paused"}, .printer_message = "No paper in A"},
                   JobPhase::waiting, "Waiting", {kStopped, "No paper in A"}, true, false},
        StatusCase{"printer_lacks_things",
                   {.printer_reasons = {"media-empty-error", "toner-low-warning", "door-open", "vendor-thing"}},
                   JobPhase::waiting, "Waiting",
                   {"The printer has run out of paper.", "A door of the printer is open."}, true, false},
        StatusCase{"held_for_good", held("indefinite"), JobPhase::held, "Held until it is released", {}, true, false},
        StatusCase{"held_by_name", held("night"), JobPhase::held, "Held until the night", {}, true, false},
        StatusCase{"held_for_an_unknown_reason", held("25:00"), JobPhase::held, "Held", {}, true, false},
        StatusCase{"held_today", held("21:30"), JobPhase::held, "Held until 16:30", {}, true, false},
        StatusCase{"held_till_tomorrow_in_utc", held("02:05:30"), JobPhase::held, "Held until 21:05", {}, true, false},
        StatusCase{"held_till_tomorrow_here", held("06:00"), JobPhase::held, "Held until 01:00 tomorrow", {}, true,
                   false},
        StatusCase{"released_a_little_late", held("19:59"), JobPhase::held, "Held until 14:59", {}, true, false},
        StatusCase{"processing", {.state = IPP_JSTATE_PROCESSING, .message = "Dialling"}, JobPhase::processing,
                   "Processing", {"Dialling"}, true, false},
        StatusCase{"processing_a_page", {.state = IPP_JSTATE_PROCESSING, .pages_done = 2}, JobPhase::processing,
                   "Processing page 2", {}, true, false},
        StatusCase{"processing_a_page_of_some", {.state = IPP_JSTATE_PROCESSING, .pages_done = 2, .pages = 7},
                   JobPhase::processing, "Processing page 2 of 7", {}, true, false},
        StatusCase{"being_cancelled", {.state = IPP_JSTATE_PROCESSING, .reasons = {"processing-to-stop-point"}},
                   JobPhase::processing, "Being cancelled", {}, false, false},
        StatusCase{"filter_failed",
                   {.state = IPP_JSTATE_STOPPED, .reasons = {"job-completed-with-errors"}, .message = "100 % {0}"},
                   JobPhase::failed, "Failed", {"100 % {0}", kInQueue}, true, true},
        StatusCase{"aborted_without_a_word", {.state = IPP_JSTATE_ABORTED}, JobPhase::failed, "Failed", {kNoReason},
                   false, true},
        StatusCase{"aborted_by_a_silent_filter", {.state = IPP_JSTATE_ABORTED, .message = "Filter failed"},
                   JobPhase::failed, "Failed", {kNoReason}, false, true},
        StatusCase{"cancelled", {.state = IPP_JSTATE_CANCELED, .reasons = {"processing-to-stop-point"}, .message = "x"},
                   JobPhase::cancelled, "Cancelled", {}, false, true},
        StatusCase{"cancelled_at_the_printer",
                   {.state = IPP_JSTATE_CANCELED, .reasons = {"job-canceled-at-device"}}, JobPhase::cancelled,
                   "Cancelled", {"It was cancelled at the printer."}, false, true},
        StatusCase{"done",
                   {.state = IPP_JSTATE_COMPLETED, .reasons = {"job-completed-successfully"}, .message = "old news",
                    .pages_done = 3},
                   JobPhase::done, "Done", {kTaken, "Pages: 3"}, false, false},
        StatusCase{"done_with_warnings",
                   {.state = IPP_JSTATE_COMPLETED, .reasons = {"job-completed-with-warnings"}, .message = "Pale"},
                   JobPhase::done, "Done", {kTaken, "Pale"}, false, false}),
    [](auto const &info) { return std::string(info.param.name); });

// A day that is another one only here, and a zone ahead of UTC.
TEST_F(Status, TomorrowIsThatOfTheLocalClock) {
  zone("Asia/Tokyo");
  EXPECT_EQ(job_status(held("20:30"), kNow).headline, "Held until 05:30");
  EXPECT_EQ(job_status(held("15:00"), kNow).headline, "Held until 00:00 tomorrow");
}

TEST(ReadReport, SurvivesAnswersWithoutAnythingInThem) {
  auto const report = read_report(nullptr, nullptr);
  EXPECT_EQ(job_status(report, kNow), job_status({}, kNow));
}

}  // namespace
}  // namespace fax::host
