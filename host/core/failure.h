// What went wrong, for a person: a sentence about what failed, what to do about it, and the exit code of faxprint.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace fax::host {

// Exit codes of faxprint. help_text() lists them; a number never changes its meaning.
enum class ExitCode : int {
  ok = 0,          // the job was submitted, or the asked-for text was printed
  cancelled = 1,   // the user cancelled; nothing was submitted
  usage = 2,       // wrong command line
  file = 3,        // the document cannot be read, or the output file cannot be written
  queue = 4,       // no print service, no such queue, or a queue whose PPD file is broken
  submission = 5,  // the queue did not take the job; nothing is left in the queue
  extension = 6,   // the print dialog extension cannot be loaded
};

// All text is UTF-8, in whole sentences with a full stop, without a line break at the end.
struct Failure {
  ExitCode code = ExitCode::submission;
  std::string what;    // what failed and why
  std::string advice;  // what to do; may be empty

  // "what advice", one space between them.
  std::string text() const { return advice.empty() ? what : what + " " + advice; }
};

// A value or the failure that stands in its way.
template <typename Value>
class [[nodiscard]] Result {
public:
  Result(Value value) : held_(std::in_place_index<0>, std::move(value)) {}
  Result(Failure failure) : held_(std::in_place_index<1>, std::move(failure)) {}

  bool ok() const { return held_.index() == 0; }
  explicit operator bool() const { return ok(); }

  // Only when ok(); std::bad_variant_access otherwise.
  Value &value() { return std::get<0>(held_); }
  Value const &value() const { return std::get<0>(held_); }

  // Only when not ok(); std::bad_variant_access otherwise.
  Failure const &failure() const { return std::get<1>(held_); }

private:
  std::variant<Value, Failure> held_;
};

}  // namespace fax::host
