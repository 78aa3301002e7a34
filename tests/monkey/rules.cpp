#include "rules.h"

#include <algorithm>
#include <functional>

namespace monkey {

namespace {

bool has(std::vector<std::string> const &all, std::string const &one) { return std::ranges::count(all, one) > 0; }

// host, then fax, then book, then one property panel; an alert above any of them.
std::string broken_windows(Seen const &seen) {
  std::vector<std::string> due{"host"};
  for (char const *name : {"fax", "book", "user", "group"})
    if (has(seen.windows, name)) due.push_back(name);
  if (!seen.alert.empty()) due.push_back("alert");
  if (!std::ranges::is_permutation(seen.windows, due)) {
    std::string all = "a window is left over or missing among";
    for (auto const &name : seen.windows) all += " " + name;
    return all;
  }
  if (has(due, "book") && !has(due, "fax")) return "the address book stands without the fax dialog";
  if (has(due, "user") && has(due, "group")) return "two property panels at a time";
  if ((has(due, "user") || has(due, "group")) && !has(due, "book")) return "a property panel stands alone";
  std::string const top = due.size() > 1 ? due.back() : "";
  return seen.modal == top ? "" : "modal is \"" + seen.modal + "\" where \"" + top + "\" is on top";
}

std::string broken_switches(Seen const &seen) {
  std::size_t const chosen = seen.destinations.selected, file = seen.file_entries.selected,
                    printer = seen.printer_entries.selected;
  std::map<std::string, bool> const mirrors{{"canEditAddress", chosen == 1},
                                            {"canDeleteAddress", chosen > 0},
                                            {"canAddToAddressFile", seen.file_available && chosen > 0}};
  std::map<std::string, bool> const enabled{{"addAddressInfo:", !seen.number.empty()},
                                            {"editAddressInfo:", chosen == 1},
                                            {"fax deleteAddressInfo:", chosen > 0},
                                            {"addToAddressBook:", seen.file_available && chosen > 0},
                                            {"delayedTime", seen.delayed},
                                            {"addSelectedPCAddressData:", file > 0},
                                            {"showPCAddressProperty:", file == 1},
                                            {"addSelectedDeviceAddressData:", printer > 0},
                                            {"showDevicePCAddressProperty:", printer == 1},
                                            {"book deleteAddressInfo:", chosen > 0}};
  for (auto const &[name, due] : mirrors)
    if (seen.mirrors.at(name) != due) return "the stored " + name + " is not what it has to be";
  for (auto const &[name, due] : enabled)
    if (seen.enabled.at(name) != due) return name + " is " + (due ? "disabled" : "enabled");
  return "";
}

std::string broken_panel(Seen const &seen) {
  bool const mode = seen.cover_page != "None";
  if (seen.panel_enabled.at("mode") != mode) return "the sender's pop-up does not follow the cover page";
  bool const name = mode && seen.sender_mode == "EnterName";
  return seen.panel_enabled.at("name") == name ? "" : "the sender's name does not follow the pop-ups";
}

// An alert that says what is not so.
std::string broken_alert(Seen const &seen) {
  std::size_t const count = seen.destinations.rows.size();
  std::size_t const candidates =
      has(seen.windows, "book") ? std::max(seen.file_entries.candidates, seen.printer_entries.candidates) : 1;
  struct {
    char const *message;
    bool due;
  } const messages[] = {
      {"No More Destination", count + candidates > kMostDestinations},
      {"Duplicated Address Found", count < kMostDestinations},
      {"No Sender Specified", count == 0},
      {"Characters added to Fax Number", count == 0 && !seen.number.empty()},
      {"Address Book file is none", seen.files == 0},
      {"Device Access Failure", seen.printer_entries.rows.empty()},
      {"Added to Address Book.", seen.destinations.selected > 0},
      {"Address already exists.", seen.destinations.selected > 0},
      {"No name specified.", seen.destinations.selected > 0},
      {"Cannot add to the file.", seen.destinations.selected > 0},
      {"Address Book Editor not found.", !has(seen.windows, "fax")},
      {"", true},
  };
  auto const found = std::ranges::find(messages, seen.alert, [](auto const &row) { return std::string(row.message); });
  if (found == std::end(messages)) return "an alert that nobody knows: " + seen.alert;
  return found->due ? "" : "the alert is wrong: " + seen.alert;
}

}  // namespace

std::string Rules::broken_list(std::string const &name, List const &list) const {
  auto const later = [this](Row const &one, Row const &other) {
    int const order = compare_(one.name, other.name);
    return order != 0 ? order < 0 : compare_(one.number, other.number) < 0;
  };
  if (std::ranges::adjacent_find(list.rows, later) != list.rows.end()) return name + " are out of order";
  for (std::size_t const rows : list.shown)
    if (rows != list.rows.size()) return "a table shows other " + name;
  for (std::size_t const selected : list.marked)
    if (selected != list.selected) return "a table has selected other " + name;
  return "";
}

std::string Rules::broken_story(Seen const &seen) {
  if (!has(before_.windows, "book") && has(seen.windows, "book")) at_opening_ = seen.identities;
  if (has(seen.ran, "cancelAddressSetting:") && seen.identities != at_opening_)
    return "Cancel did not restore the destinations";
  bool const stopped = has(seen.ran, "stopSending:");
  if (stopped && !seen.destinations.rows.empty()) return "Stop left destinations";
  if (stopped && seen.sending) return "sending after Stop";
  bool const left = has(before_.windows, "fax") && !has(seen.windows, "fax");
  if (left && !stopped && !seen.sending) return "the fax dialog went without Start and without Stop";
  if (left && !stopped && seen.destinations.rows.empty()) return "started without a destination";
  return "";
}

std::string Rules::broken(Seen const &seen) {
  std::string fault = broken_windows(seen);
  if (fault.empty()) fault = broken_panel(seen);
  if (fault.empty() && seen.fax) {
    if (seen.destinations.rows.size() > kMostDestinations) fault = "more than 30 destinations";
    if (fault.empty()) fault = broken_list("destinations", seen.destinations);
    if (fault.empty()) fault = broken_list("entries of the file", seen.file_entries);
    if (fault.empty()) fault = broken_list("entries of the printer", seen.printer_entries);
    if (fault.empty()) fault = broken_switches(seen);
    if (fault.empty()) fault = broken_story(seen);
  }
  if (fault.empty()) fault = broken_alert(seen);
  before_ = seen;
  return fault;
}

std::string Rules::broken(Job const &job, Seen const &seen) {
  std::vector<std::pair<std::string, std::string>> due{
      {"DFaxPassword", job.password}, {"DFaxDelayedPrint", seen.delayed ? "1" : "0"}, {"DFaxDelayedTime", job.time}};
  auto const &rows = seen.destinations.rows;
  due.emplace_back("DFaxDestinationNumber", std::to_string(rows.size()));
  for (std::size_t at = 0; at < rows.size(); ++at) {
    due.emplace_back("DFaxDestinationName" + std::to_string(at + 1), rows[at].name);
    due.emplace_back("DFaxDestinationPhoneNumber" + std::to_string(at + 1), rows[at].number);
  }
  // One of the first three that is refused ends it.
  if (job.first_failing >= 0 && job.first_failing < 3) due.resize(static_cast<std::size_t>(job.first_failing) + 1);
  for (std::size_t at = 0; at < due.size(); ++at) {
    auto const &[key, value] = due[at];
    if (at >= job.stored.size() || job.stored[at] != key) return "the job lacks " + key;
    int const number = static_cast<int>(at);
    if (job.first_failing >= 0 && number >= job.first_failing && number <= job.last_failing) continue;
    auto const found = job.values.find(key);
    if (found == job.values.end() || found->second != value) return "the job has another " + key;
  }
  return job.stored.size() == due.size() ? "" : "the job has more keys than it should";
}

}  // namespace monkey
