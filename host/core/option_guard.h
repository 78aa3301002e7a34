// What a job's options must look like to reach the driver's filter unchanged.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/setting.h"

namespace fax::host {

// CUPS hands all options of a job to the filter as one command-line argument, which the filter parses again
// (cupsParseOptions). That loses two kinds of value, whatever quoting the client uses:
// - a carriage return, vertical tab or form feed ends the value, and what follows is read as further options: a name in
//   an address book could so overwrite a fax number. Each becomes one space.
// - a value that begins with "{", or with commas and "{", is read as a group of options; it is dropped or swallows the
//   options after it. One space is put in front.
// Everything else arrives as it is and is left alone. Guarding twice changes nothing more. The print settings keep the
// exact value: only the hand-over to CUPS is guarded.
std::string guarded_value(std::string_view value);

// A key that is safe in a job: 1..255 ASCII letters, digits, "-", "_", ".", ":"; the first is a letter or "_"; not one
// of CUPS's own that name the job or what it acts on ("printer-uri", "job-id", "document-uri" and the like).
bool is_safe_key(std::string_view key);

// Largest value in bytes; CUPS refuses a longer one.
inline constexpr std::size_t kLargestValue = 32767;

// Largest total_option_bytes(): the kernel takes 131,072 bytes (32 pages) with the final NUL as one argument of a
// program. Beyond it the print service takes the job, fails to start the filter and leaves the job in the queue.
inline constexpr std::size_t kLargestOptions = 131072;

// Bytes of the filter's option argument for these (already guarded) settings, the final NUL and an allowance for what
// CUPS adds of its own included. Never less than the true size.
std::size_t total_option_bytes(std::vector<Setting> const &settings);

}  // namespace fax::host
