// What has to hold after every action, whatever it was: plain C++ over what the windows show at that moment.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace monkey {

inline constexpr std::size_t kMostDestinations = 30;

struct Row {
  std::string name, number;  // UTF-8
  bool operator==(Row const &) const = default;
};

// A list as its controller arranges it, and as a table shows it.
struct List {
  std::vector<Row> rows;
  std::size_t selected = 0;
  std::size_t candidates = 0;              // that adding the selected ones could make, at most
  std::vector<std::size_t> shown, marked;  // of each table: rows, and selected ones
};

struct Seen {
  // Windows that are on the screen, the one below first: "host", "fax", "book", "user", "group", or another's class.
  std::vector<std::string> windows;
  std::string modal;  // empty: none
  std::string alert;  // message of the alert on top; empty: none

  bool fax = false;  // the fax dialog is loaded; what follows is true only then
  List destinations, file_entries, printer_entries;
  std::vector<std::uintptr_t> identities;  // of the destinations
  std::size_t files = 0;
  std::string number;  // in the field
  bool file_available = false, delayed = false, sending = false;
  std::map<std::string, bool> mirrors;  // canEditAddress... as stored
  std::map<std::string, bool> enabled;  // buttons by what they do, "addAddressInfo:"...

  // The panel.
  std::string cover_page, sender_mode;
  std::map<std::string, bool> panel_enabled;  // "mode", "name"

  // Actions that have run since the last look: "cancelAddressSetting:"...
  std::vector<std::string> ran;
};

// What the driver would find in the settings of a job.
struct Job {
  std::vector<std::string> stored;            // keys in the order of the attempts, without their prefix
  std::map<std::string, std::string> values;  // of those that were stored
  int first_failing = -1, last_failing = -1;  // attempts that were refused
  std::string password, time;                 // as they have to be
};

// Less than, equal to or greater than 0 as one text comes before the other, without regard to case.
using Compare = int (*)(std::string const &, std::string const &);

// Follows the dialogs from one look to the next. A rule that is broken comes back in words, "" when all hold.
class Rules {
 public:
  explicit Rules(Compare compare) : compare_(compare) {}
  std::string broken(Seen const &seen);
  static std::string broken(Job const &job, Seen const &seen);

 private:
  std::string broken_list(std::string const &name, List const &list) const;
  std::string broken_story(Seen const &seen);

  Compare compare_;
  Seen before_;
  std::vector<std::uintptr_t> at_opening_;  // of the address-book dialog
};

}  // namespace monkey
