// What holds for every address list that was read.
#pragma once

#include "fuzz/check.h"
#include "gad/contact_rules.h"
#include "gad/contacts.h"
#include "gad/failure.h"
#include "gad/text.h"
#include "gad/text_encoding.h"

#include <algorithm>
#include <string>

namespace fuzz {

inline void no_progress(double) {}

// For a terminal: one line without control characters.
inline void check_message(std::string const &message) {
  FUZZ_CHECK(!message.empty() && fax::tool::is_utf8(message));
  FUZZ_CHECK(std::ranges::none_of(message, [](unsigned char c) { return c < 0x20 || c == 0x7F; }));
}

inline void check_list(fax::tool::Contacts const &contacts) {
  using fax::tool::is_utf8;
  for (auto const &person : contacts.people) {
    // What is no text is left out when the list is put into a book.
    bool const text =
        is_utf8(person.name) && is_utf8(person.number) && is_utf8(person.company) && is_utf8(person.note);
    FUZZ_CHECK(text || fax::tool::fault_of(person).has_value());
    FUZZ_CHECK(!person.number.empty() && person.line > 0);
  }
  std::size_t skipped = 0;
  for (auto const &remark : contacts.remarks) {
    check_message(remark.text);
    skipped += remark.weight == fax::tool::Weight::skipped;
  }
  FUZZ_CHECK(skipped == contacts.skipped);
}

// A contact that was written and read again.
inline void check_same(fax::tool::Contact const &written, fax::tool::Contacts const &read) {
  FUZZ_CHECK(read.people.size() == 1 && read.skipped == 0);
  auto const &again = read.people[0];
  FUZZ_CHECK(again.name == written.name);
  FUZZ_CHECK(again.number == written.number);
  FUZZ_CHECK(again.company == written.company);
  FUZZ_CHECK(again.note == written.note);
}

}  // namespace fuzz
