// What a record for a file holds, and the small rules of limits, duplicates and versions.
#include "addressbook/destination_rules.h"
#include "addressbook/device_version.h"
#include "faxsetting/address_record.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

namespace {

using namespace std::string_literals;

std::u16string many(std::size_t count, std::u16string const &text) {
  std::u16string all;
  while (count-- > 0) all += text;
  return all;
}

TEST(IndexKey, IsTheLongestStartOfTheNameInTwentyBytes) {
  struct {
    std::u16string name, key;
  } const cases[] = {
      {u"", u""},
      {u"Ann", u"Ann"},
      {many(20, u"a"), many(20, u"a")},
      {u"abcdefghijklmnopqrstuvwxy", u"abcdefghijklmnopqrst"},
      {many(11, u"ü"), many(10, u"ü")},
      {u"a" + many(10, u"ü"), u"a" + many(9, u"ü")},
      {many(7, u"あ"), many(6, u"あ")},
      {many(6, u"あ") + u"éz", many(6, u"あ") + u"é"},
      {many(6, u"😀"), many(5, u"😀")},
      {many(18, u"a") + u"😀", many(18, u"a")},
      {u"ab\xD83D", u"ab"},
      {u"ab\xDE00zz", u"ab"},
      {u"\xD83Dzz", u""},
  };
  for (auto const &row : cases) EXPECT_EQ(fax::index_key(row.name), row.key) << row.name.size();
}

TEST(AddressRecord, TextsGoWhereTheyFit) {
  using Text = std::optional<std::u16string_view>;
  std::u16string const name_64 = many(64, u"n"), name_65 = many(65, u"n"), number_50 = many(50, u"1"),
                       number_51 = many(51, u"1"), with_nul = u"a\0b"s;
  struct {
    std::u16string_view name;
    Text number;
    fax::Status status;
  } const cases[] = {
      {u"Ann", u"1", fax::kSuccess},          {u"Ann", u"", fax::kSuccess},
      {name_64, number_50, fax::kSuccess},    {name_65, u"1", fax::kTextUnfit},
      {u"Ann", number_51, fax::kTextUnfit},   {u"Ann", std::nullopt, fax::kTextUnfit},
      {u"", u"1", fax::kNoName},              {u"", std::nullopt, fax::kNoName},
      {u"a\xD83D", u"1", fax::kTextUnfit},    {u"\xDE00", u"1", fax::kTextUnfit},
      {with_nul, u"1", fax::kTextUnfit},      {u"Ann", u"\xD83D\xD83D", fax::kTextUnfit},
  };
  for (auto const &row : cases) {
    fax::MyFax record{};
    EXPECT_EQ(fax::fill_record(record, row.name, row.number, 1), row.status) << row.name.size();
  }
}

TEST(AddressRecord, HoldsFourFieldsAndZeros) {
  fax::MyFax record{};
  ASSERT_EQ(fax::fill_record(record, u"Ab", u"12", 0x0102030405060708), fax::kSuccess);
  unsigned char expected[1064] = {};
  auto const put = [&](std::size_t at, std::string const &bytes) { std::copy(bytes.begin(), bytes.end(), expected + at); };
  put(2, "A\0b"s);
  put(132, "A\0b"s);
  put(176, "1\0002"s);
  put(920, "\x08\x07\x06\x05\x04\x03\x02\x01");
  EXPECT_EQ(std::memcmp(&record, expected, sizeof(expected)), 0);
}

TEST(DestinationRules, ThirtyIsTheLimitForAllThatAreAddedAtOnce) {
  struct {
    std::size_t there, more;
    bool fit;
  } const cases[] = {{0, 30, true}, {0, 31, false}, {28, 2, true}, {28, 3, false}, {29, 1, true}, {30, 1, false},
                     {30, 0, true}};
  for (auto const &row : cases) EXPECT_EQ(fax::has_room(row.there, row.more), row.fit) << row.there << "+" << row.more;
}

TEST(DestinationRules, DuplicatesAreAskedAboutOnce) {
  for (bool const answer : {true, false}) {
    fax::DuplicateDecision decision;
    int asked = 0;
    for (int i = 0; i < 3; ++i) EXPECT_EQ(decision.allows([&] { return ++asked, answer; }), answer);
    EXPECT_EQ(asked, 1);
  }
}

TEST(DeviceVersion, IsTwoOrWhatThePpdSaysWhenThatIsMore) {
  EXPECT_EQ(fax::device_interface_version(nullptr), 2u);
  struct {
    char const *value;
    std::uint32_t version;
  } const cases[] = {{nullptr, 2}, {"", 2},    {"1", 2},           {"2", 2},          {"3", 3},
                     {"10", 10},   {" 7x", 7}, {"version 5", 2}, {"-1", 0xFFFFFFFF}, {"0x10", 2}};
  for (auto const &row : cases) {
    std::string value = row.value != nullptr ? row.value : "";
    ppd_attr_t attribute{};
    std::strcpy(attribute.name, "QXDeviceAddressBookIntfVersion");
    attribute.value = row.value != nullptr ? value.data() : nullptr;
    ppd_attr_t *attributes[] = {&attribute};
    ppd_file_t ppd{};
    ppd.num_attrs = 1;
    ppd.attrs = attributes;
    EXPECT_EQ(fax::device_interface_version(&ppd), row.version) << value;
  }
}

}  // namespace
