#include "host/core/ppd_file.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include "texts/texts.h"

namespace fax::host {

namespace {

constexpr char kFaxGroup[] = "QXFaxSettings";
constexpr std::array<char const *, 4> kFaxKeywords{"QXFaxImageQuality", "QXFaxTransmissionReport",
                                                   "QXFaxCoverPageMode", "QXFaxSenderMode"};

bool same(char const *left, char const *right) { return strcasecmp(left, right) == 0; }

bool is_custom(std::string const &choice) { return strncasecmp(choice.c_str(), "Custom.", 7) == 0; }

// An option that is part of the printer's build or follows another one: neither shown nor put into a job.
bool is_technical(ppd_group_t const &group, ppd_option_t const &option) {
  return same(group.name, "InstallableOptions") || same(option.keyword, "PageRegion");
}

class CupsOptions {
public:
  CupsOptions() = default;
  CupsOptions(CupsOptions const &) = delete;
  CupsOptions &operator=(CupsOptions const &) = delete;
  ~CupsOptions() { cupsFreeOptions(count, list); }

  void add(Setting const &setting) { count = cupsAddOption(setting.key.c_str(), setting.value.c_str(), count, &list); }

  int count = 0;
  cups_option_t *list = nullptr;
};

struct CloseFile {
  void operator()(std::FILE *file) const { std::fclose(file); }
};

Failure broken(std::string const &name) {
  int line = 0;
  ppd_status_t const status = ppdLastError(&line);
  char const *const why = ppdErrorString(status);
  return {ExitCode::queue,
          line > 0 ? tr("The PPD file of \"{0}\" is broken, line {1}: {2}.", name, line, why)
                   : tr("The PPD file of \"{0}\" is broken: {1}.", name, why),
          tr("Install the printer's driver again; {0} tells all that is wrong with a PPD file.", "cupstestppd")};
}

Failure no_answer(std::string const &queue) {
  return {ExitCode::queue,
          tr("The print service (CUPS) did not hand out the PPD file of \"{0}\": {1}.", queue, last_error()),
          tr("See its error log, or try again.")};
}

// Not cupsGetPPD3: for a local service it takes /etc/cups/ppd/NAME.ppd of the machine, also where the connection leads
// to a service that keeps its files elsewhere.
http_status_t fetch(http_t *connection, std::string const &queue, int descriptor) {
  return cupsGetFd(connection, ("/printers/" + queue + ".ppd").c_str(), descriptor);
}

// True when the print service knows a queue of that name; nullopt when it did not say.
std::optional<bool> queue_exists(http_t *connection, std::string const &queue) {
  std::array<char, HTTP_MAX_URI> uri;
  httpAssembleURIf(HTTP_URI_CODING_ALL, uri.data(), static_cast<int>(uri.size()), "ipp", nullptr, "localhost",
                   ippPort(), "/printers/%s", queue.c_str());
  ipp_t *request = ippNewRequest(IPP_OP_GET_PRINTER_ATTRIBUTES);
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_URI, "printer-uri", nullptr, uri.data());
  ippAddString(request, IPP_TAG_OPERATION, IPP_TAG_KEYWORD, "requested-attributes", nullptr, "printer-name");
  ippDelete(cupsDoRequest(connection, request, "/"));
  if (cupsLastError() == IPP_STATUS_ERROR_NOT_FOUND) return false;
  if (cupsLastError() > IPP_STATUS_OK_EVENTS_COMPLETE) return std::nullopt;
  return true;
}

}  // namespace

Result<std::unique_ptr<PpdFile>> PpdFile::of_queue(Server const &server, std::string const &queue) {
  auto connection = connect(server);
  if (!connection) return connection.failure();
  Deadline const deadline(connection.value().get(), server.timeout_seconds);
  return of_queue(connection.value().get(), queue);
}

bool PpdFile::copy_of_queue(Server const &server, std::string const &queue, int descriptor) {
  auto connection = connect(server);
  if (!connection) return false;
  Deadline const deadline(connection.value().get(), server.timeout_seconds);
  return fetch(connection.value().get(), queue, descriptor) == HTTP_STATUS_OK;
}

Result<std::unique_ptr<PpdFile>> PpdFile::of_queue(http_t *connection, std::string const &queue) {
  std::unique_ptr<std::FILE, CloseFile> const file(std::tmpfile());
  if (!file)
    return Failure{ExitCode::queue, tr("No temporary file can be made: {0}.", std::strerror(errno)),
                   tr("Make room in the folder for temporary files.")};
  http_status_t const status = fetch(connection, queue, fileno(file.get()));
  if (status == HTTP_STATUS_NOT_FOUND) {
    auto const exists = queue_exists(connection, queue);
    if (!exists) return no_answer(queue);
    if (!*exists) return no_such_queue(queue);
    return std::unique_ptr<PpdFile>();
  }
  if (status != HTTP_STATUS_OK) return no_answer(queue);
  lseek(fileno(file.get()), 0, SEEK_SET);
  ppd_file_t *const ppd = ppdOpenFd(dup(fileno(file.get())));
  if (ppd == nullptr) return broken(queue);
  return std::unique_ptr<PpdFile>(new PpdFile(ppd));
}

Result<std::unique_ptr<PpdFile>> PpdFile::open(std::string const &path, std::string const &name) {
  int const descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0)
    return Failure{ExitCode::queue,
                   tr("The PPD file \"{0}\" of \"{1}\" cannot be read: {2}.", path, name, std::strerror(errno)), ""};
  ppd_file_t *const ppd = ppdOpenFd(descriptor);  // closes it
  if (ppd == nullptr) return broken(name);
  return std::unique_ptr<PpdFile>(new PpdFile(ppd));
}

// In the language that speak() chose, where the file has it.
PpdFile::PpdFile(ppd_file_t *owned) : ppd_(owned) { ppdLocalize(ppd_); }

PpdFile::~PpdFile() { ppdClose(ppd_); }

std::optional<Failure> PpdFile::mark_initial(std::vector<Setting> const &queue_defaults,
                                             std::vector<Setting> const &chosen) {
  custom_values_.clear();
  ppdMarkDefaults(ppd_);
  CupsOptions general;
  std::vector<Setting> waiting;
  for (auto const &setting : queue_defaults) general.add(setting);
  for (auto const &setting : chosen) {
    if (has_option(setting.key))
      waiting.push_back(setting);
    else
      general.add(setting);  // also marks what IPP calls by another name: media, sides
  }
  cupsMarkOptions(ppd_, general.count, general.list);
  queue_defaults_ = queue_defaults;

  // A choice may be possible only after one that stands behind it, so each round marks what it can.
  for (;;) {
    std::vector<Setting> refused;
    std::string reason;
    for (auto const &setting : waiting) {
      if (MarkResult const result = mark(setting.key, setting.value); !result) {
        if (refused.empty()) reason = result.reason;
        refused.push_back(setting);
      }
    }
    if (refused.empty()) return std::nullopt;
    if (refused.size() == waiting.size())
      return Failure{ExitCode::usage, "--option " + refused[0].key + "=" + refused[0].value + ": " + reason, ""};
    waiting = std::move(refused);
  }
}

MarkResult PpdFile::mark(std::string const &keyword, std::string const &choice) {
  ppd_option_t *const option = ppdFindOption(ppd_, keyword.c_str());
  if (option == nullptr) return {false, tr("The printer has no option \"{0}\".", keyword)};
  ppd_choice_t *const wanted = ppdFindChoice(option, choice.c_str());
  if (wanted == nullptr)
    return {false, tr("\"{0}\" has no choice \"{1}\".", option->text, choice)};

  CupsOptions conflicts;
  conflicts.count = cupsGetConflicts(ppd_, option->keyword, wanted->choice, &conflicts.list);
  if (conflicts.count > 0) {
    std::string others;
    for (int at = 0; at < conflicts.count; ++at) {
      ppd_option_t *const other = ppdFindOption(ppd_, conflicts.list[at].name);
      ppd_choice_t *const its = other != nullptr ? ppdFindChoice(other, conflicts.list[at].value) : nullptr;
      //: An option of the printer and its setting, as part of the reason why another one is not possible.
      std::string const one = tr("\"{0}\" is \"{1}\"", other != nullptr ? other->text : conflicts.list[at].name,
                                 its != nullptr ? its->text : conflicts.list[at].value);
      //: Joins two or more reasons of that kind.
      others = others.empty() ? one : tr("{0} and {1}", others, one);
    }
    //: {2} is a list of such reasons.
    return {false, tr("\"{0}\" cannot be \"{1}\" while {2}.", option->text, wanted->text, others)};
  }

  ppdMarkOption(ppd_, option->keyword, is_custom(choice) ? choice.c_str() : wanted->choice);
  if (is_custom(choice))
    custom_values_[option->keyword] = choice;
  else
    custom_values_.erase(option->keyword);
  return {true, ""};
}

std::optional<std::string> PpdFile::marked_choice(std::string const &keyword) const {
  ppd_choice_t const *const marked = ppdFindMarkedChoice(ppd_, keyword.c_str());
  if (marked == nullptr) return std::nullopt;
  return marked->choice;
}

bool PpdFile::has_option(std::string const &keyword) const { return ppdFindOption(ppd_, keyword.c_str()) != nullptr; }

void PpdFile::for_each_option(std::function<void(ppd_group_t const &, ppd_option_t &)> const &visit) const {
  for (int at = 0; at < ppd_->num_groups; ++at) {
    ppd_group_t &group = ppd_->groups[at];
    for (int i = 0; i < group.num_options; ++i) visit(group, group.options[i]);
    for (int sub = 0; sub < group.num_subgroups; ++sub)
      for (int i = 0; i < group.subgroups[sub].num_options; ++i) visit(group, group.subgroups[sub].options[i]);
  }
}

std::vector<FeatureGroup> PpdFile::features(std::set<std::string> const &excluded) const {
  std::vector<FeatureGroup> groups;
  for_each_option([&](ppd_group_t const &group, ppd_option_t &option) {
    if (is_technical(group, option) || option.num_choices < 2 || option.ui == PPD_UI_PICKMANY) return;
    if (excluded.contains(option.keyword)) return;
    if (groups.empty() || groups.back().keyword != group.name) groups.push_back({group.name, group.text, {}});
    Feature feature{option.keyword, option.text, {}, option.defchoice,
                    marked_choice(option.keyword).value_or("")};
    for (int at = 0; at < option.num_choices; ++at)
      feature.choices.push_back({option.choices[at].choice, option.choices[at].text});
    groups.back().features.push_back(std::move(feature));
  });
  return groups;
}

std::vector<Setting> PpdFile::job_options() const {
  std::vector<Setting> options;
  for_each_option([&](ppd_group_t const &group, ppd_option_t &option) {
    ppd_choice_t const *const marked = ppdFindMarkedChoice(ppd_, option.keyword);
    if (marked == nullptr || is_technical(group, option)) return;
    bool const of_fax = same(group.name, kFaxGroup) ||
                        std::any_of(kFaxKeywords.begin(), kFaxKeywords.end(),
                                    [&](char const *keyword) { return same(keyword, option.keyword); });
    bool const queue_differs = std::any_of(queue_defaults_.begin(), queue_defaults_.end(), [&](Setting const &setting) {
      return same(setting.key.c_str(), option.keyword) && !same(setting.value.c_str(), marked->choice);
    });
    auto const custom = custom_values_.find(option.keyword);
    bool const is_own = custom != custom_values_.end() && same(marked->choice, "Custom");
    if (of_fax || queue_differs || is_own || !same(marked->choice, option.defchoice))
      options.push_back({option.keyword, is_own ? custom->second : marked->choice});
  });
  return options;
}

bool PpdFile::can_fax() const {
  if (attribute("cupsFax") == "True") return true;
  return std::any_of(ppd_->groups, ppd_->groups + ppd_->num_groups,
                     [](ppd_group_t const &group) { return same(group.name, kFaxGroup); });
}

std::vector<std::string> PpdFile::extension_paths() const {
  std::vector<std::string> paths;
  for (ppd_attr_t *found = ppdFindAttr(ppd_, "APDialogExtension", nullptr); found != nullptr;
       found = ppdFindNextAttr(ppd_, "APDialogExtension", nullptr))
    if (found->value != nullptr && *found->value != '\0') paths.emplace_back(found->value);
  return paths;
}

std::optional<std::string> PpdFile::attribute(std::string const &name) const {
  ppd_attr_t const *const found = ppdFindAttr(ppd_, name.c_str(), nullptr);
  if (found == nullptr || found->value == nullptr) return std::nullopt;
  return found->value;
}

}  // namespace fax::host
