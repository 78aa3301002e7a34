// Queues and PPD files as a real print service hands them out.
#include <gmock/gmock.h>

#include "host/core/ppd_file.h"
#include "host/core/queues.h"
#include "private_cups.h"

namespace fax::host {
namespace {

using testing::HasSubstr;

constexpr char kPpd[] = TEST_DATA "/fax.ppd";

class Service : public testing::Test {
protected:
  void SetUp() override {
    if (!PrivateCups::is_installed()) GTEST_SKIP() << "cupsd is not installed";
    cups_ = std::make_unique<PrivateCups>();
  }

  std::unique_ptr<PrivateCups> cups_;
};

TEST_F(Service, WithoutQueues) {
  auto const queues = list_queues(cups_->server());
  ASSERT_TRUE(queues.ok()) << queues.failure().text();
  EXPECT_TRUE(queues.value().empty());
  EXPECT_THAT(PpdFile::of_queue(cups_->server(), "fax").failure().what, HasSubstr("no print queue \"fax\""));
}

TEST_F(Service, QueuesWithTheirFacts) {
  cups_->add_queue("fax", kPpd);
  cups_->add_queue("raw", "", false);
  auto const listed = list_queues(cups_->server());
  ASSERT_TRUE(listed.ok()) << listed.failure().text();
  ASSERT_EQ(listed.value().size(), 2u);
  Queue const fax = choose_queue(listed.value(), "fax").value();
  EXPECT_EQ(fax.info, "Queue fax");
  EXPECT_EQ(fax.location, "Hall");
  EXPECT_EQ(fax.make_and_model, "Test Fax, 1.0");
  EXPECT_EQ(fax.device_uri, "file:///dev/null");
  EXPECT_TRUE(fax.fax_capable) << "by the group in its PPD file";
  EXPECT_TRUE(fax.accepts_jobs);
  EXPECT_EQ(fax.state, QueueState::idle);
  EXPECT_TRUE(fax.state_reasons.empty());
  for (auto const &[key, value] : fax.defaults) EXPECT_FALSE(key.starts_with("printer-")) << key;
  Queue const raw = choose_queue(listed.value(), "raw").value();
  EXPECT_FALSE(raw.fax_capable);
  EXPECT_FALSE(raw.accepts_jobs);
}

TEST_F(Service, PpdOfAQueue) {
  cups_->add_queue("fax", kPpd);
  cups_->add_queue("raw", "");
  auto const ppd = PpdFile::of_queue(cups_->server(), "fax");
  ASSERT_TRUE(ppd.ok()) << ppd.failure().text();
  ASSERT_NE(ppd.value(), nullptr);
  EXPECT_FALSE(ppd.value()->mark_initial({}, {}));
  EXPECT_TRUE(ppd.value()->mark("QXFaxImageQuality", "Fine"));
  auto const none = PpdFile::of_queue(cups_->server(), "raw");
  ASSERT_TRUE(none.ok()) << none.failure().text();
  EXPECT_EQ(none.value(), nullptr) << "a raw queue has no PPD file";
}

TEST_F(Service, SilentServiceIsBounded) {
  cups_->add_queue("fax", kPpd);
  Server server = cups_->server();
  server.timeout_seconds = 1;
  cups_->pause();
  auto const start = std::chrono::steady_clock::now();
  EXPECT_EQ(list_queues(server).failure().code, ExitCode::queue);
  EXPECT_EQ(PpdFile::of_queue(server, "fax").failure().code, ExitCode::queue);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

}  // namespace
}  // namespace fax::host
