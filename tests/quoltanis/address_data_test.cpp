#include "books.h"
#include "quoltanis/address_data.h"
#include "quoltanis/unicode.h"

#include <gmock/gmock.h>

#include <cstring>
#include <memory>
#include <random>

namespace fax {
namespace {

std::string twice(std::string const &text, int times) {
  std::string all;
  for (int i = 0; i < times; ++i) all += text;
  return all;
}

TEST(Unicode, FieldsAreCutBetweenCharacters) {
  struct Case {
    char const *what;
    std::string utf8;
    std::u16string field;  // of a field with room for four
    bool whole;
  };
  for (auto const &row : {
           Case{"empty", "", u"", true},
           Case{"fits", "abcd", u"abcd", true},
           Case{"cut", "abcde", u"abcd", false},
           Case{"pair fits", "ab\xF0\x9F\x98\x80", u"ab\xD83D\xDE00", true},
           Case{"pair is not split", "abc\xF0\x9F\x98\x80", u"abc", false},
           Case{"zero ends", std::string("ab\0cd", 5), u"ab", false},
           Case{"stray byte", "a\x80z", u"a\xFFFDz", false},
           Case{"half a character", "a\xE2\x82", u"a\xFFFD\xFFFD", false},
           Case{"overlong", "\xC0\x80", u"\xFFFD\xFFFD", false},
           Case{"surrogate", "\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD", false},
           Case{"beyond Unicode", "\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD", false},
       }) {
    char16_t field[6] = {7, 7, 7, 7, 7, 7};
    Filled const filled = fill_field(std::span(field).first(5), row.utf8);
    EXPECT_EQ(std::u16string(field), row.field) << row.what;
    EXPECT_EQ(filled.units, row.field.size()) << row.what;
    EXPECT_EQ(filled.whole, row.whole) << row.what;
    EXPECT_EQ(field[5], 7) << row.what;
    if (row.whole) {
      EXPECT_EQ(utf8_of(row.field), row.utf8);
      EXPECT_EQ(units_in(row.utf8), row.field.size());
    }
  }
  for (std::u16string const half : {u"\xD83D", u"\xDE00", u"\xDE00\xD83D", u"\xD83Dx"}) EXPECT_FALSE(utf8_of(half));
}

// Whatever the bytes are: no more than the field is written, and what is there is valid.
TEST(Unicode, RandomBytes) {
  std::mt19937 random(1);
  for (int round = 0; round < 20'000; ++round) {
    std::string bytes(random() % 24, '\0');
    for (char &byte : bytes) byte = static_cast<char>(random() % 4 == 0 ? random() : 0xC0 + random() % 64);
    char16_t field[10];
    Filled const filled = fill_field(field, bytes);
    std::u16string_view const units(field, filled.units);
    ASSERT_TRUE(utf8_of(units));
    ASSERT_TRUE(!filled.whole || utf8_of(units) == bytes);
  }
}

gad::IndividualView person(std::string_view name, std::string_view number, std::uint32_t id = 1) {
  return {.id = id, .name = name, .number = number};
}

TEST(AddressData, CarriesWhatFits) {
  struct Case {
    char const *what;
    std::string name, number;
    std::uint32_t id;
    Status status;
    std::u16string carried;
    std::uint16_t carried_id;
  };
  for (auto const &row : {
           Case{"plain", "Åsa", "1", 9, Status::success, u"Åsa", 9},
           Case{"greatest id", "A", "1", 65535, Status::success, u"A", 65535},
           Case{"id beyond", "A", "1", 65536, Status::success, u"A", 0},
           Case{"long name", std::string(63, 'a') + "\xF0\x9F\x98\x80", "1", 1, Status::success,
                std::u16string(63, u'a'), 1},
           Case{"no UTF-8", "\xC5sa", "1", 1, Status::success, u"\xFFFDsa", 1},
           Case{"no name", "", "1", 1, Status::text_unfit, u"", 0},
           Case{"name begins with zero", std::string("\0a", 2), "1", 1, Status::text_unfit, u"", 0},
           Case{"no number", "A", "", 1, Status::text_unfit, u"", 0},
           Case{"longest number", "A", std::string(50, '1'), 1, Status::success, u"A", 1},
           Case{"half a number", "A", std::string(51, '1'), 1, Status::text_unfit, u"", 0},
           Case{"zero in a number", "A", std::string("1\0", 2), 1, Status::text_unfit, u"", 0},
       }) {
    AddressData data;
    EXPECT_EQ(data.append(Source::file, person(row.name, row.number, row.id)), row.status) << row.what;
    ASSERT_EQ(data.individuals(Source::file), row.status == Status::success ? 1u : 0u) << row.what;
    if (row.status != Status::success) continue;
    MyFaxRecord record;
    std::memset(&record, 0xEE, sizeof record);
    data.write(0, record);
    EXPECT_EQ(std::u16string(record.name), row.carried) << row.what;
    EXPECT_EQ(record.id, row.carried_id) << row.what;
    EXPECT_EQ(record.note[254] + record.gap_174[0] + record.gap_918[0] + int(record.gap_928[135]), 0) << row.what;
  }
}

MyFaxRecord record_of(std::u16string_view name, std::u16string_view number) {
  MyFaxRecord record{};
  std::copy(name.begin(), name.end(), record.name);
  std::copy(number.begin(), number.end(), record.number);
  return record;
}

TEST(AddressData, AddsRecordsAllOrNone) {
  AddressData data;
  ASSERT_EQ(data.append(Source::file, person("Here", "1")), Status::success);
  MyFaxRecord unended = record_of(u"U", u"1"), bad_note = record_of(u"N", u"1");
  std::fill(std::begin(unended.name), std::end(unended.name), u'x');
  bad_note.note[0] = 0xDC00;
  struct Case {
    char const *what;
    std::vector<MyFaxRecord> records;
    Status status;
  };
  for (auto const &row : {
           Case{"none", {}, Status::success},
           Case{"no name", {record_of(u"A", u"1"), record_of(u"", u"1")}, Status::empty_name},
           Case{"no number", {record_of(u"A", u"")}, Status::empty_number},
           Case{"no end", {record_of(u"A", u"1"), unended}, Status::text_unfit},
           Case{"half a pair", {bad_note}, Status::text_unfit},
           Case{"here", {record_of(u"A", u"1"), record_of(u"Here", u"1")}, Status::present},
           Case{"twice", {record_of(u"A", u"1"), record_of(u"A", u"1")}, Status::present},
       }) {
    EXPECT_EQ(data.add(row.records), row.status) << row.what;
    EXPECT_EQ(data.individuals(Source::file), 1u) << row.what;
  }
  MyFaxRecord full = record_of(u"日本", u"03");
  full.registered = 1'700'000'000;
  full.company[63] = full.index_key[19] = u'z';
  std::fill(full.company, full.company + 63, u'c');
  std::fill(full.index_key, full.index_key + 19, u'k');
  std::fill(full.note, full.note + 254, u'n');
  ASSERT_EQ(data.add({&full, 1}), Status::success);
  MyFaxRecord back;
  data.write(1, back);
  EXPECT_EQ(std::memcmp(&back, &full, sizeof full), 0);
  EXPECT_EQ(data.file_individuals()[1].name, "日本");
  EXPECT_EQ(data.file_individuals()[1].note, twice("n", 254));
}

// A group is written with as many bytes as it needs, up to the greatest.
TEST(AddressData, WritesNoByteMoreThanAGroupNeeds) {
  std::vector<std::uint32_t> everyone(70'000);
  for (std::size_t i = 0; i < everyone.size(); ++i) everyone[i] = static_cast<std::uint32_t>(i);
  AddressData data;
  for (auto const source : {Source::file, Source::printer})
    for (std::size_t const members : {std::size_t{0}, std::size_t{3}, everyone.size()})
      ASSERT_EQ(
          data.append(source, gad::GroupView{.id = 5, .name = "G", .members = std::span(everyone).first(members)}),
          Status::success);
  ASSERT_EQ(data.append(Source::file, gad::GroupView{.id = 5}), Status::text_unfit);
  auto const check = [&](auto head) {
    std::vector<std::uint16_t> const expected[] = {{}, {1, 2}, {}};
    std::size_t const counts[] = {0, 2, 65535};
    for (std::size_t index = 0; index < 3; ++index) {
      std::size_t const size = sizeof head + 2 * counts[index];
      std::unique_ptr<std::byte[]> const exact(new std::byte[size]);  // the sanitizer watches its end
      data.write_group(index, reinterpret_cast<decltype(head) *>(exact.get()));
      std::memcpy(&head, exact.get(), sizeof head);
      EXPECT_EQ(std::u16string(head.name), u"G");
      EXPECT_EQ(head.members, counts[index]);
      std::uint16_t last = 0;
      if (counts[index] != 0) std::memcpy(&last, exact.get() + size - 2, 2);
      EXPECT_EQ(last, counts[index]);
    }
  };
  check(MyFaxGroupHead{});
  check(FaxGroupHead{});
}

}  // namespace
}  // namespace fax
