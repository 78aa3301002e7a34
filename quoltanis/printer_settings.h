// How to reach the printer's address book: the configuration file. docs/address-books.md shows its keys.
#pragma once

#include "quoltanis/status.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fax {

struct PrinterSettings {
  enum class Tls { start, whole, none };  // StartTLS, ldaps, no encryption

  Tls tls = Tls::start;
  std::optional<std::uint16_t> port{};  // none: 389, with ldaps 636
  std::string ca_file{};                // none: the system's certificates
  std::string server_name{};            // whose name the certificate must bear; none: the address
  std::string base_dn{};                // none: what the server names
  std::string bind_dn{};                // none: cn=addressbook below the base
  std::vector<std::string> name_attributes{"displayName", "cn"};
  std::string number_attribute = "facsimileTelephoneNumber";
  std::vector<std::string> id_attributes{"employeeNumber", "uidNumber"};
  std::string group_class = "groupOfNames";
  std::string member_attribute = "member";
  std::chrono::seconds time_out{10};
};

// settings takes what text says. Answers what is wrong with it ("line 3: ..."), and an empty text when nothing is.
std::string parse_settings(std::string_view text, PrinterSettings &settings);

// Where the configuration file may be, the first that is there counts: $DIRECTFAX_PRINTER_BOOK alone when that is set;
// else directfax/printer-book.conf in the user's and then in the system's configuration folders.
std::vector<std::string> settings_places();

// The settings of that file, or as they are without one. configuration when it cannot be read or has a fault, which is
// then told on the standard error.
Status load_settings(PrinterSettings &settings);

}  // namespace fax
