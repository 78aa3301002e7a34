#include "host/core/queues.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

#include "host/core/ppd_file.h"
#include "texts/texts.h"

namespace fax::host {

namespace {

struct Destinations {
  ~Destinations() { cupsFreeDests(count, list); }

  int count = 0;
  cups_dest_t *list = nullptr;
};

std::string option_of(cups_dest_t const &destination, char const *name) {
  char const *value = cupsGetOption(name, destination.num_options, destination.options);
  return value != nullptr ? value : "";
}

// Facts about the queue that CUPS lists among its default options.
bool is_fact(std::string_view key) {
  return key.starts_with("printer-") || key.starts_with("marker-") || key == "device-uri" || key == "copies" ||
         key == "auth-info-required";
}

std::vector<std::string> reasons_of(std::string_view text) {
  std::vector<std::string> reasons;
  while (!text.empty()) {
    std::size_t const comma = std::min(text.find(','), text.size());
    if (comma > 0 && text.substr(0, comma) != "none") reasons.emplace_back(text.substr(0, comma));
    text.remove_prefix(std::min(comma + 1, text.size()));
  }
  return reasons;
}

Queue queue_of(cups_dest_t const &destination, cups_ptype_t type) {
  Queue queue;
  queue.name = destination.name;
  queue.info = option_of(destination, "printer-info");
  queue.location = option_of(destination, "printer-location");
  queue.make_and_model = option_of(destination, "printer-make-and-model");
  queue.device_uri = option_of(destination, "device-uri");
  queue.is_default = destination.is_default != 0;
  queue.accepts_jobs = option_of(destination, "printer-is-accepting-jobs") != "false";
  queue.fax_capable = (type & CUPS_PRINTER_FAX) != 0;
  std::string const state = option_of(destination, "printer-state");
  queue.state = state == "5" ? QueueState::stopped : state == "4" ? QueueState::printing : QueueState::idle;
  queue.state_reasons = reasons_of(option_of(destination, "printer-state-reasons"));
  for (int at = 0; at < destination.num_options; ++at) {
    cups_option_t const &option = destination.options[at];
    if (!is_fact(option.name)) queue.defaults.push_back({option.name, option.value});
  }
  return queue;
}

// Steps (a letter more, less or other) from one name to the other, without regard to ASCII case.
std::size_t distance(std::string const &from, std::string const &to) {
  auto const lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < to.size(); ++j) {
      std::size_t const replaced = diagonal + (lower(from[i]) == lower(to[j]) ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

std::string quoted_list(std::vector<std::string> const &names) {
  std::string text;
  for (auto const &name : names) text += (text.empty() ? "\"" : ", \"") + name + "\"";
  return text;
}

std::string names_to_offer(std::vector<Queue> const &queues, std::string const &wanted) {
  std::vector<std::string> close, all;
  for (auto const &queue : queues) {
    all.push_back(queue.name);
    if (distance(wanted, queue.name) <= std::max<std::size_t>(1, wanted.size() / 3)) close.push_back(queue.name);
  }
  //: {0} is one or more names in quotes, with commas.
  if (!close.empty()) return tr("Did you mean {0}?", quoted_list(close));
  return tr("The queues are: {0}.", quoted_list(all));
}

constexpr char const *kAddQueue = mark("Add one with the system's printer settings or with lpadmin.");

}  // namespace

Result<std::vector<Queue>> list_queues(Server const &server) {
  auto connection = connect(server);
  if (!connection) return connection.failure();
  Deadline const deadline(connection.value().get(), server.timeout_seconds);

  Destinations destinations;
  destinations.count = cupsGetDests2(connection.value().get(), &destinations.list);
  // "Not found" is how the service says that it has no queue at all.
  if (destinations.count == 0 && cupsLastError() != IPP_STATUS_ERROR_NOT_FOUND &&
      cupsLastError() > IPP_STATUS_OK_EVENTS_COMPLETE)
    return Failure{ExitCode::queue,
                   tr("The print service (CUPS) did not list its queues: {0}.", last_error()),
                   tr("See its error log, or try again.")};

  std::vector<Queue> queues;
  for (int at = 0; at < destinations.count; ++at) {
    cups_dest_t const &destination = destinations.list[at];
    auto const type =
        static_cast<cups_ptype_t>(std::strtoul(option_of(destination, "printer-type").c_str(), nullptr, 10));
    bool const only_seen =
        (type & CUPS_PRINTER_DISCOVERED) != 0 && option_of(destination, "printer-is-temporary") != "true";
    // An instance is a queue's other set of options, not a queue of its own.
    if (destination.instance != nullptr || only_seen) continue;
    Queue queue = queue_of(destination, type);
    bool const local = (type & (CUPS_PRINTER_REMOTE | CUPS_PRINTER_CLASS)) == 0;
    if (!queue.fax_capable && local && !deadline.over())
      if (auto const ppd = PpdFile::of_queue(connection.value().get(), queue.name); ppd && ppd.value())
        queue.fax_capable = ppd.value()->can_fax();
    queues.push_back(std::move(queue));
  }
  return queues;
}

Result<Queue> choose_queue(std::vector<Queue> const &queues, std::optional<std::string> const &name) {
  if (queues.empty())
    return Failure{ExitCode::queue, tr("The print service (CUPS) has no print queues."), tr(kAddQueue)};
  auto const found = std::find_if(queues.begin(), queues.end(), [&](Queue const &queue) {
    return name ? queue.name == *name : queue.is_default || queues.size() == 1;
  });
  if (found != queues.end()) return *found;
  if (name) {
    Failure failure = no_such_queue(*name);
    failure.advice = names_to_offer(queues, *name);
    return failure;
  }
  return Failure{ExitCode::queue, tr("There is no default print queue."),
                 tr("Choose one with {0}.", "--printer") + " " + names_to_offer(queues, "")};
}

Result<Queue> queue_to_begin_with(std::vector<Queue> const &queues, std::string const &last) {
  if (auto used = choose_queue(queues, last)) return used;
  auto usual = choose_queue(queues, std::nullopt);
  if (usual || queues.empty()) return usual;
  auto const faxes = std::find_if(queues.begin(), queues.end(), [](Queue const &queue) { return queue.fax_capable; });
  return faxes != queues.end() ? *faxes : queues.front();
}

std::string queue_table(std::vector<Queue> const &queues) {
  if (queues.empty()) return tr("There are no print queues.") + " " + tr(kAddQueue) + "\n";
  std::size_t width = 0;
  for (auto const &queue : queues) width = std::max(width, queue.name.size());
  std::string table;
  for (auto const &queue : queues) {
    std::vector<std::string> notes;
    //: In the list of queues: the one that is used unless another one is named.
    if (queue.is_default) notes.push_back(tr("default"));
    //: In the list of queues: one that can fax.
    if (queue.fax_capable) notes.push_back(tr("fax"));
    //: In the list of queues, as the next two: what the queue does now.
    if (queue.state == QueueState::stopped) notes.push_back(tr("stopped"));
    if (queue.state == QueueState::printing) notes.push_back(tr("printing"));
    if (!queue.accepts_jobs) notes.push_back(tr("rejects jobs"));
    std::string line = queue.name + std::string(width - queue.name.size() + 2, ' ') + queue.display_name();
    if (!queue.location.empty()) line += ", " + queue.location;
    for (std::size_t at = 0; at < notes.size(); ++at) line += (at == 0 ? " (" : ", ") + notes[at];
    if (!notes.empty()) line += ")";
    table += line + "\n";
  }
  return table;
}

}  // namespace fax::host
