#include "driver/ticket.h"

#include "fax_job.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <optional>

namespace fax {
namespace {

using test::key;

constexpr EncodingNumber kUtf8 = 0x08000100;
constexpr EncodingNumber kShiftJis = 0x0628;

FaxPrinter printer() {
  return {kUtf8,
          {{"QXFaxImageQuality", {"Standard", "Fine"}, "Standard"},
           {"QXFaxTransmissionReport", {"Off", "On"}, "On"},
           {"QXFaxCoverPageMode", {"None", "Business"}, "None"},
           {"QXFaxSenderMode", {"PrinterDefault", "EnterName"}, "PrinterDefault"}}};
}

JobCall const kCall{"17", "anna", "Brief 3", "2"};

TEST(Ticket, holds_everything_that_the_dialog_wrote) {
  auto options = test::good_options();
  options["page-ranges"] = "2-4";
  auto const ticket = read_ticket(kCall, options, printer());
  EXPECT_EQ(nlohmann::json::parse(ticket_text(ticket, "job-17.pdf", 4711)), nlohmann::json::parse(R"({
    "job": 17, "user": "anna", "title": "Brief 3", "copies": 2, "pageRanges": "2-4",
    "document": {"file": "job-17.pdf", "bytes": 4711},
    "options": {"QXFaxImageQuality": "Fine", "QXFaxTransmissionReport": "On", "QXFaxCoverPageMode": "Business",
                "QXFaxSenderMode": "EnterName"},
    "senderName": "Henry Marsh", "password": "0427", "delayed": true, "delayedTime": "21:05",
    "destinations": [{"name": "山田太郎", "phoneNumber": "03-1234-5678"}, {"name": "", "phoneNumber": "#99*1:2=3"}]})"));
}

TEST(Ticket, takes_thirty_destinations_in_their_order) {
  auto options = test::good_options();
  options[key("DFaxDestinationNumber")] = "30";
  for (int n = 1; n <= 30; ++n) {
    options[key("DFaxDestinationName" + std::to_string(n))] = "Name " + std::to_string(n);
    options[key("DFaxDestinationPhoneNumber" + std::to_string(n))] = std::to_string(1000 + n);
  }
  auto const ticket = read_ticket(kCall, options, printer());
  ASSERT_EQ(ticket.destinations.size(), 30u);
  EXPECT_EQ(ticket.destinations[9].name, "Name 10");
  EXPECT_EQ(ticket.destinations[29].phone_number, "1030");
}

TEST(Ticket, reads_the_password_in_the_printers_encoding) {
  auto shift_jis = printer();
  shift_jis.password_encoding = kShiftJis;
  EXPECT_EQ(read_ticket(kCall, test::good_options(), shift_jis).password, "0427");
}

// One value of the good job replaced, or taken away. error: part of the message; empty when the job stays good.
struct Spoiled {
  char const *name;
  std::string key;
  std::optional<std::string> value;
  std::string error;
};

void PrintTo(Spoiled const &row, std::ostream *out) { *out << row.name; }

class SpoiledJob : public testing::TestWithParam<Spoiled> {};

TEST_P(SpoiledJob, is_refused_with_the_reason) {
  auto const &row = GetParam();
  auto options = test::good_options();
  options.erase(row.key);
  if (row.value) options[row.key] = *row.value;
  std::string error;
  try {
    read_ticket(kCall, options, printer());
  } catch (TicketError const &refused) {
    error = refused.what();
  }
  if (row.error.empty())
    EXPECT_EQ(error, "");
  else
    EXPECT_THAT(error, testing::HasSubstr(row.error));
}

Spoiled const kSpoiled[] = {
    {"no_password_key", key("DFaxPassword"), std::nullopt, "no DFaxPassword"},
    {"no_delay", key("DFaxDelayedPrint"), std::nullopt, "no DFaxDelayedPrint"},
    {"no_time", key("DFaxDelayedTime"), std::nullopt, "no DFaxDelayedTime"},
    {"no_count", key("DFaxDestinationNumber"), std::nullopt, "no DFaxDestinationNumber"},
    {"no_first_name", key("DFaxDestinationName1"), std::nullopt, "no DFaxDestinationName1"},
    {"no_last_number", key("DFaxDestinationPhoneNumber2"), std::nullopt, "no DFaxDestinationPhoneNumber2"},
    {"no_sender_name", key("DFaxCoverSenderName"), std::nullopt, ""},

    {"count_above_what_is_there", key("DFaxDestinationNumber"), "3", "no DFaxDestinationName3"},
    {"count_below_what_is_there", key("DFaxDestinationNumber"), "1", ""},  // an earlier job's second destination
    {"count_zero", key("DFaxDestinationNumber"), "0", "number of destinations"},
    {"count_too_large", key("DFaxDestinationNumber"), "31", "number of destinations"},
    {"count_negative", key("DFaxDestinationNumber"), "-1", "number of destinations"},
    {"count_with_sign", key("DFaxDestinationNumber"), "+2", "number of destinations"},
    {"count_with_space", key("DFaxDestinationNumber"), " 2", "number of destinations"},
    {"count_with_rest", key("DFaxDestinationNumber"), "2x", "number of destinations"},
    {"count_past_int", key("DFaxDestinationNumber"), "4294967298", "number of destinations"},
    {"count_empty", key("DFaxDestinationNumber"), "", "number of destinations"},

    {"no_password", key("DFaxPassword"), "", ""},
    {"password_cut", key("DFaxPassword"), "RF1FQ", "cannot be deciphered"},
    {"password_in_the_clear", key("DFaxPassword"), "0427", "cannot be deciphered"},
    {"password_letters", key("DFaxPassword"), test::enciphered("abcd"), "digits"},
    {"password_too_long", key("DFaxPassword"), test::enciphered("12345"), "digits"},
    {"password_not_text", key("DFaxPassword"), test::enciphered("\xff\xfe"), "cannot be deciphered"},
    {"password_one_digit", key("DFaxPassword"), test::enciphered("7"), ""},

    {"delay_other", key("DFaxDelayedPrint"), "true", "neither 0 nor 1"},
    {"delay_off", key("DFaxDelayedPrint"), "0", ""},
    {"time_midnight", key("DFaxDelayedTime"), "00:00", ""},
    {"time_last", key("DFaxDelayedTime"), "23:59", ""},
    {"time_hour_24", key("DFaxDelayedTime"), "24:00", "time of day"},
    {"time_minute_60", key("DFaxDelayedTime"), "12:60", "time of day"},
    {"time_one_digit", key("DFaxDelayedTime"), "9:05", "time of day"},
    {"time_seconds", key("DFaxDelayedTime"), "09:05:00", "time of day"},
    {"time_sign", key("DFaxDelayedTime"), "-1:05", "time of day"},
    {"time_empty", key("DFaxDelayedTime"), "", "time of day"},

    {"number_empty", key("DFaxDestinationPhoneNumber1"), "", "Destination 1"},
    {"number_letters", key("DFaxDestinationPhoneNumber1"), "0123ext4", "Destination 1"},
    {"number_only_signs", key("DFaxDestinationPhoneNumber1"), "*-#", "Destination 1"},
    {"number_of_a_modem_command", key("DFaxDestinationPhoneNumber2"), "123;ATH", "Destination 2"},
    {"number_line_break", key("DFaxDestinationPhoneNumber2"), "123\n456", "Destination 2"},
    {"number_wide_digits", key("DFaxDestinationPhoneNumber2"), "０３１２", "Destination 2"},
    {"number_of_an_address_book", key("DFaxDestinationPhoneNumber2"), "+49 (30) 12/34.5", ""},

    {"name_broken_utf8", key("DFaxDestinationName1"), "M\xfcller", "DFaxDestinationName1 of the fax job is not valid UTF-8"},
    {"sender_broken_utf8", key("DFaxCoverSenderName"), "\xc3", "DFaxCoverSenderName of the fax job is not valid UTF-8"},

    {"choice_unknown", "QXFaxImageQuality", "Photo", "QXFaxImageQuality"},
    {"choice_empty", "QXFaxCoverPageMode", "", "QXFaxCoverPageMode"},
    {"choice_not_given", "QXFaxImageQuality", std::nullopt, ""},
};

INSTANTIATE_TEST_SUITE_P(Table, SpoiledJob, testing::ValuesIn(kSpoiled),
                         [](auto const &row) { return std::string{row.param.name}; });

TEST(Ticket, repeats_no_secret_in_its_reasons) {
  auto options = test::good_options();
  options[key("DFaxDestinationPhoneNumber2")] = "0900secret";
  try {
    read_ticket(kCall, options, printer());
    FAIL() << "was taken";
  } catch (TicketError const &refused) {
    EXPECT_THAT(refused.what(), testing::Not(testing::HasSubstr("secret")));
  }
}

// Options that CUPS compares without case arrive in the sender's spelling; the ticket has the PPD's.
TEST(Ticket, spells_choices_as_the_ppd_does) {
  auto options = test::good_options();
  options["QXFaxCoverPageMode"] = "bUSINESS";
  EXPECT_EQ(read_ticket(kCall, options, printer()).fax_options[2].second, "Business");
}

TEST(Ticket, keeps_names_exactly) {
  std::string const names[] = {" leading", "a\tb\nc", "\"quoted\" \\ {brace}", "a,b=c", "\x01\x7f", "😀", "true"};
  for (auto const &name : names) {
    SCOPED_TRACE(name);
    auto options = test::good_options();
    options[key("DFaxDestinationName1")] = name;
    auto const text = ticket_text(read_ticket(kCall, options, printer()), "x", 1);
    EXPECT_EQ(nlohmann::json::parse(text)["destinations"][0]["name"], name);
  }
}

struct BadCall {
  char const *name;
  JobCall call;
  char const *error;
};

class SpoiledCall : public testing::TestWithParam<BadCall> {};

TEST_P(SpoiledCall, is_refused) {
  try {
    read_ticket(GetParam().call, test::good_options(), printer());
    FAIL() << "was taken";
  } catch (TicketError const &refused) {
    EXPECT_THAT(refused.what(), testing::HasSubstr(GetParam().error));
  }
}

BadCall const kBadCalls[] = {
    {"job_is_a_path", {"../../etc/x", "u", "t", "1"}, "job number"},
    {"job_zero", {"0", "u", "t", "1"}, "job number"},
    {"copies_missing", {"1", "u", "t", ""}, "copies"},
    {"copies_zero", {"1", "u", "t", "0"}, "copies"},
    {"title_broken_utf8", {"1", "u", "\xff", "1"}, "title"},
};

INSTANTIATE_TEST_SUITE_P(Table, SpoiledCall, testing::ValuesIn(kBadCalls),
                         [](auto const &row) { return std::string{row.param.name}; });

}  // namespace
}  // namespace fax
