// The fax job as the driver's filter reads it: fixed keys in the print settings.
#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <string>
#include <vector>

namespace fax {

// Every key of the product begins with this.
inline constexpr char kSettingsPrefix[] = "com.norvalt.tk.o.print.printsettings.";

// Borrowed texts, kept alive by the caller for the call; NULL stands for an empty text.
struct DestinationTexts {
  CFStringRef name;
  CFStringRef phone_number;
};

struct FaxJob {
  CFStringRef password;      // plain text; NULL or empty for none
  CFStringEncoding encoding;  // the printer's, for the password
  CFStringRef delayed_print;  // "0" or "1"
  CFStringRef delayed_time;   // "HH:mm", local time
  std::vector<DestinationTexts> destinations;  // in the order of their numbers, from 1
};

// "DFaxPassword" -> prefix + "DFaxPassword"; with a number above 0, the number behind it in decimal.
std::string settings_key(char const *base, std::size_t number = 0);

// Writes the job's keys, unlocked. A failed store of password, delay flag or delay time ends the transfer; the results
// of the destination keys are not looked at. With no destination their keys are left as they are. Keys of an earlier job
// with more destinations stay: the count says how many are valid.
void write_job_settings(PMPrintSettings settings, FaxJob const &job);

}  // namespace fax
