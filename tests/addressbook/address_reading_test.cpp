// Records as they are read: in which order, how far, and with which calls.
#include "addressbook/address_reading.h"
#include "loaded_stand_in.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

namespace {

using fax::ReadEnd;
using test::Crowd;
using test::Person;

std::string ascii(std::u16string_view text) { return {text.begin(), text.end()}; }

// What a visitor is given, "id name number company note" and "name: member member", one a line.
struct Visited {
  std::string text;
  std::size_t limit = 1000;

  fax::AddressVisitor visitor() {
    return {[this](fax::Individual const &individual) {
              if (limit-- == 0) throw std::length_error("full");
              text += std::to_string(individual.id) + " " + ascii(individual.name) + " " +
                      ascii(individual.phone_number) + " " + ascii(individual.company) + " " + ascii(individual.note) +
                      "\n";
            },
            [this](fax::Group const &group) {
              text += ascii(group.name) + ":";
              for (auto const member : group.members) text += " " + std::to_string(member);
              text += "\n";
            }};
  }
};

struct Reading {
  char const *what;
  test::Book book;
  ReadEnd from_file, from_device;
  char const *file_text;
  char const *device_text;
} const kReadings[] = {
    {"nothing", {}, ReadEnd::complete, ReadEnd::complete, "", ""},
    {"individuals before groups",
     {{{7, u"Ann", u"1", u"Co", u"hi"}, {65535, u"Bob", u"2", u"", u""}}, {{u"All", {65535, 7, 7}}, {u"None", {}}}},
     ReadEnd::complete,
     ReadEnd::complete,
     "7 Ann 1 Co hi\n65535 Bob 2  \nAll: 65535 7 7\nNone:\n",
     "7 Ann 1  \n65535 Bob 2  \nAll: 65535 7 7\nNone:\n"},
    {"no name",
     {{{1, u"Ann", u"1", u"", u""}, {2, u"", u"2", u"", u""}, {3, u"Cid", u"3", u"", u""}}, {{u"All", {1}}}},
     ReadEnd::individual_without_name,
     ReadEnd::individual_without_name,
     "1 Ann 1  \n",
     "1 Ann 1  \n"},
    {"no number",
     {{{1, u"Ann", u"1", u"", u""}, {2, u"Bob", u"", u"", u""}, {3, u"Cid", u"3", u"", u""}}, {{u"All", {1}}}},
     ReadEnd::individual_without_number,
     ReadEnd::complete,
     "1 Ann 1  \n",
     "1 Ann 1  \n3 Cid 3  \nAll: 1\n"},
    {"neither", {{{1, u"", u"", u"", u""}}, {}}, ReadEnd::individual_without_name, ReadEnd::individual_without_name,
     "", ""},
    {"a group without name",
     {{}, {{u"One", {1}}, {u"", {2}}, {u"Three", {3}}}},
     ReadEnd::group_without_name,
     ReadEnd::group_without_name,
     "One: 1\n",
     "One: 1\n"},
    {"a name that no 0 ends", {{{1, std::u16string(70, u'x'), u"1", u"", u""}}, {}},
     ReadEnd::individual_without_name, ReadEnd::individual_without_name, "", ""},
    {"a name as long as its field", {{{1, std::u16string(64, u'x'), u"1", u"", u""}}, {}}, ReadEnd::complete,
     ReadEnd::complete,
     "1 xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx 1  \n",
     "1 xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx 1  \n"},
};

class ReadingTest : public testing::Test {
 protected:
  ReadingTest() : library_({STAND_IN}) { test::stand_in() = {}; }

  // The book inside the library, read from a file or from the printer.
  fax::AddressData filled(test::Book const &book) {
    test::stand_in().device = book;
    fax::AddressData const data = library_.create_data();
    library_.read_device(data, CFSTR(""));
    test::stand_in().calls.clear();
    return data;
  }

  fax::Library library_;
};

TEST_F(ReadingTest, GoesAsFarAsTheRecordsAreWhole) {
  for (auto const &row : kReadings) {
    SCOPED_TRACE(row.what);
    fax::AddressData const data = filled(row.book);
    Visited file, device;
    EXPECT_EQ(fax::read_file_entries(library_, data, file.visitor()), row.from_file);
    EXPECT_EQ(fax::read_device_entries(library_, data, device.visitor()), row.from_device);
    EXPECT_EQ(file.text, row.file_text);
    EXPECT_EQ(device.text, row.device_text);
    library_.delete_data(data);
  }
}

TEST_F(ReadingTest, AsksForTheCountBeforeEveryRecord) {
  fax::AddressData const data = filled({{{1, u"Ann", u"1", u"", u""}, {2, u"Bob", u"2", u"", u""}}, {{u"All", {1}}}});
  Visited visited;
  fax::read_file_entries(library_, data, visited.visitor());
  EXPECT_EQ(test::stand_in().calls,
            (std::vector<std::string>{"Count MyFax", "At MyFax 0", "Count MyFax", "At MyFax 1", "Count MyFax",
                                      "Count MyFaxGroup", "At MyFaxGroup 0", "Count MyFaxGroup"}));
  test::stand_in().calls.clear();
  fax::read_device_entries(library_, data, visited.visitor());
  EXPECT_EQ(test::stand_in().calls,
            (std::vector<std::string>{"Count Contact", "At Contact 0", "Count Contact", "At Contact 1",
                                      "Count Contact", "Count FaxGroup", "At FaxGroup 0", "Count FaxGroup"}));
  library_.delete_data(data);
}

TEST_F(ReadingTest, AGroupMayHaveAsManyMembersAsItsCountCanSay) {
  std::vector<std::uint16_t> everybody(65535);
  for (std::size_t at = 0; at < everybody.size(); ++at) everybody[at] = static_cast<std::uint16_t>(at + 1);
  fax::AddressData const data = filled({{}, {{u"All", everybody}}});
  std::size_t met = 0;
  auto const visitor = fax::AddressVisitor{
      [](fax::Individual const &) {},
      [&](fax::Group const &group) {
        met += std::equal(group.members.begin(), group.members.end(), everybody.begin(), everybody.end());
      }};
  fax::read_file_entries(library_, data, visitor);
  fax::read_device_entries(library_, data, visitor);
  EXPECT_EQ(met, 2u);
  library_.delete_data(data);
}

TEST_F(ReadingTest, NothingOfARecordIsLeftForTheNextOne) {
  fax::AddressData const data = filled({{{1, u"Ann", u"1", u"Co", u""}, {2, u"Bob", u"2", u"", u""}}, {}});
  test::stand_in().throwing = "At MyFax 1";
  Visited visited;
  EXPECT_EQ(fax::read_file_entries(library_, data, visited.visitor()), ReadEnd::individual_without_name);
  EXPECT_EQ(visited.text, "1 Ann 1 Co \n");
  library_.delete_data(data);
}

TEST_F(ReadingTest, AVisitorWithoutRoomEndsIt) {
  fax::AddressData const data = filled({{{1, u"Ann", u"1", u"", u""}, {2, u"Bob", u"2", u"", u""}}, {{u"All", {1}}}});
  Visited visited;
  visited.limit = 1;
  EXPECT_EQ(fax::read_file_entries(library_, data, visited.visitor()), ReadEnd::refused);
  EXPECT_EQ(visited.text, "1 Ann 1  \n");
  library_.delete_data(data);
}

}  // namespace
