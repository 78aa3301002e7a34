// A job from the print dialog's own submission through a real print service to the driver's filter.
#include "fax_job.h"
#include "hostile_texts.h"
#include "host/core/job.h"
#include "host/core/option_guard.h"
#include "quoltanis/unicode.h"

#include <array>
#include <chrono>
#include <cups/cups.h>
#include <cstdio>
#include <gmock/gmock.h>
#include <memory>
#include <nlohmann/json.hpp>
#include <thread>
#include <vector>

namespace fax {
namespace {

using host::Setting;
using nlohmann::json;

std::string shell(std::string const &command) {
  std::unique_ptr<FILE, int (*)(FILE *)> const pipe{::popen(command.c_str(), "r"), ::pclose};
  std::string output;
  std::array<char, 4096> piece;
  while (std::size_t const got = std::fread(piece.data(), 1, piece.size(), pipe.get())) output.append(piece.data(), got);
  return output;
}

struct DeleteIpp {
  void operator()(ipp_t *message) const { ippDelete(message); }
};
using Ipp = std::unique_ptr<ipp_t, DeleteIpp>;

class Queue : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = new test::Folder;
    // Started by root, the filter runs as another user, who has to get through.
    std::filesystem::permissions(folder_->path(), std::filesystem::perms{0711});
    auto const answer = shell(std::string{PRIVATE_CUPS} + " start " + folder_->path().string() + "/cups --build " + BUILD +
                              " --owner " + std::to_string(::getpid()));
    ASSERT_NE(answer, "") << "the print service did not start";
    server_ = new host::Server{.address = answer.substr(0, answer.find('\n'))};
  }

  static void TearDownTestSuite() {
    shell(std::string{PRIVATE_CUPS} + " stop " + folder_->path().string() + "/cups");
    delete server_;
    delete folder_;
  }

  // What a job attribute says to `user`; nothing when it is not told.
  std::optional<std::string> attribute(int job, char const *name, char const *user) {
    auto connection = host::connect(*server_);
    EXPECT_TRUE(connection.ok());
    ipp_t *request = ippNewRequest(IPP_OP_GET_JOB_ATTRIBUTES);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, "ipp://localhost/printers/fax");
    ippAddInteger(request, IPP_TAG_OPERATION, IPP_TAG_INTEGER, "job-id", job);
    ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_NAME, "requesting-user-name", nullptr, user);
    Ipp const answer{cupsDoRequest(connection.value().get(), request, "/")};
    EXPECT_NE(answer, nullptr);
    ipp_attribute_t *found = ippFindAttribute(answer.get(), name, IPP_TAG_ZERO);
    if (found == nullptr) return std::nullopt;
    std::array<char, 4096> text;
    ippAttributeString(found, text.data(), text.size());
    return text.data();
  }

  int submit(std::vector<Setting> settings) {
    auto document = host::Document::open(SAMPLE);
    EXPECT_TRUE(document.ok());
    host::JobRequest request{.queue = "fax",
                             .title = "",
                             .document = document.value(),
                             .options = {},
                             .choices = {{"QXFaxImageQuality", "Fine"}},
                             .settings = std::move(settings),
                             .queue_defaults = {}};
    auto const job = host::submit(*server_, request, {});
    EXPECT_TRUE(job.ok()) << (job.ok() ? "" : job.failure().text());
    return job.ok() ? job.value() : 0;
  }

  // Waits until the job has ended, one way or another.
  // The service may know that a filter failed before it has read what the filter said last.
  std::string message_of(int job) {
    std::string message;
    for (int tries = 0; tries < 100; ++tries) {
      message = attribute(job, "job-printer-state-message", "root").value_or("");
      if (message != "Filter failed") break;
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return message;
  }

  std::string end_state(int job) {
    using namespace std::chrono_literals;
    std::string state;
    for (int i = 0; i < 500; ++i) {
      state = attribute(job, "job-state", "root").value_or("");
      if (state == "completed" || state == "processing-stopped" || state == "aborted") break;
      std::this_thread::sleep_for(20ms);
    }
    return state;
  }

  static std::filesystem::path tickets() { return folder_->path() / "cups/tickets"; }

  json ticket(int job) { return json::parse(test::contents(tickets() / ("job-" + std::to_string(job) + ".json"))); }

  static std::vector<Setting> settings_of(JobOptions const &options) {
    std::vector<Setting> settings;
    for (auto const &[name, value] : options)
      if (name.starts_with("com.")) settings.push_back({name, value});
    return settings;
  }

  static inline test::Folder *folder_ = nullptr;
  static inline host::Server *server_ = nullptr;
};

TEST_F(Queue, brings_a_job_to_the_ticket_whole) {
  int const job = submit(settings_of(test::good_options()));
  ASSERT_EQ(end_state(job), "completed");
  auto const got = ticket(job);
  EXPECT_EQ(got["senderName"], "Henry Marsh");
  EXPECT_EQ(got["password"], "0427");
  EXPECT_EQ(got["delayedTime"], "21:05");
  EXPECT_EQ(got["options"]["QXFaxImageQuality"], "Fine");
  EXPECT_EQ(got["destinations"], json::parse(R"([{"name": "山田太郎", "phoneNumber": "03-1234-5678"},
                                                 {"name": "", "phoneNumber": "#99*1:2=3"}])"));
  EXPECT_TRUE(test::contents(tickets() / ("job-" + std::to_string(job) + ".pdf")) == test::contents(SAMPLE));
}

// Every value as the name of one destination, thirty a job; the numbers beside them show whether one broke out.
TEST_F(Queue, lets_no_name_change_anything_else) {
  auto const number = test::key("DFaxDestinationPhoneNumber1");
  std::vector<std::string> const hostile = {
      "x\r" + number + "=666",
      "x\v" + number + "=666",
      "x\f" + number + "=666",
      "x\n" + number + "=666",
      "x " + number + "=666",
      "x' " + number + "=666",
      "x\" " + number + "=666",
      "{" + number + "=666",
      "{x",
      "{}",
      "{a b}",
      ",{x",
      ",,{x",
      " {x",
      "a{b",
      "a,b{c",
      "}",
      "\\",
      "\\\\",
      "'",
      "\"",
      "'\"",
      "=",
      ",",
      "a=b,c",
      "#*+;$`%<>()/:",
      "$(id)",
      "a\tb",
      "a\nb",
      "\x01\x7f",
      " both ends ",
      "",
      "true",
      "no",
      "none",
      "007",
      "1-5",
      "Müller & Söhne GmbH",
      "山田太郎",
      "👨‍👩‍👧",
      std::string(64, 'x'),
      "-o raw",
      "media=A4 noDFaxPassword",
  };
  for (std::size_t from = 0; from < hostile.size(); from += kMostDestinations) {
    std::size_t const count = std::min<std::size_t>(kMostDestinations, hostile.size() - from);
    auto options = test::good_options();
    options[test::key("DFaxDestinationNumber")] = std::to_string(count);
    for (std::size_t n = 1; n <= count; ++n) {
      options[test::key("DFaxDestinationName" + std::to_string(n))] = hostile[from + n - 1];
      options[test::key("DFaxDestinationPhoneNumber" + std::to_string(n))] = std::to_string(1000 + n);
    }
    int const job = submit(settings_of(options));
    ASSERT_EQ(end_state(job), "completed");
    auto const got = ticket(job);
    EXPECT_EQ(got["senderName"], "Henry Marsh");
    EXPECT_EQ(got["password"], "0427");
    ASSERT_EQ(got["destinations"].size(), count);
    for (std::size_t n = 1; n <= count; ++n) {
      SCOPED_TRACE(hostile[from + n - 1]);
      EXPECT_EQ(got["destinations"][n - 1]["name"], host::guarded_value(hostile[from + n - 1]));
      EXPECT_EQ(got["destinations"][n - 1]["phoneNumber"], std::to_string(1000 + n));
    }
  }
}

// A sample of what the filter alone is tried with ten thousand times.
TEST_F(Queue, lets_no_hostile_text_change_anything_else) {
  test::HostileTexts texts(7);
  for (int tried = 0; tried < 8; ++tried) {
    auto options = test::good_options();
    options[test::key("DFaxDestinationNumber")] = std::to_string(kMostDestinations);
    json expected = json::array();
    for (int n = 1; n <= kMostDestinations; ++n) {
      std::array<char16_t, 65> field;
      fill_field(field, texts.name());
      auto const name = utf8_of(field.data()).value(), number = texts.number();
      options[test::key("DFaxDestinationName" + std::to_string(n))] = name;
      options[test::key("DFaxDestinationPhoneNumber" + std::to_string(n))] = number;
      expected.push_back({{"name", host::guarded_value(name)}, {"phoneNumber", number}});
    }
    int const job = submit(settings_of(options));
    ASSERT_EQ(end_state(job), "completed");
    auto const got = ticket(job);
    EXPECT_EQ(got["senderName"], "Henry Marsh");
    EXPECT_EQ(got["password"], "0427");
    EXPECT_EQ(got["destinations"], expected);
  }
}

TEST_F(Queue, stops_a_job_that_cannot_be_faxed_and_goes_on) {
  auto options = test::good_options();
  options[test::key("DFaxDestinationNumber")] = "3";
  int const bad = submit(settings_of(options));
  EXPECT_EQ(end_state(bad), "processing-stopped");
  EXPECT_THAT(message_of(bad), testing::HasSubstr("DFaxDestinationName3"));
  EXPECT_FALSE(std::filesystem::exists(tickets() / ("job-" + std::to_string(bad) + ".json")));

  int const good = submit(settings_of(test::good_options()));
  EXPECT_EQ(end_state(good), "completed");
}

TEST_F(Queue, tells_the_password_to_the_jobs_owner_only) {
  auto const password = test::key("DFaxPassword");
  int const job = submit(settings_of(test::good_options()));
  ASSERT_EQ(end_state(job), "completed");
  EXPECT_EQ(attribute(job, password.c_str(), cupsUser()), test::enciphered("0427"));
  EXPECT_EQ(attribute(job, password.c_str(), "somebody-else"), std::nullopt);
}

}  // namespace
}  // namespace fax
