// The filter as CUPS runs it: a program with its job in the arguments.
#include "cups_options.h"
#include "filter_fixture.h"

#include <chrono>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <signal.h>
#include <thread>
#include <vector>

namespace fax {
namespace {

class Filter : public test::FilterTest {};

TEST_F(Filter, leaves_ticket_and_document_and_hands_the_document_on) {
  auto const ended = run({"12", "anna", "Letter", "1", test::option_argument(test::good_options())}, SAMPLE);
  EXPECT_EQ(ended.code, 0);
  EXPECT_THAT(ended.messages, testing::HasSubstr("INFO: "));
  EXPECT_TRUE(ended.output == test::contents(SAMPLE));
  EXPECT_TRUE(test::contents(tickets() / "job-12.pdf") == test::contents(SAMPLE));
  auto const ticket = nlohmann::json::parse(test::contents(tickets() / "job-12.json"));
  EXPECT_EQ(ticket["password"], "0427");
  EXPECT_EQ(ticket["destinations"][0]["name"], "山田太郎");
  EXPECT_EQ(ticket["document"]["bytes"], std::filesystem::file_size(SAMPLE));
}

TEST_F(Filter, reads_the_document_from_a_file_argument) {
  auto const ended = run({"3", "anna", "Letter", "1", test::option_argument(test::good_options()), SAMPLE}, "/dev/null");
  EXPECT_EQ(ended.code, 0);
  EXPECT_TRUE(test::contents(tickets() / "job-3.pdf") == test::contents(SAMPLE));
}

TEST_F(Filter, writes_nothing_for_a_job_that_cannot_be_faxed) {
  auto no_destination = test::good_options();
  no_destination.erase(test::key("DFaxDestinationNumber"));
  struct {
    char const *name;
    std::vector<std::string> arguments;
    char const *input;
    char const *message;
  } const rows[] = {
      {"no destination", {"1", "u", "t", "1", test::option_argument(no_destination)}, SAMPLE, "DFaxDestinationNumber"},
      {"no options", {"1", "u", "t", "1", ""}, SAMPLE, "Fax Settings"},
      {"unparsable options", {"1", "u", "t", "1", "{{{ \"' = \\"}, SAMPLE, "Fax Settings"},
      {"empty document", {"1", "u", "t", "1", test::option_argument(test::good_options())}, "/dev/null", "empty"},
      {"no such file", {"1", "u", "t", "1", test::option_argument(test::good_options()), "/nowhere"}, SAMPLE, "/nowhere"},
      {"too few arguments", {"1", "u"}, SAMPLE, "Usage"},
  };
  for (auto const &row : rows) {
    SCOPED_TRACE(row.name);
    auto const ended = run(row.arguments, row.input);
    EXPECT_EQ(ended.code, 1);
    EXPECT_THAT(ended.messages, testing::StartsWith("ERROR: "));
    EXPECT_THAT(ended.messages, testing::HasSubstr(row.message));
    EXPECT_EQ(ended.output, "");
    EXPECT_TRUE(std::filesystem::is_empty(tickets()));
  }
}

TEST_F(Filter, says_when_the_ticket_folder_is_not_there) {
  std::filesystem::remove(tickets());
  auto const ended = run({"1", "u", "t", "1", test::option_argument(test::good_options())}, SAMPLE);
  EXPECT_EQ(ended.code, 1);
  EXPECT_THAT(ended.messages, testing::HasSubstr(tickets().string()));
}

TEST_F(Filter, holds_little_of_a_large_document) {
  auto const large = folder_.path() / "large.pdf";
  std::ofstream{large} << "%PDF-1.4\n";
  auto const run_with = [&](std::uintmax_t size) {
    std::filesystem::resize_file(large, size);
    auto const ended = run({"1", "u", "t", "1", test::option_argument(test::good_options())}, large);
    EXPECT_EQ(ended.code, 0);
    EXPECT_EQ(std::filesystem::file_size(tickets() / "job-1.pdf"), size);
    return ended.most_memory;
  };
  auto const small = run_with(100'000);
  EXPECT_LT(run_with(16'000'000), small + 4'000);
}

TEST_F(Filter, leaves_nothing_when_the_job_is_cancelled) {
  auto const fifo = folder_.path() / "fifo";
  ASSERT_EQ(::mkfifo(fifo.c_str(), 0600), 0);
  auto const ended =
      run({"1", "u", "t", "1", test::option_argument(test::good_options())}, fifo, [&](pid_t filter) {
        using namespace std::chrono_literals;
        for (int i = 0; i < 1000 && std::filesystem::is_empty(tickets()); ++i) std::this_thread::sleep_for(10ms);
        EXPECT_FALSE(std::filesystem::is_empty(tickets())) << "the filter has not begun";
        ::kill(filter, SIGTERM);
      });
  EXPECT_EQ(ended.code, 1);
  EXPECT_TRUE(std::filesystem::is_empty(tickets()));
}

}  // namespace
}  // namespace fax
