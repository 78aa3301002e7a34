#include "platform/url_text.h"

namespace fax {

namespace {

bool is_plain(unsigned char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == '-' ||
         byte == '.' || byte == '_' || byte == '~' || byte == '/';
}

std::string escaped(std::string_view text) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (unsigned char byte : text) {
    if (is_plain(byte)) {
      out.push_back(char(byte));
    } else {
      out.push_back('%');
      out.push_back(kDigits[byte >> 4]);
      out.push_back(kDigits[byte & 15]);
    }
  }
  return out;
}

}  // namespace

std::optional<std::string> url_host(std::string_view url) {
  std::size_t const colon = url.find(':');
  if (colon == std::string_view::npos || url.substr(colon, 3) != "://") return std::nullopt;
  std::string_view authority = url.substr(colon + 3);
  authority = authority.substr(0, authority.find_first_of("/?#"));
  if (std::size_t const at = authority.rfind('@'); at != std::string_view::npos) authority.remove_prefix(at + 1);
  if (authority.starts_with('[')) {
    std::size_t const end = authority.find(']');
    if (end == std::string_view::npos) return std::nullopt;
    authority = authority.substr(1, end - 1);
  } else {
    authority = authority.substr(0, authority.find(':'));
  }
  if (authority.empty()) return std::nullopt;
  return std::string(authority);
}

std::string file_url(std::string_view path, std::string_view anchor) {
  std::string url = "file://" + escaped(path);
  if (!anchor.empty()) url += "#" + escaped(anchor);
  return url;
}

}  // namespace fax
