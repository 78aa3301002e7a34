// The records that cross the library's boundary, byte for byte, in the little-endian order of the machines that run it.
// Text fields are UTF-16, ended by a zero unit inside the field.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace fax {

static_assert(std::endian::native == std::endian::little, "the records are little-endian");

// One individual of a PC address book.
struct MyFaxRecord {
  std::uint16_t id;
  char16_t name[65];
  char16_t index_key[21];
  char16_t gap_174[1];
  char16_t number[51];
  char16_t company[65];
  char16_t note[255];
  char16_t gap_918[1];
  std::int64_t registered;  // seconds since 1970-01-01 UTC
  std::byte gap_928[136];
};
static_assert(sizeof(MyFaxRecord) == 1064);
static_assert(offsetof(MyFaxRecord, name) == 2);
static_assert(offsetof(MyFaxRecord, index_key) == 132);
static_assert(offsetof(MyFaxRecord, number) == 176);
static_assert(offsetof(MyFaxRecord, company) == 278);
static_assert(offsetof(MyFaxRecord, note) == 408);
static_assert(offsetof(MyFaxRecord, registered) == 920);

// One individual of the printer's address book: 278 bytes.
struct ContactRecord {
  std::uint16_t id;
  char16_t name[65];
  char16_t gap_132[22];
  char16_t number[51];
};
static_assert(sizeof(ContactRecord) == 278);
static_assert(offsetof(ContactRecord, name) == 2);
static_assert(offsetof(ContactRecord, number) == 176);

inline constexpr std::size_t greatest_member_count = 65535;

// The head of one group of a PC address book; as many `Id` of individuals follow as it has members, so that the
// greatest record has 186 + 2 * 65,535 = 131,256 bytes.
struct MyFaxGroupHead {
  std::uint16_t id;
  char16_t name[65];
  char16_t gap_132[26];
  std::uint16_t members;
};
static_assert(sizeof(MyFaxGroupHead) == 186);
static_assert(offsetof(MyFaxGroupHead, name) == 2);
static_assert(offsetof(MyFaxGroupHead, members) == 184);

// The same of the printer's address book: 178 + 2 * 65,535 = 131,248 bytes at the most.
struct FaxGroupHead {
  std::uint16_t id;
  char16_t name[65];
  char16_t gap_132[22];
  std::uint16_t members;
};
static_assert(sizeof(FaxGroupHead) == 178);
static_assert(offsetof(FaxGroupHead, name) == 2);
static_assert(offsetof(FaxGroupHead, members) == 176);

}  // namespace fax
