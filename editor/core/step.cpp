#include "editor/core/step.h"

#include "texts/texts.h"

#include <algorithm>
#include <map>

namespace fax::editor {
namespace {

template <typename... Cases>
struct Overloaded : Cases... {
  using Cases::operator()...;
};
template <typename... Cases>
Overloaded(Cases...) -> Overloaded<Cases...>;

MemberChange leaves(std::uint32_t group, std::uint32_t person) { return {{group}, {person}, false}; }

void turn_round(SmallChange &change) {
  std::visit(Overloaded{[](MemberChange &member) { member.joins = !member.joins; },
                        [](auto &other) { std::swap(other.before, other.after); }},
             change);
}

// What a step does to memberships that have to be all there are when somebody or a group is removed.
class Leaving {
public:
  explicit Leaving(Step const &step) {
    for (SmallChange const &change : step.changes)
      if (auto const *member = std::get_if<MemberChange>(&change); member != nullptr && !member->joins) {
        ++of_person_[member->person.id];
        ++of_group_[member->group.id];
      }
  }
  std::size_t of_person(std::uint32_t id) const { return at(of_person_, id); }
  std::size_t of_group(std::uint32_t id) const { return at(of_group_, id); }

private:
  static std::size_t at(std::map<std::uint32_t, std::size_t> const &counts, std::uint32_t id) {
    auto const found = counts.find(id);
    return found == counts.end() ? 0 : found->second;
  }
  std::map<std::uint32_t, std::size_t> of_person_, of_group_;
};

class Check {
public:
  Check(Step const &step, Contents const &contents) : contents_(contents), leaving_(step) {
    bool const removes = std::any_of(step.changes.begin(), step.changes.end(), [](SmallChange const &change) {
      auto const *person = std::get_if<PersonChange>(&change);
      return person != nullptr && !person->after;
    });
    if (!removes) return;
    for (Group const &group : contents.groups())
      for (std::uint32_t member : group.members) ++memberships_[member];
  }

  bool operator()(PersonChange const &change) {
    if (!change.before) return true;  // the store refuses what is there already
    Person const *now = contents_.person(change.before->id);
    if (now == nullptr) return fails(tr("“{0}” was deleted by another program.", change.before->name));
    if (!same(*now, *change.before))
      return fails(tr("“{0}” was changed by another program: it is now “{1}” with the number {2}.",
                      change.before->name, now->name, now->number));
    if (!change.after && memberships_[now->id] != leaving_.of_person(now->id))
      return fails(tr("Another program has changed the groups of “{0}”.", now->name));
    return true;
  }

  bool operator()(GroupChange const &change) {
    if (!change.before) return true;
    Group const *now = contents_.group(change.id);
    if (now == nullptr) return fails(tr("The group “{0}” was deleted by another program.", *change.before));
    if (now->name != *change.before)
      return fails(tr("The group “{0}” was renamed to “{1}” by another program.", *change.before, now->name));
    if (!change.after && now->members.size() != leaving_.of_group(now->id))
      return fails(tr("Another program has changed the members of the group “{0}”.", now->name));
    return true;
  }

  bool operator()(MemberChange const &change) {
    Group const *group = contents_.group(change.group.id);
    if (group == nullptr || change.person.id == 0) return true;  // of this step's own making, or the store refuses it
    if (group->has(change.person.id) == change.joins)
      return fails(tr("Another program has changed the members of the group “{0}”.", group->name));
    return true;
  }

  std::string conflict;

private:
  bool fails(std::string sentence) {
    conflict = std::move(sentence);
    return false;
  }

  Contents const &contents_;
  Leaving leaving_;
  std::map<std::uint32_t, std::size_t> memberships_;
};

class Execution {
public:
  Execution(Step &step, gad::Change &change) : step_(step), change_(change) {}

  Status operator()(PersonChange &person) {
    if (!person.after) return change_.remove(person.before->id);
    // As the store would, so that the step knows what is in the book.
    if (person.after->index_key.empty()) person.after->index_key = gad::index_key(person.after->name);
    if (person.before) return change_.replace(*person.after);
    return person.after->id == 0 ? change_.add(*person.after, &person.after->id) : change_.restore(*person.after);
  }

  Status operator()(GroupChange &group) {
    if (!group.after) return change_.remove_group(group.id);
    if (group.before) return change_.rename_group(group.id, *group.after);
    return group.id == 0 ? change_.add_group(*group.after, &group.id) : change_.restore_group(group.id, *group.after);
  }

  Status operator()(MemberChange &member) {
    bool const is_new = member.person.id == 0;
    resolve(member.group);
    resolve(member.person);
    if (!member.joins) return change_.remove_member(member.group.id, member.person.id);
    Status const status = change_.add_member(member.group.id, member.person.id);
    if (status != Status::no_member || !is_new) return status;
    member.person.id = 0;  // to be dropped
    return Status::success;
  }

private:
  void resolve(Reference &reference) {
    if (reference.id != 0) return;
    SmallChange const &maker = step_.changes[reference.made_by];
    auto const *group = std::get_if<GroupChange>(&maker);
    reference.id = group != nullptr ? group->id : std::get<PersonChange>(maker).after->id;
  }

  Step &step_;
  gad::Change &change_;
};

void add_differences(Step &step, Reference group, std::set<std::uint32_t> const &before,
                     std::set<std::uint32_t> const &after) {
  for (std::uint32_t member : before)
    if (!after.contains(member)) step.append(MemberChange{group, {member}, false});
  for (std::uint32_t member : after)
    if (!before.contains(member)) step.append(MemberChange{group, {member}, true});
}

}  // namespace

Step add_person(Person const &person) {
  Step step{tr("Add Entry"), {}};
  step.append(PersonChange{{}, person});
  std::get<PersonChange>(step.changes.front()).after->id = 0;
  return step;
}

Step edit_person(Person const &before, Person const &after) {
  Step step{tr("Edit Entry"), {}};
  step.append(PersonChange{before, after});
  return step;
}

Step remove_people(Contents const &contents, std::vector<std::uint32_t> const &ids) {
  Step step{tr_n("Delete Entry", "Delete {0} Entries", ids.size(), ids.size()), {}};
  std::set<std::uint32_t> const gone(ids.begin(), ids.end());
  for (Group const &group : contents.groups())
    for (std::uint32_t member : group.members)
      if (gone.contains(member)) step.append(leaves(group.id, member));
  for (std::uint32_t id : gone)
    if (Person const *person = contents.person(id)) step.append(PersonChange{*person, {}});
  return step;
}

Step add_group(std::string const &name, std::set<std::uint32_t> const &members) {
  Step step{tr("Add Group"), {}};
  step.append(GroupChange{0, {}, name});
  add_differences(step, {}, {}, members);
  return step;
}

Step edit_group(Group const &before, std::string const &name, std::set<std::uint32_t> const &members) {
  Step step{tr("Edit Group"), {}};
  step.append(GroupChange{before.id, before.name, name});
  add_differences(step, {before.id}, {before.members.begin(), before.members.end()}, members);
  return step;
}

Step remove_group(Group const &group) {
  Step step{tr("Delete Group"), {}};
  for (std::uint32_t member : group.members) step.append(leaves(group.id, member));
  step.append(GroupChange{group.id, group.name, {}});
  return step;
}

Step reversed(Step const &step) {
  Step back{step.title, {step.changes.rbegin(), step.changes.rend()}};
  for (SmallChange &change : back.changes) turn_round(change);
  return back;
}

bool holds(Step const &step, Contents const &contents, std::string &conflict) {
  Check check(step, contents);
  for (SmallChange const &change : step.changes)
    if (!std::visit(check, change)) {
      conflict = check.conflict;
      return false;
    }
  return true;
}

Status carry_out(Step &step, gad::Change &change) {
  Execution execution(step, change);
  for (SmallChange &each : step.changes)
    if (Status const status = std::visit(execution, each); status != Status::success) return status;
  std::erase_if(step.changes, [](SmallChange const &each) {
    auto const *member = std::get_if<MemberChange>(&each);
    return member != nullptr && member->person.id == 0;
  });
  return Status::success;
}

}  // namespace fax::editor
