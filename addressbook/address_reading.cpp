#include "addressbook/address_reading.h"

#include "support/string_encoding.h"

#include <exception>
#include <memory>

namespace fax {

namespace {

// Empty too for a field that no 0 unit ends.
template <std::size_t Units>
std::u16string_view text_of(char16_t const (&field)[Units]) {
  SInt32 const length = unicharLength(reinterpret_cast<UniChar const *>(field), sizeof(field));
  return {field, length > 0 ? static_cast<std::size_t>(length) : 0};
}

// Gives each record to take until it answers anything but complete.
template <typename Take>
ReadEnd each_record(Library &library, AddressData data, std::int32_t (Library::*count)(AddressData),
                    void (Library::*get)(AddressData, std::uint32_t, RecordRoom &), RecordRoom &room, Take take) {
  for (std::int32_t index = 0; index < (library.*count)(data); ++index) {
    (library.*get)(data, static_cast<std::uint32_t>(index), room);
    ReadEnd end = ReadEnd::refused;
    try {
      end = take();
    } catch (std::exception const &) {
      // No room for it.
    }
    if (end != ReadEnd::complete) return end;
  }
  return ReadEnd::complete;
}

template <typename Record>
ReadEnd visit_group(Record const &record, AddressVisitor const &visitor) {
  Group const group{text_of(record.name), {record.members, record.member_count}};
  if (group.name.empty()) return ReadEnd::group_without_name;
  visitor.group(group);
  return ReadEnd::complete;
}

}  // namespace

ReadEnd read_file_entries(Library &library, AddressData data, AddressVisitor const &visitor) {
  auto const room = std::make_unique<RecordRoom>();
  ReadEnd const end =
      each_record(library, data, &Library::count_my_fax, &Library::get_my_fax, *room, [&] {
        MyFax const &record = room->my_fax;
        Individual const individual{record.id, text_of(record.name), text_of(record.phone_number),
                                    text_of(record.company), text_of(record.note)};
        if (individual.name.empty()) return ReadEnd::individual_without_name;
        if (individual.phone_number.empty()) return ReadEnd::individual_without_number;
        visitor.individual(individual);
        return ReadEnd::complete;
      });
  if (end != ReadEnd::complete) return end;
  return each_record(library, data, &Library::count_my_fax_group, &Library::get_my_fax_group, *room,
                     [&] { return visit_group(room->my_fax_group, visitor); });
}

ReadEnd read_device_entries(Library &library, AddressData data, AddressVisitor const &visitor) {
  auto const room = std::make_unique<RecordRoom>();
  ReadEnd const end = each_record(library, data, &Library::count_contact, &Library::get_contact, *room, [&] {
    Contact const &record = room->contact;
    Individual const individual{record.id, text_of(record.name), text_of(record.phone_number), {}, {}};
    if (individual.name.empty()) return ReadEnd::individual_without_name;
    if (!individual.phone_number.empty()) visitor.individual(individual);
    return ReadEnd::complete;
  });
  if (end != ReadEnd::complete) return end;
  return each_record(library, data, &Library::count_fax_group, &Library::get_fax_group, *room,
                     [&] { return visit_group(room->fax_group, visitor); });
}

}  // namespace fax
