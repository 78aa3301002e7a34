#import "editor/EditorController.h"

#include <algorithm>
#include <ctime>
#include <optional>
#include <set>

#import "editor/EditorState.h"
#import "editor/EntryPanel.h"
#import "editor/GroupPanel.h"
#import "editor/background_work.h"
#import "toolkit/text.h"

#include "editor/core/messages.h"

using namespace fax::editor;
using namespace fax::toolkit;

static std::string saved(Step const &step) {
  //: {0} is what was done: "Add Entry".
  return tr("{0}: saved.", step.title);
}

static std::string what_now(bool is_there) {
  return is_there ? tr("Save again to replace it.") : tr("Save again to add it anew.");
}

@implementation EditorController (Edits)

// Keys come here whether or not the button is enabled.
- (BOOL)refuses:(NSButton *)button {
  if ([button isEnabled]) return NO;
  NSBeep();
  return YES;
}

- (void)showOutcome:(Outcome const &)outcome done:(std::string const &)done {
  [self showAll];
  if (outcome.made()) return [self say:done];
  tell(ns(problem_with(outcome)));
}

- (void)makeStep:(Step const &)step doing:(NSString *)what {
  Outcome outcome;
  OpenBook *book = [self book];
  run_aside(what, Cancel::impossible, [&](Share const &) { outcome = book->make(step); });
  [self showOutcome:outcome done:saved(step)];
}

- (void)undo:(id)sender {
  if ([self refuses:_window->undo]) return;
  Outcome outcome;
  OpenBook *book = [self book];
  run_aside(ns(tr("Undoing…")), Cancel::impossible, [&](Share const &) { outcome = book->undo(); });
  [self showOutcome:outcome done:tr("“{0}” was undone, and that is saved.", outcome.title)];
}

- (void)redo:(id)sender {
  if ([self refuses:_window->redo]) return;
  Outcome outcome;
  OpenBook *book = [self book];
  run_aside(ns(tr("Redoing…")), Cancel::impossible, [&](Share const &) { outcome = book->redo(); });
  [self showOutcome:outcome done:tr("“{0}” was made again, and that is saved.", outcome.title)];
}

// Stores what the panel holds. After a conflict the panel stays, and what another program has stored counts as seen.
- (std::string)savePerson:(Person const &)after instead:(std::optional<Person> &)before {
  if (before && same(*before, after)) return "";
  Step step = before ? edit_person(*before, after) : add_person(after);
  if (!before && _state->wish.group != 0) step.append(MemberChange{{_state->wish.group}, {0, 0}, true});
  Outcome const outcome = _state->book->make(step);
  if (outcome.made()) {
    auto const &made = std::get<PersonChange>(_state->book->steps().to_undo()->changes.front());
    if (!before) {
      _state->wish.search.clear();
      [_window->search setStringValue:@""];
    }
    std::vector<std::uint32_t> const selected(1, made.after->id);
    [self showAllSelecting:selected];
    [self say:saved(step)];
    return "";
  }
  [self showAll];
  if (outcome.conflict.empty() || !before) return problem_with(outcome);
  Person const *now = _state->book->contents()->person(before->id);
  before = now != nullptr ? std::optional(*now) : std::nullopt;
  return outcome.conflict + " " + what_now(now != nullptr);
}

- (void)editPerson:(Person const &)person {
  std::optional<Person> before;
  std::string groups;
  auto const contents = _state->book->contents();
  auto const name = [&](std::uint32_t id) { groups += (groups.empty() ? "" : ", ") + contents->group(id)->name; };
  if (person.id != 0) {
    before = person;
    for (std::uint32_t id : contents->groups_of(person.id)) name(id);
  } else if (_state->wish.group != 0) {
    name(_state->wish.group);
  }
  SavePerson const save = [&](Person const &after) { return [self savePerson:after instead:before]; };
  EntryPanel *panel = [[[EntryPanel alloc] initWithPerson:person
                                                   groups:groups
                                                     save:save] autorelease];
  [panel run];
}

- (void)newEntry:(id)sender {
  if ([self refuses:_window->newEntry]) return;
  Person person;
  person.registered = std::time(nullptr);
  [self editPerson:person];
}

- (void)editEntry:(id)sender {
  if ([self refuses:_window->editEntry]) return;
  if (Person const *person = _state->book->contents()->person([self selectedPeople].front())) {
    Person const copy = *person;
    [self editPerson:copy];
  }
}

- (void)deleteEntries:(id)sender {
  if ([self refuses:_window->deleteEntries]) return;
  NSInteger const row = [_window->people selectedRow];
  [self makeStep:remove_people(*_state->book->contents(), [self selectedPeople]) doing:ns(tr("Deleting…"))];
  if ([_window->people selectedRow] < 0) [self selectRow:row];
}

- (std::string)saveGroup:(std::string const &)name
                 members:(std::set<std::uint32_t> const &)members
                 instead:(std::optional<Group> &)before {
  Step const step = before ? edit_group(*before, name, members) : add_group(name, members);
  Outcome const outcome = _state->book->make(step);
  if (outcome.made()) {
    auto const &made = std::get<GroupChange>(_state->book->steps().to_undo()->changes.front());
    _state->wish.group = made.id;
    [self showAll];
    [self say:saved(step)];
    return "";
  }
  [self showAll];
  if (outcome.conflict.empty() || !before) return problem_with(outcome);
  Group const *now = _state->book->contents()->group(before->id);
  before = now != nullptr ? std::optional(*now) : std::nullopt;
  return outcome.conflict + " " + what_now(now != nullptr);
}

- (void)runGroupPanel:(Group const &)group {
  std::optional<Group> before;
  if (group.id != 0) before = group;
  SaveGroup const save = [&](std::string const &name, std::set<std::uint32_t> const &members) {
    return [self saveGroup:name members:members instead:before];
  };
  GroupPanel *panel = [[[GroupPanel alloc] initWithGroup:group contents:_state->book->contents() save:save] autorelease];
  [panel run];
}

// The selected entries are its first members.
- (void)newGroup:(id)sender {
  if ([self refuses:_window->newGroup]) return;
  Group group;
  std::vector<std::uint32_t> const selected = [self selectedPeople];
  for (std::uint32_t person : selected)
    if (person <= fax::gad::greatest_member_id) group.members.push_back(person);
  std::sort(group.members.begin(), group.members.end());
  [self runGroupPanel:group];
}

- (void)editGroup:(id)sender {
  if ([self refuses:_window->editGroup]) return;
  if (Group const *group = _state->book->contents()->group(_state->wish.group)) {
    Group const copy = *group;
    [self runGroupPanel:copy];
  }
}

- (void)deleteGroup:(id)sender {
  if ([self refuses:_window->deleteGroup]) return;
  if (Group const *group = _state->book->contents()->group(_state->wish.group))
    [self makeStep:remove_group(*group) doing:ns(tr("Deleting…"))];
}

@end
