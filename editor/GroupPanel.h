// Adds or edits a group: its name, and who is in it.
#pragma once
#import "editor/EditorPanel.h"

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "editor/core/contents.h"

namespace fax::editor {
// Stores the group. "" when that is done, else a sentence why not; the window stays, with what was chosen.
using SaveGroup = std::function<std::string(std::string const &name, std::set<std::uint32_t> const &members)>;
}  // namespace fax::editor

@interface GroupPanel : EditorPanel {
  struct GroupPanelState *_state;
  NSTextField *_name;
  NSTextField *_search;
  NSButton *_onlyMembers;
  NSTableView *_people;
}
// Begins with group's name and members; id 0 for a new one. save must outlive the panel.
- (id)initWithGroup:(fax::editor::Group const &)group
           contents:(std::shared_ptr<fax::editor::Contents const>)contents
               save:(fax::editor::SaveGroup const &)save;
- (BOOL)run;
@end
