// What an address-data handle stands for: individuals and groups of a PC address book and of a printer, kept small and
// handed out as records.
#pragma once

#include "quoltanis/gad_file.h"
#include "quoltanis/records.h"

#include <array>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace fax {

enum class Source { file, printer };

class AddressData {
public:
  // Takes over what other holds of one source.
  void replace(Source source, AddressData &&other) { of(source) = std::move(other.of(source)); }

  // Makes room for what a file of so many bytes may hold, so that the texts are not moved again and again. A hint.
  void expect_file_of(std::size_t bytes);

  // Adds an individual as it can be carried: a name, company or note that is too long is cut between two characters,
  // and what is no UTF-8 becomes U+FFFD. text_unfit for a number that is not whole or not valid, as a fax must not go
  // to the half of one, and for an empty name or number.
  Status append(Source source, gad::IndividualView const &individual);
  // A group whose name is cut likewise. text_unfit for an empty name; members outside 1 to 65535 are left out.
  Status append(Source source, gad::GroupView const &group);

  // Adds all of the records, or none and the first failure: empty_name, empty_number, text_unfit for a field that does
  // not end or holds half a surrogate pair, present for a name and number that is here already or comes twice.
  Status add(std::span<MyFaxRecord const> records);

  std::size_t individuals(Source source) const { return of(source).individuals.size(); }
  std::size_t groups(Source source) const { return of(source).groups.size(); }

  // The index must be below individuals(). Every byte of the record is written.
  void write(std::size_t index, MyFaxRecord &record) const;
  void write(std::size_t index, ContactRecord &record) const;
  // The index must be below groups(). Writes the head and its members behind it, and no byte more.
  void write_group(std::size_t index, MyFaxGroupHead *record) const;
  void write_group(std::size_t index, FaxGroupHead *record) const;

  // The individuals of Source::file, to be added to a file.
  std::vector<gad::Individual> file_individuals() const;

private:
  enum Text { name, index_key, number, company, note, texts };
  struct Individual {
    std::size_t start;  // of its texts in units, one after the other
    std::int64_t registered;
    std::uint16_t id;
    std::array<std::uint8_t, texts> length;
  };
  struct Group {
    std::size_t start;  // of its name in units
    std::size_t first_member;
    std::uint16_t member_count;
    std::uint16_t id;
    std::uint8_t name_length;
  };
  struct Part {
    std::vector<Individual> individuals;
    std::vector<Group> groups;
    std::vector<char16_t> units;
    std::vector<std::uint16_t> members;
  };

  Part &of(Source source) { return parts_[source == Source::file ? 0 : 1]; }
  Part const &of(Source source) const { return parts_[source == Source::file ? 0 : 1]; }
  static std::u16string_view text(Part const &part, Individual const &individual, Text which);
  template <typename Head>
  static void write_group(Part const &part, Group const &group, Head *record);

  std::array<Part, 2> parts_;
};

}  // namespace fax
