// A stand-in for the address-book library: it hands out what a test put into it and records the calls.
#pragma once

#include "addressbook/records.h"

#include <cstdint>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace test {

struct Person {
  std::uint16_t id = 0;
  std::u16string name, number, company, note;
};

struct Crowd {
  std::u16string name;
  std::vector<std::uint16_t> members;
};

// What a handle holds.
struct Book {
  std::vector<Person> people;
  std::vector<Crowd> crowds;
};

struct StandIn {
  // In short: "Create", "Read /folder/a 0", "Count MyFax", "At MyFax 0", "Add_MyFax 2"...
  std::vector<std::string> calls;

  bool has_folder = true;
  std::u16string folder = u"/books";
  bool has_list = true;
  std::u16string list;
  std::map<std::string, Book> files;  // by path; another path fails
  Book device;

  bool creates = true;
  std::uint32_t initialize = 0, device_status = 0x21000001, read_data = 0, add_my_fax = 0, add = 0;
  std::string throwing;  // the calls that begin so throw
  std::function<void()> thrown = [] { throw std::runtime_error("by the test"); };

  std::vector<fax::MyFax> added;  // by the last Add_MyFax
  int open_handles = 0;

  // The calls as one text, without those for single records.
  std::string order() const {
    std::string text;
    for (auto const &call : calls)
      if (!call.starts_with("At ") && !call.starts_with("Count ")) text += (text.empty() ? "" : ", ") + call;
    return text;
  }
};

// The symbol that gives a test the stand-in of a loaded library.
inline constexpr char kStandIn[] = "stand_in_library";
using GetStandIn = StandIn *();

}  // namespace test
