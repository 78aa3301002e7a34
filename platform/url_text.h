// URLs as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace fax {

// The host of an absolute URL as it is written, percent escapes and all; without user, port and the brackets of an IPv6
// address. nullopt when the URL has no host.
//   dnssd://Office%20MFP._ipp._tcp.local./ -> Office%20MFP._ipp._tcp.local.
//   ipp://me@[fe80::1]:631/ipp             -> fe80::1
//   usb:/dev/usb/lp0                       -> none
std::optional<std::string> url_host(std::string_view url);

// The file URL of an absolute path (any bytes), with "#anchor" when anchor is not empty.
std::string file_url(std::string_view path, std::string_view anchor);

}  // namespace fax
