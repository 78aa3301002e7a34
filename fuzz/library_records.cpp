// The library's side of its records. Input: 0 and records as they are, or 1 and texts of any bytes as a foreign file or a
// printer may hold them, each with its length before it.
#include "fuzz/bytes.h"
#include "fuzz/check.h"
#include "quoltanis/address_data.h"

#include <cstring>
#include <string>
#include <vector>

namespace {

using fax::AddressData, fax::MyFaxRecord, fax::Source, fax::Status;

template <std::size_t units>
std::u16string_view text_of(char16_t const (&field)[units]) {
  std::u16string_view const all(field, units);
  FUZZ_CHECK(all.find(u'\0') != all.npos);
  return all.substr(0, all.find(u'\0'));
}

bool same(MyFaxRecord const &one, MyFaxRecord const &other) {
  return text_of(one.name) == text_of(other.name) && text_of(one.number) == text_of(other.number) &&
         text_of(one.index_key) == text_of(other.index_key) && text_of(one.company) == text_of(other.company) &&
         text_of(one.note) == text_of(other.note) && one.registered == other.registered;
}

// What is taken is what is given again, and is text that a file can store and give again.
void check_records(std::string_view bytes) {
  std::vector<MyFaxRecord> records((bytes.size() + sizeof(MyFaxRecord) - 1) / sizeof(MyFaxRecord));
  if (!bytes.empty()) std::memcpy(records.data(), bytes.data(), bytes.size());
  AddressData data;
  if (data.add(records) != Status::success) {
    FUZZ_CHECK(data.individuals(Source::file) == 0);
    return;
  }
  FUZZ_CHECK(data.individuals(Source::file) == records.size());
  AddressData again;
  auto const stored = data.file_individuals();
  for (std::size_t i = 0; i < records.size(); ++i) {
    MyFaxRecord given, through_text;
    data.write(i, given);
    FUZZ_CHECK(same(given, records[i]));
    auto const &one = stored[i];
    FUZZ_CHECK(again.append(Source::file, fax::gad::IndividualView{.id = 1, .name = one.name, .number = one.number,
                                                                   .company = one.company, .note = one.note,
                                                                   .index_key = one.index_key,
                                                                   .registered = one.registered}) == Status::success);
    again.write(i, through_text);
    FUZZ_CHECK(same(through_text, given));
  }
}

// Whatever a text is, the record ends inside its fields and is one that the library itself would take.
void check_texts(fuzz::Bytes input) {
  AddressData data;
  fax::gad::IndividualView const view{.id = input.number(), .name = input.text(), .number = input.text(),
                                      .company = input.text(), .note = input.text(), .index_key = input.text()};
  if (data.append(Source::file, view) == Status::success) {
    MyFaxRecord record;
    data.write(0, record);
    FUZZ_CHECK(AddressData().add({&record, 1}) == Status::success);
    // A number is whole or refused, since a fax must not go to a part of one.
    auto const number = AddressData(data).file_individuals()[0].number;
    FUZZ_CHECK(number == view.number);
  }
  std::vector<std::uint32_t> members;
  std::string_view const name = input.text();
  while (!input.empty()) members.push_back(input.number());
  if (data.append(Source::printer, fax::gad::GroupView{.id = 3, .name = name, .members = members}) != Status::success)
    return;
  std::vector<std::uint16_t> room(sizeof(fax::FaxGroupHead) / 2 + members.size());
  auto *const head = reinterpret_cast<fax::FaxGroupHead *>(room.data());
  data.write_group(0, head);
  FUZZ_CHECK(head->members <= members.size() && !text_of(head->name).empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const *data, std::size_t size) {
  fuzz::Bytes input(data, size);
  if (input.byte() == 0) check_records(input.rest());
  else check_texts(input);
  return 0;
}
