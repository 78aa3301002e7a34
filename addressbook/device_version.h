// The version of the printer's address-book protocol.
#pragma once

#include <cups/ppd.h>

#include <cstdint>

namespace fax {

// 2, or the PPD attribute "QXDeviceAddressBookIntfVersion" when it is greater. The attribute is a decimal number, 0 when
// it begins with none; a negative one counts as its unsigned 32-bit form. ppd may be NULL.
std::uint32_t device_interface_version(ppd_file_t *ppd);

}  // namespace fax
