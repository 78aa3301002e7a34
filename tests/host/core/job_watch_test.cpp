// Real jobs in a print service of the test's own, followed to their ends.
#include "host/core/job_watch.h"

#include <gmock/gmock.h>
#include <poll.h>
#include <unistd.h>

#include "private_cups.h"

namespace fax::host {
namespace {

using testing::HasSubstr;
using namespace std::chrono_literals;

constexpr WatchPace kQuick{1, 50ms};

class Watch : public testing::Test {
protected:
  void SetUp() override {
    if (!PrivateCups::is_installed()) GTEST_SKIP() << "cupsd is not installed";
    start("PreserveJobFiles No");
  }

  void TearDown() override {
    if (descriptor_ >= 0) close(descriptor_);
    if (cups_) cups_->let_go();
  }

  void start(std::string const &extra) {
    cups_.reset();
    cups_ = std::make_unique<PrivateCups>(extra);
    cups_->add_queue("fax", TEST_DATA "/fax.ppd");
  }

  void follow(std::string const &title, std::vector<Setting> options = {},
              Document document = Document::of_bytes("%PDF-1.4\nfax", "Report")) {
    JobRequest const request{"fax", title, std::move(document), 1, std::move(options), {},
                             {{"key", "value of the job"}}, {}};
    auto const number = submit(cups_->server(), request, {});
    ASSERT_TRUE(number) << number.failure().text();
    number_ = number.value();
    watch_ = std::make_unique<JobWatch>(cups_->server(), SubmittedJob{number_, request}, kQuick);
    descriptor_ = watch_->copy_descriptor();
  }

  // The first news for which that is true, as the descriptor tells of them.
  JobNews wait_for(auto const &condition) {
    auto const end = std::chrono::steady_clock::now() + 20s;
    JobNews news = watch_->read_news();
    while (!condition(news) && std::chrono::steady_clock::now() < end) {
      pollfd readable{descriptor_, POLLIN, 0};
      poll(&readable, 1, 500);
      news = watch_->read_news();
    }
    EXPECT_TRUE(condition(news)) << "last: " << news.status.headline << "; " << first_detail(news) << "; "
                                 << news.trouble << "; " << news.note;
    return news;
  }

  JobNews wait_for_phase(JobPhase phase) {
    return wait_for([&](JobNews const &news) { return news.status.phase == phase && news.order == JobNews::Order::none; });
  }

  JobNews wait_for_headline(std::string const &headline) {
    return wait_for([&](JobNews const &news) { return news.status.headline == headline; });
  }

  static std::string first_detail(JobNews const &news) {
    return news.status.details.empty() ? "" : news.status.details.front();
  }

  // As another program would: about the queue, or a job.
  void ask_elsewhere(ipp_op_t operation, int job = 0) {
    auto connection = connect(cups_->server());
    ASSERT_TRUE(connection);
    ipp_t *const question = ippNewRequest(operation);
    ippAddString(question, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, "ipp://localhost/printers/fax");
    if (job != 0) ippAddInteger(question, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", job);
    ippAddString(question, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, cupsUser());
    ippDelete(cupsDoRequest(connection.value().get(), question, job != 0 ? "/jobs/" : "/admin/"));
    ASSERT_LE(cupsLastError(), IPP_STATUS_OK_EVENTS_COMPLETE) << cupsLastErrorString();
  }

  std::unique_ptr<PrivateCups> cups_;
  int number_ = 0;
  std::unique_ptr<JobWatch> watch_;
  int descriptor_ = -1;
};

TEST_F(Watch, FollowsAJobThroughItsPagesToItsEnd) {
  follow("hang");
  auto const news = wait_for_headline("Processing page 2");
  EXPECT_EQ(first_detail(news), "Dialling");
  cups_->let_go();
  EXPECT_FALSE(wait_for_phase(JobPhase::done).status.can_retry);
}

TEST_F(Watch, TellsOfAHoldAndCancelsIt) {
  follow("", {{"job-hold-until", "indefinite"}});
  wait_for_headline("Held until it is released");
  watch_->cancel_job();
  EXPECT_TRUE(wait_for_phase(JobPhase::cancelled).status.can_retry);
}

TEST_F(Watch, TellsTheHoldsTimeAndItsRelease) {
  follow("", {{"job-hold-until", "23:59:59"}});
  EXPECT_THAT(wait_for_phase(JobPhase::held).status.headline, HasSubstr("Held until "));
  ask_elsewhere(IPP_OP_RELEASE_JOB, number_);
  wait_for_phase(JobPhase::done);
}

TEST_F(Watch, TellsTheFiltersMessageAndRestartsTheFailedJob) {
  follow("fail:The line is busy");
  EXPECT_EQ(first_detail(wait_for_phase(JobPhase::failed)), "The line is busy");
  watch_->retry();
  auto const news = wait_for([](JobNews const &now) { return !now.note.empty(); });
  EXPECT_THAT(news.note, HasSubstr("print service's own copy"));
  EXPECT_EQ(wait_for_phase(JobPhase::failed).number, number_);
  EXPECT_EQ(cups_->jobs().size(), 1u);
}

// A cancelled job without its document is made anew, held as it was, for it never began.
TEST_F(Watch, SendsItsOwnCopyWhereThePrintServiceHasNone) {
  follow("again", {{"job-hold-until", "indefinite"}});
  wait_for_phase(JobPhase::held);
  ask_elsewhere(IPP_OP_CANCEL_JOB, number_);
  wait_for_phase(JobPhase::cancelled);
  watch_->retry();
  auto const news = wait_for_phase(JobPhase::held);
  EXPECT_NE(news.number, number_);
  EXPECT_THAT(news.note, HasSubstr("The document on this computer was sent again"));
  ask_elsewhere(IPP_OP_RELEASE_JOB, news.number);
  wait_for_phase(JobPhase::done);
  auto const options = parsed_options(cups_->options_of(news.number).value_or(""));
  EXPECT_EQ(options.at("key"), "value of the job");
  EXPECT_EQ(cups_->document_of(news.number), "%PDF-1.4\nfax");
}

// The print service's own copy is held again too.
TEST_F(Watch, RestartsACancelledJobWithItsHold) {
  start("PreserveJobFiles Yes");
  follow("again", {{"job-hold-until", "indefinite"}});
  wait_for_phase(JobPhase::held);
  watch_->cancel_job();
  wait_for_phase(JobPhase::cancelled);
  watch_->retry();
  auto const news = wait_for_phase(JobPhase::held);
  EXPECT_EQ(news.number, number_);
  EXPECT_EQ(cups_->jobs().size(), 1u);
}

TEST_F(Watch, DoesNotSendADocumentThatIsAnotherOneNow) {
  std::string const path = testing::TempDir() + "/changing.pdf";
  auto const write = [&](char const *text) {
    std::FILE *const file = std::fopen(path.c_str(), "w");
    std::fputs(text, file);
    std::fclose(file);
  };
  write("%PDF-1.4\nfirst");
  follow("", {{"job-hold-until", "indefinite"}}, Document::open(path).value());
  watch_->cancel_job();
  wait_for_phase(JobPhase::cancelled);
  write("%PDF-1.4\nsecond");
  watch_->retry();
  auto const news = wait_for([](JobNews const &now) { return !now.note.empty(); });
  EXPECT_THAT(news.note, HasSubstr("was changed"));
  EXPECT_EQ(cups_->jobs().size(), 1u);
}

TEST_F(Watch, TellsOfAStoppedQueue) {
  ask_elsewhere(IPP_OP_PAUSE_PRINTER);
  follow("");
  auto const news = wait_for([](JobNews const &now) { return !now.status.details.empty(); });
  EXPECT_EQ(news.status.phase, JobPhase::waiting);
  EXPECT_THAT(first_detail(news), HasSubstr("The queue is stopped"));
  ask_elsewhere(IPP_OP_RESUME_PRINTER);
  wait_for_phase(JobPhase::done);
}

TEST_F(Watch, SaysThatThePrintServiceDiedAndFollowsTheNextOne) {
  start("DirtyCleanInterval 0");  // knows its jobs again after a kill
  follow("hang");
  wait_for_headline("Processing page 2");
  cups_->kill_now();
  auto const news = wait_for([](JobNews const &now) { return !now.trouble.empty(); });
  EXPECT_EQ(news.status.headline, "Processing page 2");
  watch_->cancel_job();
  EXPECT_THAT(wait_for([](JobNews const &now) { return !now.note.empty(); }).note,
              HasSubstr("could not be cancelled"));
  cups_->let_go();
  cups_->start();
  EXPECT_EQ(wait_for_phase(JobPhase::done).trouble, "");
}

TEST_F(Watch, SaysThatThePrintServiceHangsInBoundedTime) {
  follow("hang");
  wait_for_headline("Processing page 2");
  cups_->pause();
  auto const start = std::chrono::steady_clock::now();
  auto const news = wait_for([](JobNews const &now) { return !now.trouble.empty(); });
  EXPECT_THAT(news.trouble, HasSubstr("did not answer within 1 second"));
  EXPECT_LT(std::chrono::steady_clock::now() - start, 6s);
  cups_->resume();
  wait_for([](JobNews const &now) { return now.trouble.empty(); });
}

TEST_F(Watch, SaysWhenItMayNotCancel) {
  start("<Policy closed>\n<Limit Cancel-Job>\nAuthType Basic\nRequire user somebody-else\n</Limit>\n"
        "<Limit All>\nOrder deny,allow\n</Limit>\n</Policy>\nDefaultPolicy closed");
  follow("", {{"job-hold-until", "indefinite"}});
  wait_for_phase(JobPhase::held);
  watch_->cancel_job();
  auto const news = wait_for([](JobNews const &now) { return !now.note.empty(); });
  EXPECT_THAT(news.note, HasSubstr("You may not cancel this job"));
  EXPECT_EQ(news.status.phase, JobPhase::held);
}

TEST_F(Watch, SaysThatAJobIsNoLongerKnown) {
  follow("", {{"job-hold-until", "indefinite"}});
  wait_for_phase(JobPhase::held);
  auto connection = connect(cups_->server());
  ASSERT_TRUE(connection);
  cupsCancelJob2(connection.value().get(), "fax", number_, 1);  // and all that was known of it
  EXPECT_FALSE(wait_for_phase(JobPhase::lost).status.can_retry);
}

}  // namespace
}  // namespace fax::host
