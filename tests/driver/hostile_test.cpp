// Names, numbers and sender names that were made to change a job, from the address book's fields to the driver's ticket:
// nothing but the characters that the guard is documented to replace is another at the end, and nothing is added.
#include "cups_options.h"
#include "filter_fixture.h"
#include "hostile_texts.h"

#include "faxsetting/job_settings.h"
#include "host/core/job.h"
#include "host/print_settings.h"
#include "quoltanis/unicode.h"
#include "support/cf_owned.h"
#include "support/printer_encoding.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <set>

namespace fax {
namespace {

using nlohmann::json;
using String = CFOwned<CFStringRef>;

constexpr unsigned kSeed = 20260312;
constexpr std::size_t kTexts = 10000;
constexpr std::size_t kTextsOfAJob = 2 * kMostDestinations + 1;

String string_of(std::u16string const &units) {
  std::string const utf8 = utf8_of(units).value();
  return String(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<UInt8 const *>(utf8.data()),
                                        static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

// Any bytes as the records of an address book carry them: valid text without U+0000.
std::u16string through_a_field(std::string const &bytes) {
  std::vector<char16_t> field(bytes.size() + 1);
  return {field.data(), fill_field(field, bytes).units};
}

// The one change that is allowed.
std::string after_the_guard(std::u16string const &units) {
  std::string text = utf8_of(units).value();
  for (char &c : text)
    if (std::string_view("\r\v\f").find(c) != std::string_view::npos) c = ' ';
  std::size_t commas = 0;
  while (commas < text.size() && text[commas] == ',') ++commas;
  return text.substr(commas, 1) == "{" ? " " + text : text;
}

struct Job {
  std::u16string sender;
  std::vector<std::u16string> names, numbers;
};

Job hostile_job(test::HostileTexts &texts) {
  Job job{through_a_field(texts.name()), {}, {}};
  for (int n = 0; n < kMostDestinations; ++n) {
    job.names.push_back(through_a_field(texts.name()));
    job.numbers.push_back(through_a_field(texts.number()));
  }
  return job;
}

// What the dialog leaves in the print settings, as the host reads it.
std::vector<host::Setting> settings_of(Job const &job) {
  PMPrintSettings settings = nullptr;
  EXPECT_EQ(PMCreatePrintSettings(&settings), noErr);
  String const key = string_of(u"com.norvalt.tk.o.print.printsettings.DFaxCoverSenderName");
  String const sender = string_of(job.sender);
  EXPECT_EQ(PMPrintSettingsSetValue(settings, key.get(), sender.get(), false), noErr);
  std::vector<String> texts;
  FaxJob written{CFSTR("0427"), kDefaultPrinterEncoding, CFSTR("1"), CFSTR("21:05"), {}};
  for (std::size_t n = 0; n < job.names.size(); ++n) {
    texts.push_back(string_of(job.names[n]));
    texts.push_back(string_of(job.numbers[n]));
    written.destinations.push_back({texts[2 * n].get(), texts[2 * n + 1].get()});
  }
  write_job_settings(settings, written);
  auto const read = host::read_settings(settings);
  PMRelease(settings);
  return read;
}

host::JobRequest request_of(Job const &job) {
  return {.queue = "fax", .title = "", .document = host::Document::of_bytes("%PDF-1.4\n", "Letter"), .options = {},
          .choices = {{"QXFaxImageQuality", "Fine"}}, .settings = settings_of(job), .queue_defaults = {}};
}

class Hostile : public test::FilterTest {
 protected:
  // What the driver understood of the job, all of it.
  json ticket_of(std::string const &options) {
    auto const ended = run({"1", "anna", "Letter", "1", options}, SAMPLE);
    EXPECT_EQ(ended.code, 0) << ended.messages;
    return ended.code == 0 ? json::parse(test::contents(tickets() / "job-1.json")) : json();
  }
};

TEST_F(Hostile, ten_thousand_texts_change_nothing) {
  test::HostileTexts texts(kSeed);
  std::size_t tried = 0, guarded = 0;
  for (; tried < kTexts; tried += kTextsOfAJob) {
    Job const job = hostile_job(texts);
    auto const request = request_of(job);
    auto const refusal = host::check_request(request);
    ASSERT_FALSE(refusal.has_value()) << refusal->text();
    auto const sent = host::job_options(request);
    std::string const argument = test::option_argument(sent);

    std::set<std::string> sent_keys, arrived_keys;
    for (auto const &setting : sent) sent_keys.insert(setting.key);
    for (auto const &[key, value] : test::parsed_options(argument)) arrived_keys.insert(key);
    EXPECT_EQ(arrived_keys, sent_keys);

    json expected = {{"job", 1}, {"user", "anna"}, {"title", "Letter"}, {"copies", 1}, {"pageRanges", ""},
                     {"password", "0427"}, {"delayed", true}, {"delayedTime", "21:05"}};
    expected["senderName"] = after_the_guard(job.sender);
    for (std::size_t n = 0; n < job.names.size(); ++n) {
      std::string const name = after_the_guard(job.names[n]);
      guarded += name != utf8_of(job.names[n]);
      expected["destinations"].push_back({{"name", name}, {"phoneNumber", after_the_guard(job.numbers[n])}});
    }
    json got = ticket_of(argument);
    EXPECT_EQ(got["options"]["QXFaxImageQuality"], "Fine");
    got.erase("options");
    got.erase("document");
    ASSERT_EQ(got, expected) << "after " << tried << " texts of seed " << kSeed;
  }
  EXPECT_GT(guarded, 100u) << "the guard had nothing to do";
}

// A number that none can dial stops the job where it stands: nothing is sent, to anybody, and no other key changes.
TEST_F(Hostile, a_number_that_is_none_stops_the_job) {
  test::HostileTexts texts(kSeed + 1);
  for (int tried = 0; tried < 300; ++tried) {
    Job job = hostile_job(texts);
    std::size_t const bad = texts.below(job.numbers.size());
    job.numbers[bad] = through_a_field(texts.name() + "x");
    auto const sent = host::job_options(request_of(job));
    auto const arrived = test::parsed_options(test::option_argument(sent));
    EXPECT_EQ(arrived.size(), sent.size());
    for (auto const &setting : sent) EXPECT_EQ(arrived.at(setting.key), setting.value);
    if (tried % 10 != 0) continue;
    auto const ended = run({"1", "anna", "Letter", "1", test::option_argument(sent)}, SAMPLE);
    EXPECT_EQ(ended.code, 1);
    EXPECT_THAT(ended.messages, testing::HasSubstr("Destination " + std::to_string(bad + 1) + " "));
    EXPECT_TRUE(std::filesystem::is_empty(tickets()));
  }
}

// A text with U+0000 would end there for everybody behind the host, so the job is refused before it is sent.
TEST(HostileText, with_a_zero_is_refused) {
  test::HostileTexts texts(kSeed + 2);
  Job job = hostile_job(texts);
  job.names[7] = std::u16string(u"a\0b", 3);
  auto const refusal = host::check_request(request_of(job));
  ASSERT_TRUE(refusal.has_value());
  EXPECT_EQ(refusal->code, host::ExitCode::submission);
  EXPECT_THAT(refusal->what, testing::HasSubstr("DFaxDestinationName8"));
}

}  // namespace
}  // namespace fax
