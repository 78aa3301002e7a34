// What the print dialog says about the printer's address.
#pragma once

#include <chrono>
#include <optional>
#include <string>

#include "host/core/address_lookup.h"
#include "host/core/device_place.h"

namespace fax::host {

// How long the dialog waits for an address.
inline constexpr std::chrono::seconds kAddressLimit{5};

// UTF-8, in whole sentences with a full stop.
struct AddressStatus {
  std::string line;    // short enough for one line of the dialog
  std::string advice;  // the long text: why, and what to do; may be empty

  bool operator==(AddressStatus const &) const = default;
};

// answer: of the look-up of a name or a service, nullopt while it is under way; it does not count for other routes.
AddressStatus address_status(DevicePlace const &place, std::optional<LookupAnswer> const &answer);

}  // namespace fax::host
