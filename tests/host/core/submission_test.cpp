#include "host/core/job.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <gmock/gmock.h>
#include <iostream>
#include <random>

#include "host/core/option_guard.h"
#include "private_cups.h"

namespace fax::host {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kPpd[] = TEST_DATA "/fax.ppd";
constexpr char kPrefix[] = "com.norvalt.tk.o.print.printsettings.";
constexpr std::uint64_t kLarge = 8u << 20;

// A document of that many bytes that no compression or repetition could stand in for.
Document document_of(std::uint64_t size) {
  std::string bytes = "%PDF-1.4\n";
  std::mt19937 random(7);
  while (bytes.size() < size) {
    std::uint32_t const word = random();
    bytes.append(reinterpret_cast<char const *>(&word), std::min<std::uint64_t>(sizeof(word), size - bytes.size()));
  }
  return Document::of_bytes(std::move(bytes), "Report");
}

JobRequest request_of(Document document, std::vector<Setting> settings = {}) {
  return {.queue = "fax", .title = "", .document = std::move(document), .copies = 1, .options = {}, .choices = {},
          .settings = std::move(settings), .queue_defaults = {}};
}

class Submission : public testing::Test {
protected:
  void SetUp() override {
    if (!PrivateCups::is_installed()) GTEST_SKIP() << "cupsd is not installed";
    start("");
  }

  void start(std::string const &extra) {
    cups_.reset();
    cups_ = std::make_unique<PrivateCups>(extra);
    cups_->add_queue("fax", kPpd);
  }

  Failure refused(JobRequest const &request, Progress const &progress = {}) const {
    auto const result = submit(cups_->server(), request, progress);
    EXPECT_FALSE(result.ok());
    return result.ok() ? Failure{} : result.failure();
  }

  // The options as the filter reads them.
  std::map<std::string, std::string> received(int job) const {
    auto const argument = cups_->options_of(job);
    EXPECT_TRUE(argument) << cups_->error_log();
    return parsed_options(argument.value_or(""));
  }

  std::unique_ptr<PrivateCups> cups_;
};

TEST_F(Submission, EverySettingArrivesAsItWas) {
  JobRequest request = request_of(document_of(200'000));
  std::string const kHostile[] = {
      "",      "Anna Berg", "  lead and trail  ", "Müller, Jörg", "山田 太郎", "fax 😀 👨‍👩‍👧", "\"quoted\"", "it's",
      "a=b",   "a,b,c",     "back\\slash\\",      "line\nbreak",  "tab\there", "True",          "FALSE",      "no",
      "a{b}c", "{x",        "{a b}",              ",{x",          "x\r" + std::string(kPrefix) + "DFaxDestinationNumber=666",
      "v\vt",  "f\ff",      "#*+;$`%<>()/:[]",    "007",          "1-5",       "300dpi",        "\x01\x7f",   "'",
      "\"",    "%41",       "-",
  };
  request.settings.push_back({std::string(kPrefix) + "DFaxDestinationNumber", "30"});
  for (int at = 0; at < 70; ++at)
    request.settings.push_back({kPrefix + ("DFaxDestinationName" + std::to_string(at)),
                                at < int(std::size(kHostile)) ? kHostile[at] : "name " + std::to_string(at)});
  request.choices = {{"QXFaxImageQuality", "Fine"}, {"QXFaxSenderMode", "Off"}};
  request.options = {{"number-up", "2"}, {"QXFaxImageQuality", "Standard"}};
  request.copies = 3;

  std::vector<std::uint64_t> steps;
  auto const result = submit(cups_->server(), request, [&](std::uint64_t done, std::uint64_t total) {
    EXPECT_EQ(total, 200'000u);
    steps.push_back(done);
    return true;
  });
  ASSERT_TRUE(result.ok()) << result.failure().text();

  auto const read = received(result.value());
  for (auto const &[key, value] : request.settings) {
    ASSERT_TRUE(read.contains(key)) << key;
    EXPECT_EQ(read.at(key), guarded_value(value)) << key;
  }
  EXPECT_EQ(read.at(std::string(kPrefix) + "DFaxDestinationNumber"), "30");
  EXPECT_EQ(read.at("QXFaxImageQuality"), "Fine");
  EXPECT_EQ(read.at("number-up"), "2");
  std::array<char, 200'000> sent;
  ASSERT_EQ(request.document.read(0, sent).value(), sent.size());
  EXPECT_TRUE(cups_->document_of(result.value()) == std::string(sent.data(), sent.size()));

  EXPECT_TRUE(std::is_sorted(steps.begin(), steps.end()));
  EXPECT_EQ(steps.front(), 0u);
  EXPECT_EQ(steps.back(), 200'000u);
  EXPECT_GE(steps.size(), 4u);
}

TEST_F(Submission, LargestOptionsArriveAndOneByteMoreIsRefused) {
  std::vector<Setting> settings;
  for (int at = 0; at < 30; ++at)
    settings.push_back({kPrefix + ("DFaxDestinationName" + std::to_string(at)), std::string(4000, at % 2 ? 'x' : 'y')});
  std::size_t const room = kLargestOptions - total_option_bytes(settings);
  ASSERT_LT(room, kLargestValue);
  settings.push_back({"k", std::string(room - 3, 'z')});
  ASSERT_EQ(total_option_bytes(settings), kLargestOptions);

  JobRequest request = request_of(document_of(5000), settings);
  auto const result = submit(cups_->server(), request, {});
  ASSERT_TRUE(result.ok()) << result.failure().text();
  auto const argument = cups_->options_of(result.value());
  ASSERT_TRUE(argument) << cups_->error_log();
  EXPECT_LE(argument->size() + 1, kLargestOptions);
  auto const read = parsed_options(*argument);
  for (auto const &[key, value] : settings) EXPECT_TRUE(read.contains(key) && read.at(key) == value) << key;

  request.settings.back().value += 'z';
  Failure const failure = refused(request);
  EXPECT_EQ(failure.code, ExitCode::submission);
  EXPECT_THAT(failure.what, HasSubstr("131073 bytes, where 131072"));
  EXPECT_EQ(cups_->jobs().size(), 1u) << "refused before anything was sent";
  request.settings.back().value.resize(room - 3);
  request.queue_defaults = {{"k", "counted with the settings"}, {"job-sheets", "none"}};
  EXPECT_THAT(refused(request).what, HasSubstr("too long together"));
}

TEST_F(Submission, LongestValueArrives) {
  JobRequest request = request_of(document_of(5000), {{"long", std::string(kLargestValue, 'x')}});
  auto const result = submit(cups_->server(), request, {});
  ASSERT_TRUE(result.ok()) << result.failure().text();
  EXPECT_EQ(received(result.value()).at("long"), request.settings[0].value);
}

TEST_F(Submission, CancelInTheMiddleLeavesNoJob) {
  JobRequest const request = request_of(document_of(kLarge));
  Failure const failure =
      refused(request, [](std::uint64_t done, std::uint64_t total) { return done < total / 2; });
  EXPECT_EQ(failure.code, ExitCode::cancelled);
  EXPECT_EQ(failure.advice, "") << "no word of a job that is left";
  EXPECT_THAT(cups_->jobs(), IsEmpty());
  EXPECT_EQ(refused(request, [](auto, auto) { return false; }).code, ExitCode::cancelled);
  EXPECT_THAT(cups_->jobs(), IsEmpty());
}

TEST_F(Submission, ConnectionLostInTheMiddle) {
  bool killed = false;
  Failure const failure = refused(request_of(document_of(kLarge)), [&](std::uint64_t done, std::uint64_t total) {
    if (done >= total / 2 && !killed) {
      killed = true;
      cups_->kill_now();
    }
    return true;
  });
  EXPECT_EQ(failure.code, ExitCode::submission);
  EXPECT_THAT(failure.what, HasSubstr("broke after"));
  EXPECT_THAT(failure.what, HasSubstr("of " + std::to_string(kLarge) + " bytes"));
  EXPECT_THAT(failure.advice, HasSubstr("cancel 1")) << "it could not be taken back";
}

// Before the first byte, and behind the last one: what is left in the queue is named, or there is nothing.
TEST_F(Submission, ConnectionLostBeforeAndBehindTheDocument) {
  for (bool const at_end : {false, true}) {
    SCOPED_TRACE(at_end);
    if (at_end) start("");
    bool killed = false;
    Failure const failure = refused(request_of(document_of(5000)), [&](std::uint64_t done, std::uint64_t total) {
      if (!killed && done >= (at_end ? total : 0)) {
        killed = true;
        cups_->kill_now();
      }
      return true;
    });
    EXPECT_TRUE(killed);
    EXPECT_TRUE(failure.code == ExitCode::submission || failure.code == ExitCode::queue);
    EXPECT_NE(failure.what, "");
    std::cout << failure.text() << "\n";
    bool const created = failure.what.find("broke after") != std::string::npos;
    EXPECT_TRUE(!created || failure.advice.find("cancel 1") != std::string::npos) << failure.advice;
  }
}

TEST_F(Submission, ServiceThatStopsAnsweringIsBounded) {
  Server server = cups_->server();
  server.timeout_seconds = 2;
  auto const stall = [&](std::uint64_t done, std::uint64_t total) {
    if (done >= total / 2) cups_->pause();
    return true;
  };
  auto const start = std::chrono::steady_clock::now();
  auto const result = submit(server, request_of(document_of(kLarge)), stall);
  EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(12));
  ASSERT_FALSE(result.ok());
  EXPECT_EQ(result.failure().code, ExitCode::submission);
  EXPECT_THAT(result.failure().what, HasSubstr("took no more data for 2 seconds"));
}

TEST_F(Submission, CancelWhileTheServiceIsSilent) {
  Server server = cups_->server();
  server.timeout_seconds = 5;
  int silent = 0;
  auto const result = submit(server, request_of(document_of(kLarge)), [&](std::uint64_t done, std::uint64_t total) {
    if (done < total / 2) return true;
    cups_->pause();
    return ++silent < 2 || done == total;
  });
  ASSERT_FALSE(result.ok());
  EXPECT_EQ(result.failure().code, ExitCode::cancelled);
}

TEST_F(Submission, RefusalsAreToldApart) {
  cups_->add_queue("closed", kPpd, false);
  JobRequest request = request_of(document_of(5000));

  request.queue = "closed";
  EXPECT_EQ(refused(request).what, "The queue \"closed\" is not accepting jobs.");
  request.queue = "nowhere";
  Failure const none = refused(request);
  EXPECT_EQ(none.code, ExitCode::queue);
  EXPECT_THAT(none.what, HasSubstr("no print queue \"nowhere\""));
  request.queue = "fax";
  request.document = Document::of_bytes(std::string("\x7f\x45\x4c\x46 not a document \x01\x02", 22), "x");
  EXPECT_EQ(refused(request).what,
            "The queue \"fax\" cannot take a document of this kind: Unsupported document-format "
            "\"application/octet-stream\".");
  EXPECT_THAT(cups_->jobs(), IsEmpty());
}

TEST_F(Submission, DocumentLargerThanTheServiceTakes) {
  start("LimitRequestBody 1m");
  EXPECT_THAT(refused(request_of(document_of(kLarge))).text(), HasSubstr("no room for the document"));
  EXPECT_THAT(cups_->jobs(), IsEmpty());
}

TEST_F(Submission, NobodyThere) {
  Server server = cups_->server();
  cups_->kill_now();
  auto const gone = submit(server, request_of(document_of(5000)), {});
  ASSERT_FALSE(gone.ok());
  EXPECT_EQ(gone.failure().code, ExitCode::queue);
  EXPECT_THAT(gone.failure().what, HasSubstr("nothing listens there"));
  server.address += ".none";
  EXPECT_THAT(submit(server, request_of(document_of(5000)), {}).failure().what, HasSubstr("socket does not exist"));
}

struct BadRequest {
  char const *name;
  void (*spoil)(JobRequest &);
  char const *says;
};

TEST(CheckRequest, Table) {
  constexpr BadRequest kBad[] = {
      {"key", [](JobRequest &r) { r.settings = {{"a b", "1"}}; }, "\"a b\""},
      {"own key", [](JobRequest &r) { r.options = {{"printer-uri", "x"}}; }, "\"printer-uri\""},
      {"not UTF-8", [](JobRequest &r) { r.settings = {{"k", "\xc3("}}; }, "no valid text"},
      {"NUL", [](JobRequest &r) { r.settings = {{"k", std::string("a\0b", 3)}}; }, "no valid text"},
      {"long", [](JobRequest &r) { r.settings = {{"k", std::string(32768, 'x')}}; }, "32768 bytes, where 32767"},
      {"long when guarded", [](JobRequest &r) { r.settings = {{"k", "{" + std::string(32766, 'x')}}; }, "32768"},
      {"copies", [](JobRequest &r) { r.copies = 0; }, "copies"},
      {"title", [](JobRequest &r) { r.title = std::string(256, 't'); }, "title"},
  };
  for (auto const &[name, spoil, says] : kBad) {
    JobRequest request = request_of(Document::of_bytes("%PDF-", ""));
    EXPECT_FALSE(check_request(request));
    spoil(request);
    auto const failure = check_request(request);
    ASSERT_TRUE(failure) << name;
    EXPECT_THAT(failure->what, HasSubstr(says)) << name;
  }
}

TEST(JobOptions, LastOfAKeyCounts) {
  JobRequest request = request_of(Document::of_bytes("%PDF-", ""), {{"c", "{"}, {"a", "3"}});
  request.options = {{"a", "1"}, {"b", "1"}};
  request.choices = {{"b", "2"}};
  EXPECT_EQ(job_options(request), (std::vector<Setting>{{"a", "3"}, {"b", "2"}, {"c", " {"}}));
}

}  // namespace
}  // namespace fax::host
