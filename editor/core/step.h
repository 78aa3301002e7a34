// One edit of a book as a list of small changes, each with what was before and what is after, so that it can be checked
// against the book, carried out, and turned round.
#pragma once

#include "editor/core/contents.h"

#include <optional>
#include <set>
#include <string>
#include <variant>
#include <vector>

namespace fax::editor {

// Added (only after), removed (only before) or edited. An id of 0 in after: the book gives one, and it is kept here.
struct PersonChange {
  std::optional<Person> before, after;
};
struct GroupChange {
  std::uint32_t id = 0;
  std::optional<std::string> before, after;
};

// Somebody who is in the book, or (id 0) whom the change at this place of the same step adds.
struct Reference {
  std::uint32_t id = 0;
  std::size_t made_by = 0;
};
struct MemberChange {
  Reference group, person;
  bool joins = true;
};

using SmallChange = std::variant<PersonChange, GroupChange, MemberChange>;

struct Step {
  std::string title;  // in the user's language, after "Undo": "Delete 3 Entries"
  std::vector<SmallChange> changes;

  template <typename Change>
  void append(Change change) {
    changes.emplace_back(std::in_place_type<Change>, std::move(change));
  }
};

Step add_person(Person const &person);
// before is the person as the user saw it.
Step edit_person(Person const &before, Person const &after);
Step remove_people(Contents const &contents, std::vector<std::uint32_t> const &ids);
Step add_group(std::string const &name, std::set<std::uint32_t> const &members);
Step edit_group(Group const &before, std::string const &name, std::set<std::uint32_t> const &members);
Step remove_group(Group const &group);

// The step that undoes this one, once this one was carried out.
Step reversed(Step const &step);

// Whether all that the step says of before is so; else conflict is a sentence with what another program has changed.
bool holds(Step const &step, Contents const &contents, std::string &conflict);

// Carries it out inside change, and puts the ids that the book gave into the step. A member that no group can take (its
// id is too great) is left out of the step when the step adds that person itself.
Status carry_out(Step &step, gad::Change &change);

}  // namespace fax::editor
