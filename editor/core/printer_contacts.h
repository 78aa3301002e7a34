// The printer's own address book, in the terms of an import.
#pragma once

#include "gad/contacts.h"
#include "quoltanis/address_data.h"

#include <string>

namespace fax::editor {

tool::Contacts contacts_of(AddressData const &data);

// Reads the book of the printer at a numeric address. Waits for the network, no longer than the configuration allows;
// contacts is unchanged by a failure.
Status read_printer(std::string const &address, std::string const &password, tool::Contacts &contacts);

}  // namespace fax::editor
