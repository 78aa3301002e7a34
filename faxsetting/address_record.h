// A destination as a record for an address-book file.
#pragma once

#include "addressbook/library.h"

#include <optional>
#include <string_view>

namespace fax {

// The longest start of name that is valid Unicode and takes at most 20 bytes of UTF-8; empty when there is none.
std::u16string_view index_key(std::u16string_view name);

// Fills a record. registered: seconds since 1970-01-01 UTC. phone_number none: there is no such text. kNoName for an
// empty name; kTextUnfit, with the record half filled, when a text does not fit its field, is no valid Unicode or holds
// U+0000, or when the name has no index key.
Status fill_record(MyFax &record, std::u16string_view name, std::optional<std::u16string_view> phone_number,
                   std::int64_t registered);

}  // namespace fax
