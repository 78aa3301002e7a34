#import "editor/GroupPanel.h"

#import "editor/controls.h"
#import "toolkit/controls.h"
#import "toolkit/text.h"

#include <vector>

#include "editor/core/entry_rules.h"
#include "editor/core/rows.h"
#include "gad/contact_rules.h"

using namespace fax::editor;
using namespace fax::toolkit;

struct GroupPanelState {
  std::shared_ptr<Contents const> contents;
  SaveGroup const &save;
  std::string name;
  std::set<std::uint32_t> members;
  Rows found;                      // by the search
  std::vector<std::size_t> shown;  // rows of found
};

@interface GroupPanel (Parts)
- (NSView *)makeList;
- (void)show:(id)sender;
- (void)toggle:(NSInteger)row;
@end

@implementation GroupPanel

- (id)initWithGroup:(Group const &)group contents:(std::shared_ptr<Contents const>)contents save:(SaveGroup const &)save {
  NSString *title = group.id == 0 ? ns(tr("New Group")) : ns(tr("Edit Group"));
  if (!(self = [super initWithTitle:title accept:ns(tr("Save"))])) return nil;
  _state = new GroupPanelState{std::move(contents), save, group.name,
                               {group.members.begin(), group.members.end()}, {}, {}};
  _name = make_field([NSTextField class]);
  [_name setStringValue:ns(group.name)];
  _search = make_field([NSTextField class]);
  [_search setDelegate:(id)self];
  _onlyMembers = [[[NSButton alloc] initWithFrame:NSMakeRect(0, 0, 200, row_height())] autorelease];
  [_onlyMembers setButtonType:NSSwitchButton];
  [_onlyMembers setFont:[NSFont systemFontOfSize:0]];
  [_onlyMembers setTitle:ns(tr("Show members only"))];
  [_onlyMembers setTarget:self];
  [_onlyMembers setAction:@selector(show:)];
  [self addField:_name label:ns(tr("Group name:"))];
  [self addField:_search label:ns(tr("Search:"))];
  [self addField:_onlyMembers label:@""];
  NSView *list = [self makeList];
  [self addField:list];
  [self layOutWithWidth:520 tall:list];
  [self setFocusOrder:[NSArray arrayWithObjects:_name, _search, _onlyMembers, _people, nil]];
  [self show:nil];
  return self;
}

- (NSView *)makeList {
  _people = [[[EditorList alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  NSTableColumn *member = add_column(_people, @"member", @"", 28);
  NSButtonCell *box = [[[NSButtonCell alloc] init] autorelease];
  [box setButtonType:NSSwitchButton];
  [box setTitle:@""];
  [member setDataCell:box];
  [member setEditable:YES];
  add_column(_people, @"name", ns(tr("Name")), 250);
  add_column(_people, @"number", ns(tr("Fax number")), 170);
  [_people setToolTip:ns(tr("The space bar puts the selected entry into the group, or out of it."))];
  return make_list(_people, NSMakeRect(0, 0, 488, 240), self);
}

- (void)dealloc {
  [_search setDelegate:nil];
  [_people setDataSource:nil];
  [_people setDelegate:nil];
  delete _state;
  [super dealloc];
}

- (BOOL)run {
  return [self runFrom:_name];
}

- (void)countMembers {
  [self showHint:ns(tr_n("{0} member", "{0} members", _state->members.size(), _state->members.size()))];
}

- (void)show:(id)sender {
  Wish wish;
  wish.search = utf8([_search stringValue]);
  _state->found = Rows(_state->contents, wish);
  _state->shown.clear();
  bool const all = [_onlyMembers state] != NSOnState;
  for (std::size_t row = 0; row < _state->found.count(); ++row)
    if (all || _state->members.contains(_state->found.person(row).id)) _state->shown.push_back(row);
  [_people deselectAll:nil];
  [_people reloadData];
  [self countMembers];
}

- (void)controlTextDidChange:(NSNotification *)notification {
  [self show:nil];
}

- (Person const *)personAt:(NSInteger)row {
  if (row < 0 || static_cast<std::size_t>(row) >= _state->shown.size()) return nullptr;
  return &_state->found.person(_state->shown[static_cast<std::size_t>(row)]);
}

- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
  return static_cast<NSInteger>(_state->shown.size());
}

- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)column row:(NSInteger)row {
  Person const *person = [self personAt:row];
  if (person == nullptr) return nil;
  NSString *which = [column identifier];
  if ([which isEqualToString:@"member"]) return [NSNumber numberWithBool:_state->members.contains(person->id)];
  return ns([which isEqualToString:@"name"] ? person->name : person->number);
}

- (void)tableView:(NSTableView *)table setObjectValue:(id)value forTableColumn:(NSTableColumn *)column row:(NSInteger)row {
  [self toggle:row];
}

- (void)toggle:(NSInteger)row {
  Person const *person = [self personAt:row];
  if (person == nullptr) return;
  if (_state->members.erase(person->id) == 0) {
    if (person->id > fax::gad::greatest_member_id)
      return [self showError:ns(tr("This entry cannot be in a group: the book has too many entries."))];
    _state->members.insert(person->id);
  }
  [_people setNeedsDisplay:YES];
  [self countMembers];
}

- (void)listSpace:(NSTableView *)list {
  [self toggle:[list selectedRow]];
}
- (void)listReturn:(NSTableView *)list {
  [self accept:list];
}
- (void)listDelete:(NSTableView *)list {
  Person const *person = [self personAt:[list selectedRow]];
  if (person != nullptr && _state->members.contains(person->id)) [self toggle:[list selectedRow]];
}

- (BOOL)accepts {
  std::string name = utf8([_name stringValue]);
  if (name != _state->name) name = one_line(name);
  auto const fault = fax::tool::fault_of_group(name);
  std::string const problem = fault ? *fault : _state->save(name, _state->members);
  if (problem.empty()) return YES;
  [self showError:ns(problem)];
  [_panel makeFirstResponder:_name];
  return NO;
}

@end
