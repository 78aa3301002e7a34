// A queue's PPD file: its options as the dialog's features, the choices marked in it, and its rules about which choices
// go together.
#pragma once

#include <cups/ppd.h>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/failure.h"
#include "host/core/server.h"
#include "host/core/setting.h"

namespace fax::host {

// Texts are UTF-8, as the PPD translates them.
struct FeatureChoice {
  std::string keyword;
  std::string text;
};

struct Feature {
  std::string keyword;  // such as "Duplex"
  std::string text;     // such as "Two-Sided"
  std::vector<FeatureChoice> choices;
  std::string default_choice;  // choice keywords; default_choice is the PPD's own default
  std::string marked_choice;   // "" when none is marked
};

struct FeatureGroup {
  std::string keyword;
  std::string text;
  std::vector<Feature> features;  // never empty
};

// The answer to a request to mark a choice.
struct MarkResult {
  bool accepted = false;
  std::string reason;  // when refused: one sentence for people; with a conflict it names both options and choices

  explicit operator bool() const { return accepted; }
};

// One thread at a time.
class PpdFile {
public:
  // The PPD of a queue, asked of the print service each time. A null pointer means that the queue has no PPD file (a
  // raw queue, or a class of queues): no failure, the dialog then has no features. Failure (ExitCode::queue): no print
  // service, no such queue, or a broken PPD, as open().
  static Result<std::unique_ptr<PpdFile>> of_queue(Server const &server, std::string const &queue);

  // The same over an open connection, borrowed for the call.
  static Result<std::unique_ptr<PpdFile>> of_queue(http_t *connection, std::string const &queue);

  // Writes the PPD of a queue, as the print service has it, to an open file. False when there is none, or no answer.
  static bool copy_of_queue(Server const &server, std::string const &queue, int descriptor);

  // Never null. Failure (ExitCode::queue): cannot be read, or broken; the sentence holds the line number and CUPS's
  // reason. name stands for the file in the sentence.
  static Result<std::unique_ptr<PpdFile>> open(std::string const &path, std::string const &name);

  ~PpdFile();
  PpdFile(PpdFile const &) = delete;
  PpdFile &operator=(PpdFile const &) = delete;

  // Borrowed, never null, lives as long as this object: what the dialog's callback answers to ppdFile. Whoever marks
  // choices through it behind our back is seen by every function below.
  ppd_file_t *handle() const { return ppd_; }

  // Marks the PPD's defaults, then the queue's (Queue::defaults), then those of the command line. A queue default that
  // the PPD does not know is passed over. Of the chosen ones, keys that are no PPD option are passed over (they go into
  // the job as they are); a choice that the option lacks, or that conflicts, is a Failure (ExitCode::usage).
  std::optional<Failure> mark_initial(std::vector<Setting> const &queue_defaults, std::vector<Setting> const &chosen);

  // Marks one choice; "Custom." and a value chooses a custom value where the option allows one. Refused, with
  // everything marked as before: no such option or choice, or a conflict with what is marked now by the PPD's
  // UIConstraints or cupsUIConstraints. Keywords are compared without regard to case, as CUPS does.
  MarkResult mark(std::string const &keyword, std::string const &choice);

  // Keyword of the marked choice; nullopt when the option is unknown or has none.
  std::optional<std::string> marked_choice(std::string const &keyword) const;

  bool has_option(std::string const &keyword) const;

  // What "Printer Features" shows: groups and options in the PPD's order, subgroups folded into their group. Left out:
  // excluded (an extension's own options), options that have fewer than two choices or let several be picked at once,
  // and technical ones: PageRegion, which follows PageSize, and installed hardware (group InstallableOptions).
  std::vector<FeatureGroup> features(std::set<std::string> const &excluded = {}) const;

  // The choices that go into the job: every option whose marked choice is not the PPD's default, or not the queue's
  // (server-side defaults would otherwise come back), and always those of the group QXFaxSettings and the four keywords
  // of the fax panel, which the driver must find whatever the defaults are. In the PPD's order; without PageRegion and
  // the group InstallableOptions.
  std::vector<Setting> job_options() const;

  // True for a PPD that can fax: *cupsFax: True, or a group QXFaxSettings.
  bool can_fax() const;

  // Values of *APDialogExtension, in order: absolute paths of print dialog extensions.
  std::vector<std::string> extension_paths() const;

  // Value of the first attribute of that name; nullopt where there is none.
  std::optional<std::string> attribute(std::string const &name) const;

private:
  explicit PpdFile(ppd_file_t *owned);
  void for_each_option(std::function<void(ppd_group_t const &, ppd_option_t &)> const &visit) const;

  ppd_file_t *ppd_;
  std::vector<Setting> queue_defaults_;
  std::map<std::string, std::string> custom_values_;  // option keyword -> "Custom.value" last marked
};

}  // namespace fax::host
