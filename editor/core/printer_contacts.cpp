#include "editor/core/printer_contacts.h"

#include "quoltanis/printer_book.h"
#include "quoltanis/unicode.h"

#include <unordered_map>
#include <vector>

namespace fax::editor {
namespace {

// A field of a record up to its zero unit. What the library wrote is valid.
template <std::size_t Size>
std::string text_in(char16_t const (&field)[Size]) {
  return utf8_of(std::u16string_view(field)).value_or("");
}

}  // namespace

tool::Contacts contacts_of(AddressData const &data) {
  tool::Contacts contacts;
  std::unordered_map<std::uint16_t, std::size_t> places;
  ContactRecord contact{};
  for (std::size_t index = 0; index < data.individuals(Source::printer); ++index) {
    data.write(index, contact);
    if (contact.id != 0) places.emplace(contact.id, contacts.people.size());
    contacts.people.push_back({.name = text_in(contact.name), .number = text_in(contact.number), .company = "",
                               .note = "", .groups = {}, .line = 0});
  }
  // A group's head, and room for the most members behind it.
  std::vector<std::uint16_t> record((sizeof(FaxGroupHead) / sizeof(std::uint16_t)) + greatest_member_count);
  auto *head = reinterpret_cast<FaxGroupHead *>(record.data());
  std::uint16_t const *members = record.data() + sizeof(FaxGroupHead) / sizeof(std::uint16_t);
  for (std::size_t index = 0; index < data.groups(Source::printer); ++index) {
    data.write_group(index, head);
    std::string const name = text_in(head->name);
    contacts.groups.push_back(name);
    for (std::size_t at = 0; at < head->members; ++at)
      if (auto const place = places.find(members[at]); place != places.end())
        contacts.people[place->second].groups.push_back(name);
  }
  return contacts;
}

Status read_printer(std::string const &address, std::string const &password, tool::Contacts &contacts) {
  PrinterBook printer;
  if (Status const status = printer.initialize(); status != Status::success) return status;
  printer.set_address(address);
  AddressData data;
  Status const status = printer.read(password, data);
  if (status == Status::success) contacts = contacts_of(data);
  return status;
}

}  // namespace fax::editor
