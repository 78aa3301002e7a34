// How a printer's device URI says where the printer is. Plain text work; any bytes are allowed in.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fax {

enum class Connection { unknown, bonjour, host_name, usb };

struct DeviceUri {
  std::string scheme;
  std::string host;  // as written: percent escapes stand; the brackets of an IPv6 literal are taken off
};

// "ipp://user@[fe80::1]:631/x" -> {"ipp", "fe80::1"}; without "://" the host is empty. nullopt without a scheme.
std::optional<DeviceUri> split_device_uri(std::string_view uri);

// By the scheme alone, letter case ignored.
Connection connection_of(std::string_view scheme);

// "Office%20MFP" -> "Office MFP"; nullopt when an escape is cut short or has no hex digits, or when the result is not
// valid UTF-8 or holds a NUL.
std::optional<std::string> without_percent_escapes(std::string_view text);

struct ServiceName {
  std::string name;
  std::string type;
};

// A Bonjour name, without escapes -> service name and type:
// "Office MFP._pdl-datastream._tcp.local." -> {"Office MFP", "_pdl-datastream._tcp."}
// nullopt when there is no dot before the first "._tcp".
std::optional<ServiceName> split_service_name(std::string_view host);

}  // namespace fax
