// What the address-book library's statuses mean, in sentences for a person.
#pragma once

#include "quoltanis/status.h"

#include <string>

namespace fax::tool {

// One sentence in the user's language: "The address book is damaged."
std::string sentence_about(Status status);

}  // namespace fax::tool
