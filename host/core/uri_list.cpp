#include "host/core/uri_list.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace fax::host {

namespace {

std::optional<std::string> without_escapes(std::string_view text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] != '%') {
      plain += text[at];
      continue;
    }
    unsigned value = 0;
    char const *const digits = text.data() + at + 1;
    if (at + 2 >= text.size() || std::from_chars(digits, digits + 2, value, 16).ptr != digits + 2 || value == 0)
      return std::nullopt;
    plain += static_cast<char>(value);
    at += 2;
  }
  return plain;
}

std::optional<std::string> path_of(std::string_view uri, std::string_view host_name) {
  constexpr std::string_view kScheme = "file:";
  if (!uri.starts_with(kScheme)) return std::nullopt;
  uri.remove_prefix(kScheme.size());
  if (uri.starts_with("//")) {
    uri.remove_prefix(2);
    std::string_view const host = uri.substr(0, std::min(uri.find('/'), uri.size()));
    if (!host.empty() && host != "localhost" && host != host_name) return std::nullopt;
    uri.remove_prefix(host.size());
  }
  if (!uri.starts_with('/')) return std::nullopt;
  return without_escapes(uri.substr(0, uri.find_first_of("?#")));
}

}  // namespace

DroppedFiles read_uri_list(std::string_view text, std::string_view host_name) {
  DroppedFiles files;
  while (!text.empty()) {
    std::size_t const end = std::min(text.find_first_of(std::string_view("\r\n\0", 3)), text.size());
    std::string_view const line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.empty() || line.starts_with('#')) continue;
    if (auto path = path_of(line, host_name))
      files.paths.push_back(std::move(*path));
    else
      files.others.emplace_back(line);
  }
  return files;
}

}  // namespace fax::host
