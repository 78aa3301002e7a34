#include "addressbook/device_version.h"

#include "support/ppd_attributes.h"

#include <algorithm>
#include <cstdlib>

namespace fax {

std::uint32_t device_interface_version(ppd_file_t *ppd) {
  constexpr std::uint32_t least = 2;
  ppd_attr_t const *attribute = ppdFindAttr_ALT(ppd, "QXDeviceAddressBookIntfVersion", nullptr);
  if (attribute == nullptr || attribute->value == nullptr) return least;
  return std::max(least, static_cast<std::uint32_t>(std::strtol(attribute->value, nullptr, 10)));
}

}  // namespace fax
