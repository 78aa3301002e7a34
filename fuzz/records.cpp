// The bundle's side of the library's records: whatever a library gives is read, whatever a person typed is written.
// Input: which kind of book, the count of individuals and of groups, and for each of them two bytes of length and its
// record, of which the rest is zeros.
#include "addressbook/address_book.h"
#include "addressbook/address_reading.h"
#include "faxsetting/address_record.h"
#include "fuzz/bytes.h"
#include "fuzz/check.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

// What a library gives: its records, and one count more than that where it says so.
struct Answers {
  std::vector<std::string> individuals, groups;
};

Answers &of(fax::AddressData data) { return *static_cast<Answers *>(data); }

void write(std::vector<std::string> const &records, std::uint32_t index, fax::RecordRoom &room) {
  FUZZ_CHECK(index < records.size());
  std::memset(static_cast<void *>(&room), 0, sizeof room);
  std::memcpy(static_cast<void *>(&room), records[index].data(), std::min(records[index].size(), sizeof room));
}

}  // namespace

// Stand in front of the library's own operations.
namespace fax {
std::int32_t Library::count_my_fax(AddressData data) { return std::int32_t(of(data).individuals.size()); }
std::int32_t Library::count_my_fax_group(AddressData data) { return std::int32_t(of(data).groups.size()); }
std::int32_t Library::count_contact(AddressData data) { return count_my_fax(data); }
std::int32_t Library::count_fax_group(AddressData data) { return count_my_fax_group(data); }
void Library::get_my_fax(AddressData data, std::uint32_t at, RecordRoom &room) { write(of(data).individuals, at, room); }
void Library::get_my_fax_group(AddressData data, std::uint32_t at, RecordRoom &room) {
  write(of(data).groups, at, room);
}
void Library::get_contact(AddressData data, std::uint32_t at, RecordRoom &room) { get_my_fax(data, at, room); }
void Library::get_fax_group(AddressData data, std::uint32_t at, RecordRoom &room) { get_my_fax_group(data, at, room); }
}  // namespace fax

namespace {

using Reader = fax::ReadEnd (*)(fax::Library &, fax::AddressData, fax::AddressVisitor const &);

// Any records make a book whose rows, search and groups hold together.
void check_book(Reader read, Answers &answers) {
  fax::AddressBook book;
  fax::AddressVisitor const visitor{
      [&](fax::Individual const &one) {
        FUZZ_CHECK(!one.name.empty() && one.name.size() < fax::kNameUnits);
        FUZZ_CHECK(!one.phone_number.empty() && one.phone_number.size() < fax::kNumberUnits);
        book.add_individual(one.id, one.name, one.phone_number, one.company, one.note);
      },
      [&](fax::Group const &group) { book.add_group(group.name, group.members); }};
  fax::Library library({});
  read(library, &answers, visitor);
  fax::CaseFold fold([](char16_t unit) { return fax::FoldedUnit{{unit}, 1}; },
                     [](char16_t unit) { return unit >= 0x300 && unit < 0x370; });
  book.sort(fold);
  FUZZ_CHECK(book.rows_named(u"", fold).size() == book.size());
  for (fax::RowNumber row = 0; row < book.size(); ++row) {
    auto const entry = book.entry(row);
    auto const found = book.rows_named(entry.name, fold);
    bool const continues = entry.name[0] >= 0x300 && entry.name[0] < 0x370;
    FUZZ_CHECK(continues || std::ranges::find(found, row) != found.end());
    if (!entry.group_record) continue;
    auto const members = book.members(entry.members);
    FUZZ_CHECK(members.rows.size() <= entry.members.size() && std::ranges::is_sorted(members.rows));
    FUZZ_CHECK(members.complete == (members.rows.size() == entry.members.size()));
  }
}

bool is_unicode(std::u16string_view text) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] >> 10 == 0x36 && at + 1 < text.size() && text[at + 1] >> 10 == 0x37) ++at;
    else if (text[at] >> 11 == 0x1B) return false;
  }
  return true;
}

// A destination becomes a record that reads as it was, or none.
void check_writing(std::u16string_view name, std::u16string_view number) {
  auto const fits = [](std::u16string_view text, std::size_t units) {
    return text.size() < units && is_unicode(text) && text.find(u'\0') == text.npos;
  };
  fax::MyFax record{};
  fax::Status const status = fax::fill_record(record, name, number, 7);
  if (name.empty()) {
    FUZZ_CHECK(status == fax::kNoName);
    return;
  }
  FUZZ_CHECK((status == fax::kSuccess) == (fits(name, fax::kNameUnits) && fits(number, fax::kNumberUnits)));
  if (status != fax::kSuccess) return;
  FUZZ_CHECK(fax::field_text(record.name, fax::kNameUnits) == name);
  FUZZ_CHECK(fax::field_text(record.phone_number, fax::kNumberUnits) == number);
  auto const key = fax::field_text(record.index_key, fax::kIndexKeyUnits);
  FUZZ_CHECK(!key.empty() && name.starts_with(key) && is_unicode(key) && record.registered == 7);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  bool const of_file = input.byte() % 2 == 0;
  std::size_t const individuals = input.byte(), groups = input.byte() % 8;
  Answers answers;
  for (std::size_t i = 0; i < individuals && !input.empty(); ++i) answers.individuals.emplace_back(input.long_text());
  for (std::size_t i = 0; i < groups && !input.empty(); ++i) answers.groups.emplace_back(input.long_text());
  check_book(of_file ? fax::read_file_entries : fax::read_device_entries, answers);

  std::u16string text(std::min<std::size_t>(size / 2, 200), u'\0');
  std::memcpy(text.data(), data, text.size() * 2);
  std::size_t const name_units = size == 0 ? 0 : std::min<std::size_t>(data[0] % 80, text.size());
  check_writing(std::u16string_view(text).substr(0, name_units), std::u16string_view(text).substr(name_units));
  return 0;
}
