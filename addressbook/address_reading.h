// Reads the address data that the library holds, record by record.
//
// Texts and members are borrowed from the record at hand: they live for one call of the visitor.
#pragma once

#include "addressbook/library.h"

#include <functional>
#include <span>
#include <string_view>

namespace fax {

struct Individual {
  std::uint16_t id;
  std::u16string_view name;
  std::u16string_view phone_number;
  std::u16string_view company;  // empty for a contact of the printer's
  std::u16string_view note;     // likewise
};

struct Group {
  std::u16string_view name;
  std::span<std::uint16_t const> members;  // in the record's order
};

struct AddressVisitor {
  std::function<void(Individual const &)> individual;
  std::function<void(Group const &)> group;
};

// How reading ended: after the last record, at a record that ends it at once, or at one that the visitor threw a standard
// exception for.
enum class ReadEnd { complete, individual_without_name, individual_without_number, group_without_name, refused };

// Individuals in the order of their records, then groups. The number of records is asked for again before each.
ReadEnd read_file_entries(Library &library, AddressData data, AddressVisitor const &visitor);
// The same of the printer's records; a contact without a number is passed over.
ReadEnd read_device_entries(Library &library, AddressData data, AddressVisitor const &visitor);

}  // namespace fax
