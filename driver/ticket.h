// The fax ticket: everything the print dialog's fax panel left in a job, checked and in the clear, as the driver hands it
// to the machine that dials. Plain C++; no state.
#pragma once

#include "driver/fax_printer.h"

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace fax {

inline constexpr int kMostDestinations = 30;

// The job's options by name, values as cupsParseOptions gives them (UTF-8).
using JobOptions = std::map<std::string, std::string, std::less<>>;

// How CUPS calls a filter: its first four arguments, as they stand.
struct JobCall {
  std::string id, user, title, copies;
};

struct Destination {
  std::string name;          // may be empty
  std::string phone_number;  // never empty
};

struct Ticket {
  int job = 0;
  std::string user, title;
  int copies = 1;
  std::string page_ranges;                                       // "2-4,7"; empty for every page
  std::vector<std::pair<std::string, std::string>> fax_options;  // keyword and choice keyword, in the panel's order
  std::string sender_name;                                       // may be empty
  std::string password;                                          // up to four digits; empty for none
  bool delayed = false;
  std::string delayed_time;  // "HH:mm", 24 hours, the sender's local time; stands also when delayed is false
  std::vector<Destination> destinations;
};

// A job that cannot be faxed as it stands. The text is for its owner: no number, name or password is repeated in it, for
// CUPS shows it to others.
class TicketError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the ticket out of a job. TicketError when
// - a key of the fax dialog is missing (only the sender name may be: a panel that was never shown does not write it);
// - the number of destinations is not 1 to 30 in plain digits, or a destination below it lacks its name or number;
// - a number is empty or holds anything but digits, "#*-:=" (what can be typed) and "+()./" and space (what address books
//   hold besides);
// - the password does not decipher to at most four digits, the time is not HH:mm, the delay neither 0 nor 1;
// - one of the panel's options has a choice that the PPD lacks (an option not given has the PPD's default);
// - a text is not UTF-8, or an argument of the call is no number.
// Numbered keys above the count belong to an earlier job and are not looked at.
Ticket read_ticket(JobCall const &call, JobOptions const &options, FaxPrinter const &printer);

// The ticket file's text: one JSON object, indented, UTF-8, ended by a line feed. document is the file name beside it.
std::string ticket_text(Ticket const &ticket, std::string_view document, std::uint64_t document_bytes);

}  // namespace fax
