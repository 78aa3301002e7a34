#include "plugin/device_uri.h"

#include "platform/text_encoding.h"

#include <algorithm>
#include <array>
#include <utility>

namespace fax {

namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

bool same_without_case(std::string_view one, std::string_view other) {
  return std::ranges::equal(one, other, [](char a, char b) { return lower(a) == lower(b); });
}

int hex_value(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  c = lower(c);
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return -1;
}

constexpr std::uint32_t kUtf8 = 0x08000100;

}  // namespace

std::optional<DeviceUri> split_device_uri(std::string_view uri) {
  auto const colon = uri.find(':');
  if (colon == std::string_view::npos || colon == 0) return std::nullopt;
  DeviceUri parts{std::string(uri.substr(0, colon)), {}};
  std::string_view rest = uri.substr(colon + 1);
  if (!rest.starts_with("//")) return parts;
  std::string_view host = rest.substr(2);
  host = host.substr(0, host.find_first_of("/?#"));
  if (auto const at = host.rfind('@'); at != std::string_view::npos) host.remove_prefix(at + 1);
  if (host.starts_with('[')) {
    host.remove_prefix(1);
    host = host.substr(0, host.find(']'));
  } else {
    host = host.substr(0, host.find(':'));
  }
  parts.host = host;
  return parts;
}

Connection connection_of(std::string_view scheme) {
  static constexpr std::array<std::pair<std::string_view, Connection>, 6> kSchemes{{
      {"mdns", Connection::bonjour},
      {"dnssd", Connection::bonjour},
      {"lpd", Connection::host_name},
      {"ipp", Connection::host_name},
      {"socket", Connection::host_name},
      {"usb", Connection::usb},
  }};
  for (auto const &[name, connection] : kSchemes)
    if (same_without_case(scheme, name)) return connection;
  return Connection::unknown;
}

std::optional<std::string> without_percent_escapes(std::string_view text) {
  std::string plain;
  for (std::size_t i = 0; i < text.size(); i++) {
    if (text[i] != '%') {
      plain += text[i];
      continue;
    }
    if (i + 2 >= text.size()) return std::nullopt;
    int const high = hex_value(text[i + 1]);
    int const low = hex_value(text[i + 2]);
    if (high < 0 || low < 0) return std::nullopt;
    plain += char(high * 16 + low);
    i += 2;
  }
  if (plain.find('\0') != std::string::npos) return std::nullopt;
  return decode_text(plain, kUtf8);
}

std::optional<ServiceName> split_service_name(std::string_view host) {
  std::string_view const front = host.substr(0, host.find("._tcp"));
  auto const dot = front.rfind('.');
  if (dot == std::string_view::npos) return std::nullopt;
  return ServiceName{std::string(front.substr(0, dot)), std::string(front.substr(dot + 1)) + "._tcp."};
}

}  // namespace fax
