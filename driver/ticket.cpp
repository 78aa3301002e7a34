#include "driver/ticket.h"

#include "support/password.h"

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>

namespace fax {

namespace {

constexpr std::string_view kKeyPrefix = "com.norvalt.tk.o.print.printsettings.";
constexpr EncodingNumber kUtf8 = 0x08000100;
constexpr std::size_t kLongestPassword = 4;
// What the dialog lets a person type, and what address books hold besides.
constexpr std::string_view kOtherNumberCharacters = "#*-:=+()./ ";

bool is_digit(char c) { return c >= '0' && c <= '9'; }
char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Canonical decimal only: "07", "+7" and "7 " are no numbers.
std::optional<int> plain_number(std::string_view text) {
  int number = 0;
  auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || std::to_string(number) != text) return std::nullopt;
  return number;
}

std::string_view checked_text(std::string_view text, std::string_view what) {
  if (!decode_text(text, kUtf8)) throw TicketError{std::string{what} + " of the fax job is not valid UTF-8"};
  return text;
}

class FaxKeys {
 public:
  explicit FaxKeys(JobOptions const &options) : options_{options} {}

  std::optional<std::string> find(std::string const &name) const {
    auto const at = options_.find(std::string{kKeyPrefix} + name);
    if (at == options_.end()) return std::nullopt;
    return std::string{checked_text(at->second, name)};
  }

  std::string get(std::string const &name) const {
    auto value = find(name);
    if (!value) throw TicketError{"The fax job has no " + name + ": print it again from the Fax Settings panel"};
    return *value;
  }

 private:
  JobOptions const &options_;
};

std::string read_password(std::string const &base64, EncodingNumber encoding) {
  if (base64.empty()) return {};
  auto const password = decipher_password(base64, encoding);
  if (!password) throw TicketError{"The password of the fax job cannot be deciphered"};
  if (password->empty() || password->size() > kLongestPassword || !std::ranges::all_of(*password, is_digit))
    throw TicketError{"The password of the fax job does not decipher to one to four digits"};
  return *password;
}

bool is_time_of_day(std::string_view text) {
  if (text.size() != 5 || text[2] != ':') return false;
  for (std::size_t i : {0, 1, 3, 4})
    if (!is_digit(text[i])) return false;
  return text.substr(0, 2) < "24" && text[3] < '6';
}

bool is_phone_number(std::string_view text) {
  return !text.empty() && std::ranges::any_of(text, is_digit) &&
         std::ranges::all_of(text, [](char c) { return is_digit(c) || kOtherNumberCharacters.find(c) != std::string_view::npos; });
}

std::vector<Destination> read_destinations(FaxKeys const &keys) {
  auto const count = plain_number(keys.get("DFaxDestinationNumber"));
  if (!count || *count < 1 || *count > kMostDestinations)
    throw TicketError{"The number of destinations of the fax job is not between 1 and " +
                      std::to_string(kMostDestinations)};
  std::vector<Destination> destinations;
  for (int n = 1; n <= *count; ++n) {
    auto const number = std::to_string(n);
    Destination destination{keys.get("DFaxDestinationName" + number), keys.get("DFaxDestinationPhoneNumber" + number)};
    if (!is_phone_number(destination.phone_number))
      throw TicketError{"Destination " + number + " of the fax job has no usable fax number"};
    destinations.push_back(std::move(destination));
  }
  return destinations;
}

std::vector<std::pair<std::string, std::string>> read_fax_options(JobOptions const &options, FaxPrinter const &printer) {
  std::vector<std::pair<std::string, std::string>> chosen;
  for (auto const &feature : printer.features) {
    auto const at = options.find(feature.keyword);
    if (at == options.end()) {
      chosen.emplace_back(feature.keyword, feature.default_choice);
      continue;
    }
    // As in CUPS itself, case does not count in a choice; the ticket has the PPD's spelling.
    auto const choice = std::ranges::find_if(feature.choices, [&](std::string const &name) {
      return std::ranges::equal(name, at->second, {}, lower, lower);
    });
    if (choice == feature.choices.end())
      throw TicketError{"The printer does not know the value of " + feature.keyword + " in the fax job"};
    chosen.emplace_back(feature.keyword, *choice);
  }
  return chosen;
}

}  // namespace

Ticket read_ticket(JobCall const &call, JobOptions const &options, FaxPrinter const &printer) {
  Ticket ticket;
  auto const job = plain_number(call.id);
  if (!job || *job < 1) throw TicketError{"The job number is not a number"};
  auto const copies = plain_number(call.copies);
  if (!copies || *copies < 1) throw TicketError{"The number of copies is not a number"};
  ticket.job = *job;
  ticket.copies = *copies;
  ticket.user = checked_text(call.user, "The user name");
  ticket.title = checked_text(call.title, "The title");
  if (auto const pages = options.find("page-ranges"); pages != options.end())
    ticket.page_ranges = checked_text(pages->second, "The page ranges");

  FaxKeys const keys{options};
  ticket.password = read_password(keys.get("DFaxPassword"), printer.password_encoding);
  auto const delayed = keys.get("DFaxDelayedPrint");
  if (delayed != "0" && delayed != "1") throw TicketError{"DFaxDelayedPrint of the fax job is neither 0 nor 1"};
  ticket.delayed = delayed == "1";
  ticket.delayed_time = keys.get("DFaxDelayedTime");
  if (!is_time_of_day(ticket.delayed_time)) throw TicketError{"DFaxDelayedTime of the fax job is not a time of day"};
  ticket.sender_name = keys.find("DFaxCoverSenderName").value_or("");
  ticket.destinations = read_destinations(keys);
  ticket.fax_options = read_fax_options(options, printer);
  return ticket;
}

std::string ticket_text(Ticket const &ticket, std::string_view document, std::uint64_t document_bytes) {
  using Json = nlohmann::ordered_json;
  Json options = Json::object();
  for (auto const &[keyword, choice] : ticket.fax_options) options[keyword] = choice;
  Json destinations = Json::array();
  for (auto const &destination : ticket.destinations)
    destinations.push_back({{"name", destination.name}, {"phoneNumber", destination.phone_number}});
  Json const json = {
      {"job", ticket.job},
      {"user", ticket.user},
      {"title", ticket.title},
      {"document", {{"file", document}, {"bytes", document_bytes}}},
      {"copies", ticket.copies},
      {"pageRanges", ticket.page_ranges},
      {"options", options},
      {"senderName", ticket.sender_name},
      {"password", ticket.password},
      {"delayed", ticket.delayed},
      {"delayedTime", ticket.delayed_time},
      {"destinations", destinations},
  };
  return json.dump(2) + "\n";
}

}  // namespace fax
