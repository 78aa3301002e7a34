// From the print settings through the guard and CUPS's own parser to the driver's ticket. Input: the texts of a fax job,
// each ended by a byte 0xFF: sender name, then name and number of each destination; then further options, key and value.
#include "driver/ticket.h"
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "host/core/job.h"
#include "host/core/option_guard.h"
#include "tests/driver/cups_options.h"
#include "tests/driver/fax_job.h"

#include <algorithm>
#include <string>

namespace {

using fax::host::JobRequest, fax::host::Setting;
using fax::test::key;

JobRequest request_of(fuzz::Bytes input, std::size_t &destinations) {
  JobRequest request{.queue = "fax", .title = "Title", .document = fax::host::Document::of_bytes("%PDF-", "Title"),
                     .options = {}, .choices = {}, .settings = {}, .queue_defaults = {}};
  auto const set = [&](std::string const &name, std::string_view value) {
    request.settings.push_back({key(name), std::string(value)});
  };
  std::size_t const wanted = input.byte() % fax::kMostDestinations + 1;
  set("DFaxCoverSenderName", input.until('\xFF'));
  set("DFaxPassword", fax::test::enciphered("0427"));
  set("DFaxDelayedPrint", "1");
  set("DFaxDelayedTime", "21:05");
  for (destinations = 0; destinations < wanted && !input.empty(); ++destinations) {
    std::string const number = std::to_string(destinations + 1);
    set("DFaxDestinationName" + number, input.until('\xFF'));
    set("DFaxDestinationPhoneNumber" + number, input.until('\xFF'));
  }
  set("DFaxDestinationNumber", std::to_string(destinations));
  while (!input.empty()) {
    auto const name = input.until('\xFF'), value = input.until('\xFF');
    request.options.push_back({std::string(name), std::string(value)});
  }
  return request;
}

bool guarded_twice_is_once(std::string const &value) {
  auto const guarded = fax::host::guarded_value(value);
  return fax::host::guarded_value(guarded) == guarded;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  std::size_t destinations = 0;
  JobRequest const request = request_of({data, size}, destinations);
  for (auto const &setting : request.settings) FUZZ_CHECK(guarded_twice_is_once(setting.value));
  if (fax::host::check_request(request)) return 0;

  // Every option arrives with its value, and nothing else does. CUPS compares names without case and keeps one of each.
  auto const sent = fax::host::job_options(request);
  std::string const argument = fax::test::option_argument(sent);
  FUZZ_CHECK(argument.size() + 1 <= fax::host::total_option_bytes(sent));
  auto const arrived = fax::test::parsed_options(argument);
  for (auto const &option : arrived)
    FUZZ_CHECK(std::ranges::any_of(sent, [&](Setting const &one) { return one.key == option.first; }));
  for (auto const &setting : request.settings) {
    auto const found = arrived.find(setting.key);
    FUZZ_CHECK(found != arrived.end() && found->second == fax::host::guarded_value(setting.value));
  }

  try {
    fax::FaxPrinter const printer{.password_encoding = 0x08000100, .features = {}};
    auto const ticket = fax::read_ticket({"1", "user", "title", "1"}, arrived, printer);
    FUZZ_CHECK(ticket.destinations.size() == destinations && ticket.password == "0427");
    FUZZ_CHECK(!fax::ticket_text(ticket, "job-1.pdf", 5).empty());
  } catch (fax::TicketError const &) {
    // No destination, or a number that none can dial.
  }
  return 0;
}
