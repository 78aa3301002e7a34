// A print service (cupsd) of the tests' own: on a Unix socket in a folder of its own, with a filter that records what
// it was given. Ended, with its folder, when the object goes.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "host/core/server.h"

namespace fax::host {

class PrivateCups {
public:
  // True where cupsd and its helper are installed.
  static bool is_installed();

  // extra: further lines of cupsd.conf. Throws std::runtime_error, with the service's error log, when it does not
  // start.
  explicit PrivateCups(std::string const &extra = "");
  ~PrivateCups();
  PrivateCups(PrivateCups const &) = delete;
  PrivateCups &operator=(PrivateCups const &) = delete;

  Server server() const;

  // A queue whose documents go to the recording filter. ppd: path of a PPD file, "" for a raw queue. Throws.
  void add_queue(std::string const &name, std::string const &ppd, bool accepting = true);

  // SIGSTOP, SIGCONT, or SIGKILL, after which it is gone until it is started again.
  void pause();
  void resume();
  void kill_now();
  void start();

  // The filter fails with the message of a job called "fail:MESSAGE". It hangs on the second page of one whose title
  // begins with "hang", until this is called.
  void let_go();

  // Jobs of every state that the service has, by number.
  std::vector<int> jobs() const;

  // The filter's option argument and its document, waited for up to 20 s; nullopt when the filter did not run.
  std::optional<std::string> options_of(int job) const;
  std::string document_of(int job) const;

  std::string error_log() const;

private:
  void signal(int number);

  std::filesystem::path folder_;
  pid_t pid_ = -1;
};

// What a filter reads out of its option argument (cupsParseOptions).
std::map<std::string, std::string> parsed_options(std::string const &argument);

}  // namespace fax::host
