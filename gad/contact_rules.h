// What an address book takes.
#pragma once

#include "gad/contacts.h"

#include <optional>
#include <string>
#include <string_view>

namespace fax::tool {

// A contact in a message: its name in quotes.
std::string called(Contact const &contact);

// Why the book cannot hold a contact or a group of this name: "The name is empty."; none when it can.
std::optional<std::string> fault_of(Contact const &contact);
std::optional<std::string> fault_of_group(std::string_view name);

// The characters of a number that the fax dialog's own field for numbers refuses, each once, quoted; empty for none.
std::string refused_characters(std::string_view number);

}  // namespace fax::tool
