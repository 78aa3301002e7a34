// The records that the address-book library hands over and takes: fixed layouts, texts in UTF-16 little-endian ended by a
// 0 unit. They are those of the machines that the library is made for, all of them little-endian.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fax {

// The sizes below are those of fields, the 0 unit included.
inline constexpr std::size_t kNameUnits = 65;
inline constexpr std::size_t kIndexKeyUnits = 21;
inline constexpr std::size_t kNumberUnits = 51;
inline constexpr std::size_t kCompanyUnits = 65;
inline constexpr std::size_t kNoteUnits = 255;
inline constexpr std::size_t kMaximumMembers = 65535;

// An individual of an address-book file; read and written.
struct MyFax {
  std::uint16_t id;  // 0 when written
  char16_t name[kNameUnits];
  char16_t index_key[kIndexKeyUnits];
  std::uint8_t not_set[2];
  char16_t phone_number[kNumberUnits];
  char16_t company[kCompanyUnits];
  char16_t note[kNoteUnits];
  std::uint8_t not_accessed[2];
  std::int64_t registered;  // seconds since 1970-01-01 UTC
  std::uint8_t rest[136];
};
static_assert(sizeof(MyFax) == 1064);
static_assert(offsetof(MyFax, name) == 2 && sizeof(MyFax::name) == 130);
static_assert(offsetof(MyFax, index_key) == 132 && sizeof(MyFax::index_key) == 42);
static_assert(offsetof(MyFax, phone_number) == 176 && sizeof(MyFax::phone_number) == 102);
static_assert(offsetof(MyFax, company) == 278 && sizeof(MyFax::company) == 130);
static_assert(offsetof(MyFax, note) == 408 && sizeof(MyFax::note) == 510);
static_assert(offsetof(MyFax, registered) == 920 && offsetof(MyFax, rest) == 928);

// A group of an address-book file; read only, and as long as its members need.
struct MyFaxGroup {
  std::uint8_t not_read[2];
  char16_t name[kNameUnits];
  std::uint8_t not_read_either[52];
  std::uint16_t member_count;
  std::uint16_t members[kMaximumMembers];  // ids of MyFax records
};
static_assert(offsetof(MyFaxGroup, name) == 2 && offsetof(MyFaxGroup, member_count) == 184);
static_assert(offsetof(MyFaxGroup, members) == 186 && sizeof(MyFaxGroup) == 186 + 2 * kMaximumMembers);

// An individual of the printer's address book; read only. What follows the number is the library's.
struct Contact {
  std::uint16_t id;
  char16_t name[kNameUnits];
  std::uint8_t not_read[44];
  char16_t phone_number[kNumberUnits];
};
static_assert(offsetof(Contact, name) == 2 && offsetof(Contact, phone_number) == 176);
static_assert(sizeof(Contact) == 278);

// A group of the printer's address book; read only. Its count stands 8 bytes before that of a file's group.
struct FaxGroup {
  std::uint8_t not_read[2];
  char16_t name[kNameUnits];
  std::uint8_t not_read_either[44];
  std::uint16_t member_count;
  std::uint16_t members[kMaximumMembers];  // ids of Contact records
};
static_assert(offsetof(FaxGroup, name) == 2 && offsetof(FaxGroup, member_count) == 176);
static_assert(offsetof(FaxGroup, members) == 178 && sizeof(FaxGroup) == 178 + 2 * kMaximumMembers);

// Room for the greatest record of any kind, so that the library may write all that it has of one.
union RecordRoom {
  MyFax my_fax;
  MyFaxGroup my_fax_group;
  Contact contact;
  FaxGroup fax_group;
};

}  // namespace fax
