// What an address book holds, at one moment.
#pragma once

#include "quoltanis/gad_file.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace fax::editor {

using Person = gad::Individual;

bool same(Person const &one, Person const &other);

struct Group {
  std::uint32_t id = 0;
  std::string name;
  std::vector<std::uint32_t> members;  // ids of people, ascending

  bool has(std::uint32_t person) const;
};

// Never changed once it is read, so any thread may hold one.
class Contents {
public:
  // All of a book. contents is unchanged by a failure.
  static Status read(gad::File const &file, Contents &contents);

  std::vector<Person> const &people() const { return people_; }  // by id
  std::vector<Group> const &groups() const { return groups_; }   // by id

  // nullptr when there is none; lives as long as this.
  Person const *person(std::uint32_t id) const;
  Group const *group(std::uint32_t id) const;
  std::vector<std::uint32_t> groups_of(std::uint32_t person) const;

  // What a search looks into: name and company in one case, and the number, of the person at this place of people().
  std::string_view searched_text(std::size_t place) const;
  // The name in one case.
  std::string_view folded_name(std::size_t place) const;

private:
  struct Searched {
    std::string text;
    std::size_t name_length;
  };
  std::vector<Person> people_;
  std::vector<Searched> searched_;
  std::vector<Group> groups_;
};

}  // namespace fax::editor
