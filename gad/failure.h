// Why a command could not do its work.
#pragma once

#include <stdexcept>
#include <string>

namespace fax::tool {

// What gad ends with; gad.1 explains them.
enum ExitCode { exit_success = 0, exit_failure = 1, exit_usage = 2, exit_skipped = 3 };

// what() is for a person, in the user's language and in whole sentences: what failed and what to do.
struct Failure : std::runtime_error {
  explicit Failure(std::string const &message, ExitCode code = exit_failure)
      : std::runtime_error(message), code(code) {}
  ExitCode code;
};

}  // namespace fax::tool
