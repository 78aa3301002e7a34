#include "host/core/option_guard.h"

#include <algorithm>
#include <array>

namespace fax::host {

namespace {

// What the print service adds to the filter's argument of its own: job-uuid (56 bytes), job-originating-host-name (up
// to 282), document-name-supplied (up to 534: the title, each byte escaped), times (about 110), page size, tray, media
// type, output bin, sides and finishings that it derives from IPP attributes, and the few values whose notation it
// lengthens ("600dpi" -> "600x600dpi").
constexpr std::size_t kServiceAllowance = 4096;

constexpr std::array<std::string_view, 13> kServiceKeys{
    "attributes-charset", "attributes-natural-language", "copies",  "document-format", "document-name",
    "document-uri",       "ipp-attribute-fidelity",      "job-id",  "job-name",        "job-uri",
    "last-document",      "printer-uri",                 "requesting-user-name",
};

bool is_letter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

}  // namespace

std::string guarded_value(std::string_view value) {
  std::string guarded(value);
  for (char &c : guarded)
    if (c == '\r' || c == '\v' || c == '\f') c = ' ';
  std::size_t const first = guarded.find_first_not_of(',');
  if (first != std::string::npos && guarded[first] == '{') guarded.insert(0, 1, ' ');
  return guarded;
}

bool is_safe_key(std::string_view key) {
  if (key.empty() || key.size() > 255) return false;
  if (!is_letter(key[0]) && key[0] != '_') return false;
  bool const plain = std::all_of(key.begin(), key.end(), [](char c) {
    return is_letter(c) || (c >= '0' && c <= '9') || c == '-' || c == '_' || c == '.' || c == ':';
  });
  return plain && std::find(kServiceKeys.begin(), kServiceKeys.end(), key) == kServiceKeys.end();
}

std::size_t total_option_bytes(std::vector<Setting> const &settings) {
  // The print service joins them as "key=value key=value", with a backslash before each of these characters.
  constexpr std::string_view kEscaped = " \t\n\\'\"";
  std::size_t total = 1 + kServiceAllowance;
  for (auto const &[key, value] : settings) {
    total += 1 + key.size() + 1 + value.size();
    total += static_cast<std::size_t>(
        std::count_if(value.begin(), value.end(), [&](char c) { return kEscaped.find(c) != std::string_view::npos; }));
  }
  return total;
}

}  // namespace fax::host
