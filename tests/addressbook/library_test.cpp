// The library as it is found, bound and fenced, with a stand-in in its place.
#include "addressbook/library.h"
#include "loaded_stand_in.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

namespace {

using fax::Library;

// A folder of the test's own, with names for a library in it.
class LibraryTest : public testing::Test {
 protected:
  LibraryTest() : folder_(testing::TempDir() + "directfax-library-XXXXXX") {
    if (mkdtemp(folder_.data()) == nullptr) std::abort();
    test::stand_in() = {};
  }
  ~LibraryTest() override { std::filesystem::remove_all(folder_); }

  std::string place(std::string const &name) const { return folder_ + "/" + name; }
  void put(std::string const &name, char const *library) { std::filesystem::create_symlink(library, place(name)); }

  std::string folder_;
};

// Every operation, and what it answers where there is nothing.
struct {
  char const *recorded;
  bool incomplete;  // is it there in a library that lacks some?
  std::function<bool(Library &)> answers_nothing;
} const kOperations[] = {
    {"Initialize", true, [](Library &l) { return l.initialize() == fax::kUnavailable; }},
    {"SetDestinationDevice", true, [](Library &l) { return l.set_destination_device(nullptr, 2), true; }},
    {"GetStatus", false, [](Library &l) { return l.device_status() == fax::kUnavailable; }},
    {"ReadData", true, [](Library &l) { return l.read_device(nullptr, nullptr) == fax::kUnavailable; }},
    {"GetFileDirectory", true, [](Library &l) { return l.file_directory() == nullptr; }},
    {"GetFileList", true, [](Library &l) { return l.file_list() == nullptr; }},
    {"Read", true, [](Library &l) { return l.read_file(nullptr, nullptr) == fax::kUnavailable; }},
    {"Add", false, [](Library &l) { return l.add_to_file(nullptr, nullptr) == fax::kUnavailable; }},
    {"Create", true, [](Library &l) { return l.create_data() == nullptr; }},
    {"Delete", true, [](Library &l) { return l.delete_data(nullptr), true; }},
    {"Add_MyFax", true, [](Library &l) { return l.add_my_fax(nullptr, {}) == fax::kUnavailable; }},
    {"Count MyFax", false, [](Library &l) { return l.count_my_fax(nullptr) == 0; }},
    {"Count MyFaxGroup", true, [](Library &l) { return l.count_my_fax_group(nullptr) == 0; }},
    {"Count Contact", true, [](Library &l) { return l.count_contact(nullptr) == 0; }},
    {"Count FaxGroup", true, [](Library &l) { return l.count_fax_group(nullptr) == 0; }},
};

TEST_F(LibraryTest, WithoutALibraryEveryOperationAnswersNothing) {
  Library library({place("none"), place("neither")});
  for (auto const &operation : kOperations) EXPECT_TRUE(operation.answers_nothing(library)) << operation.recorded;
}

TEST_F(LibraryTest, AnOperationThatThrowsAnswersNothing) {
  put("library", STAND_IN);
  Library library({place("library")});
  for (auto const &operation : kOperations) {
    test::stand_in().calls.clear();
    test::stand_in().throwing = operation.recorded;
    EXPECT_TRUE(operation.answers_nothing(library)) << operation.recorded;
    ASSERT_EQ(test::stand_in().calls.size(), 1u) << operation.recorded;
    EXPECT_TRUE(test::stand_in().calls[0].starts_with(operation.recorded));
  }
}

TEST_F(LibraryTest, WhatALibraryLacksAnswersNothingAndTheRestWorks) {
  put("library", STAND_IN_INCOMPLETE);
  Library library({place("library")});
  test::StandIn &recorded = test::stand_in(STAND_IN_INCOMPLETE);
  for (auto const &operation : kOperations) {
    recorded = {};
    recorded.throwing = operation.recorded;
    EXPECT_TRUE(operation.answers_nothing(library)) << operation.recorded;
    EXPECT_EQ(recorded.calls.size(), operation.incomplete ? 1u : 0u) << operation.recorded;
  }
}

TEST_F(LibraryTest, TheFirstPlaceThatHoldsALibraryWins) {
  std::ofstream(place("text")) << "no library\n";
  put("first", STAND_IN);
  put("second", STAND_IN_INCOMPLETE);
  test::stand_in(STAND_IN_INCOMPLETE) = {};
  Library library({place("none"), place("text"), place("first"), place("second")});
  EXPECT_EQ(library.initialize(), 0u);
  EXPECT_EQ(test::stand_in().order(), "Initialize 0");
  EXPECT_EQ(test::stand_in(STAND_IN_INCOMPLETE).order(), "");
}

TEST_F(LibraryTest, OneThatIsPutInPlaceLaterIsFound) {
  Library library({place("library")});
  EXPECT_EQ(library.create_data(), nullptr);
  put("library", STAND_IN);
  fax::AddressData const data = library.create_data();
  EXPECT_NE(data, nullptr);
  library.delete_data(data);
  EXPECT_EQ(test::stand_in().order(), "Create, Delete");
}

TEST_F(LibraryTest, ArgumentsArriveAsTheLibraryTakesThem) {
  put("library", STAND_IN);
  Library library({place("library")});
  library.set_destination_device(CFSTR("192.0.2.7"), 0xFFFFFFFE);
  library.set_destination_device(nullptr, 2);
  library.device_status();
  fax::AddressData const data = library.create_data();
  library.read_device(data, CFSTR("0427"));
  library.read_file(CFSTR("/books/a"), data);
  library.add_my_fax(data, std::vector<fax::MyFax>(2));
  library.add_to_file(CFSTR("/books/a"), data);
  library.delete_data(data);
  EXPECT_EQ(test::stand_in().order(),
            "SetDestinationDevice 1 192.0.2.7 4294967294, SetDestinationDevice 0 (null) 2, GetStatus 0 0, Create, "
            "ReadData 23 0427, Read /books/a 0, Add_MyFax 2, Add /books/a 0, Delete");
}

}  // namespace
