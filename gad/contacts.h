// What a foreign address list says, in the terms of an address book.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace fax::tool {

// One person or company. Texts are UTF-8, as they are spelled in the list, of any length; each but number can be empty.
struct Contact {
  std::string name, number, company, note;
  std::vector<std::string> groups;  // names, possibly one twice
  std::size_t line = 0;             // where it begins in the list, from 1; 0: not from a list
};

// How much of a remark's matter a user wants to hear.
enum class Weight {
  detail,  // nothing unexpected
  note,    // taken, but not quite as it stands in the list
  skipped  // left out
};

// Something about one place of a list.
struct Remark {
  std::size_t line = 0;  // 0: about the whole list
  Weight weight = Weight::note;
  std::string text;  // of one line
};

struct Contacts {
  std::vector<Contact> people;
  std::vector<std::string> groups;  // every group that the list declares by itself, also the empty ones
  std::vector<Remark> remarks;
  std::size_t skipped = 0;  // records left out: one remark each

  void skip(std::size_t line, std::string reason) {
    remarks.push_back({line, Weight::skipped, std::move(reason)});
    ++skipped;
  }
  void remark(std::size_t line, std::string text, Weight weight = Weight::note) {
    remarks.push_back({line, weight, std::move(text)});
  }
};

}  // namespace fax::tool
