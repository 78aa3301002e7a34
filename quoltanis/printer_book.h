// The address book that a printer keeps, read from a directory server at the printer's address.
#pragma once

#include "quoltanis/address_data.h"
#include "quoltanis/printer_settings.h"

#include <string>
#include <string_view>

namespace fax {

class PrinterBook {
public:
  // Forgets the printer and reads the configuration file again.
  Status initialize();

  // An empty address: none.
  void set_address(std::string address) { address_ = std::move(address); }

  // ready when the printer answers, encrypted if that is demanded; else why not. Waits no longer than the time-out.
  Status status() const;

  // Replaces what data holds of a printer. Waits no longer than six time-outs; data is unchanged by a failure.
  Status read(std::string_view password, AddressData &data) const;

private:
  PrinterSettings settings_;
  std::string address_;
};

}  // namespace fax
