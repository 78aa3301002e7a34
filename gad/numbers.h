// The numbers of one contact, and which of them a fax goes to.
#pragma once

#include "gad/contacts.h"

#include <string>
#include <vector>

namespace fax::tool {

// From the one taken first to the one taken last.
enum class Rank { fax, fax_work, fax_other, voice, voice_other };

// The preference of a number that says nothing about it; a smaller one comes first among numbers of one rank.
inline constexpr int no_preference = 101;

class Numbers {
public:
  // Blank ones, and those that are there already, do not count.
  void add(std::string const &number, Rank rank, int preference = no_preference);

  // Gives the contact its number and puts it into contacts, with a remark about a telephone number that was taken and
  // about fax numbers that were not; or skips it.
  void choose(Contact &contact, bool fax_only, Contacts &contacts);

private:
  struct Number {
    std::string text;
    Rank rank;
    int preference;
  };
  std::vector<Number> numbers_;
};

}  // namespace fax::tool
