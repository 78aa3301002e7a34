// Address lists as vCards: 2.1, 3.0 and 4.0 read, 3.0 and 4.0 written.
#pragma once

#include "gad/contacts.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace fax::tool {

// Whether a text looks like vCards at all.
bool is_vcard(std::string_view text);

// Of several numbers a card's preferred fax number is taken, else its work fax, else another fax number, else a
// telephone number; a pager's never. A card without FN is called by its N, else by its ORG. Groups are cards of their
// own (KIND or X-ADDRESSBOOKSERVER-KIND) that name members by UID, and the CATEGORIES of a card. A group within a group
// is left out, with a remark. progress gets the share that is read, 0 to 1.
//
// Failure: there is no card, or the text ends within one.
Contacts read_vcard_contacts(std::string_view text, bool fax_only, std::function<void(double)> const &progress);

enum class VcardVersion { v3, v4 };

// The identity of an entry or a group, which other programs know it by: made of what it says, so the same in every
// export.
std::string vcard_uid(Contact const &contact);

std::string vcard_contact(Contact const &contact, VcardVersion version);
// members are results of vcard_uid.
std::string vcard_group(std::string_view name, std::vector<std::string> const &members, VcardVersion version);

}  // namespace fax::tool
