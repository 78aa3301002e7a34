// From the entries of a directory to the contacts and groups of a printer. Plain functions of their arguments: what
// comes in is what a server sent, and may be anything.
#pragma once

#include "quoltanis/address_data.h"
#include "quoltanis/printer_settings.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace fax {

struct CaseFree {
  bool operator()(std::string_view one, std::string_view other) const;  // ASCII letters, as attribute names have them
};

// One entry of the directory; values are bytes.
struct DirectoryEntry {
  std::string dn;
  std::map<std::string, std::vector<std::string>, CaseFree> attributes{};
};

// A DN in the one form that every spelling of it has; as it came when it is none.
std::string normal_dn(std::string const &dn);

// Gathers entries. A person is an entry with a number; one of several numbers becomes as many contacts. A person
// without a name is called by the number, and one whose number no record can carry is left out. A group is an entry of
// the settings' group class; one without a name is left out.
class PrinterEntries {
public:
  explicit PrinterEntries(PrinterSettings const &settings) : settings_(settings) {}

  // More than a printer can hold is incomplete: 100,000 numbers, 10,000 groups, or 64 MiB of text.
  Status add(DirectoryEntry const &entry);

  // Fills data. Contacts keep the order in which they came. Their id is the first number from 1 to 65535 in the
  // settings' id attributes, unless a contact before has it; all others get the lowest that are free, and 0 when none
  // is. A group has the members that were found; of a person with several numbers, the first.
  Status finish(AddressData &data) const;

private:
  struct Person {
    std::string dn, name, number;
    std::uint32_t wanted_id;
    bool first;  // of the numbers of one person
  };
  struct Group {
    std::string name;
    std::vector<std::string> members;
  };

  Status add_person(DirectoryEntry const &entry);
  Status add_group(DirectoryEntry const &entry);
  std::vector<std::uint32_t> ids() const;

  PrinterSettings const &settings_;
  std::vector<Person> people_;
  std::vector<Group> groups_;
  std::size_t bytes_ = 0;
};

}  // namespace fax
