// A job's options on their way from the print service to a filter.
#pragma once

#include "driver/ticket.h"

#include <cups/cups.h>
#include <string>
#include <string_view>

namespace fax::test {

// Names and values as one argument, joined and quoted as the print service does it.
template <typename Options>
std::string option_argument(Options const &options) {
  std::string text;
  for (auto const &[name, value] : options) {
    if (!text.empty()) text += ' ';
    text += name + "=";
    for (char const c : value) {
      if (std::string_view{" \t\n\\\"'"}.find(c) != std::string_view::npos) text += '\\';
      text += c;
    }
  }
  return text;
}

// The argument as a filter takes it apart again.
inline JobOptions parsed_options(std::string const &argument) {
  cups_option_t *parsed = nullptr;
  int const count = cupsParseOptions(argument.c_str(), 0, &parsed);
  JobOptions options;
  for (int i = 0; i < count; ++i) options[parsed[i].name] = parsed[i].value;
  cupsFreeOptions(count, parsed);
  return options;
}

}  // namespace fax::test
