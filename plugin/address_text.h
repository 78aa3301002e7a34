// Socket addresses as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <sys/socket.h>

namespace fax {

// The text of one address of a resolved network service: "192.0.2.1", "2001:db8::1", "fe80::1%en0".
struct AddressText {
  bool is_internet;  // false: of another family, or too short to be one; text is then nullopt
  std::optional<std::string> text;  // nullopt when the conversion failed
};

// address: the bytes of a socket address, any length. A link-local IPv6 address (fe80::/10) whose scope has an interface
// name gets "%" and that name while both lengths add up to less than 47, cut to 45 characters in all.
AddressText text_of_address(std::string_view address);

// fe80::/10. bytes: the 16 bytes of an IPv6 address.
bool is_link_local(unsigned char const *bytes);

}  // namespace fax
