// The entries of one address book, kept close together: a book of 100,000 takes about 25 MB.
#pragma once

#include "addressbook/case_fold.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fax {

// The phone number of an entry that is a group: the mark by which every part tells groups, and what the list shows.
inline constexpr std::u16string_view kGroupNumber = u"Group";

// The text of a record's fixed field: up to its first zero unit, at most limit units. Field points to as many.
std::u16string_view field_text(char16_t const *field, std::size_t limit);

// A position in the book's order: as added, after sort() as shown.
using RowNumber = std::uint32_t;

// One entry; its texts live as long as the book and until the next change of it.
struct AddressEntry {
  bool group_record = false;  // added as a group: no id, company and note, but members
  bool has_details = false;   // company and note are known (they may be empty)
  std::uint16_t id = 0;
  std::u16string_view name, number, company, note;
  std::span<std::uint16_t const> members;

  // By its number alone: an individual whose number says so counts as a group too.
  bool is_group() const { return number == kGroupNumber; }
};

struct GroupMembers {
  std::vector<RowNumber> rows;
  bool complete = true;  // false: an id of the group found no individual
};

class AddressBook {
 public:
  // The texts are copied; U+0000 in them matches nothing. std::length_error when a text is longer than 65,535 units or
  // the book would hold more than 2^32 units or entries; the book is as before then, as after std::bad_alloc.
  void add_individual(std::uint16_t id, std::u16string_view name, std::u16string_view number,
                      std::u16string_view company, std::u16string_view note);
  // Without company and note, as the printer's records are.
  void add_individual(std::uint16_t id, std::u16string_view name, std::u16string_view number);
  void add_group(std::u16string_view name, std::span<std::uint16_t const> members);

  // Puts the entries into the shown order: by name, then by number, both without case from Z to A; equal ones stay as
  // added. Prepares the search. Entries added later stand at the end until the next sort().
  void sort(CaseFold &fold);

  std::size_t size() const { return order_.size(); }
  AddressEntry entry(RowNumber row) const;

  // The rows, ascending, whose name contains text without regard to case; every row for an empty text. Sees the rows of
  // the last sort() only. The fold is the one of the sort.
  std::vector<RowNumber> rows_named(std::u16string_view text, CaseFold &fold) const;

  // The individuals among shown that ids name, in the order of shown. Each listing of an id is met by one individual,
  // the first shown, and each individual meets one listing.
  GroupMembers members(std::span<std::uint16_t const> ids, std::span<RowNumber const> shown) const;
  // The same among all rows.
  GroupMembers members(std::span<std::uint16_t const> ids) const;

 private:
  struct Record {
    std::uint32_t text = 0;  // place of name, number, company, note, one behind the other (units_at)
    std::uint16_t name = 0, number = 0, company = 0, note = 0;
    std::uint16_t id = 0;
    bool group = false, details = false;
    bool member = false;  // may be a group's member: an individual, and its number does not say otherwise
  };
  struct Members {
    std::uint32_t record, begin, count;
  };
  static constexpr std::int32_t kNoId = -1;
  static constexpr std::size_t kStride = 32;  // bytes, two names or so

  void add(Record record, std::u16string_view name, std::u16string_view number, std::u16string_view company,
           std::u16string_view note);
  // Place n is unit n % kBlock of block n / kBlock.
  char16_t *units_at(std::uint32_t place) const { return blocks_[place / kBlock].get() + place % kBlock; }
  std::u16string_view name(Record const &record) const;
  std::u16string_view number(Record const &record) const;
  template <typename RowAt>
  GroupMembers members_of(std::span<std::uint16_t const> ids, std::size_t count, RowAt row_at) const;

  // Texts are never moved: a block is full when the next entry's do not fit.
  static constexpr std::uint32_t kBlock = 1u << 18;  // units, enough for the longest entry
  std::vector<std::unique_ptr<char16_t[]>> blocks_;
  std::uint32_t used_ = 0;  // of the last block
  std::vector<Record> records_;
  std::vector<Members> groups_;  // ascending by record
  std::vector<std::uint16_t> member_ids_;
  std::vector<RowNumber> order_;  // shown row -> record
  std::vector<std::int32_t> ids_;    // shown row -> id of an individual, or kNoId
  std::string names_;                // folded names in shown order, each ended by a NUL
  std::vector<std::uint32_t> starts_;  // shown row -> where its name begins in names_; one more at the end
  std::vector<RowNumber> rows_at_;     // row of every kStride-th byte of names_
};

}  // namespace fax
