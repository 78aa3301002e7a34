// Adds or edits an individual.
#pragma once
#import "editor/EditorPanel.h"

#include <functional>
#include <string>

#include "editor/core/contents.h"

namespace fax::editor {
// Stores the person. "" when that is done, else a sentence why not; the window stays, with what was typed.
using SavePerson = std::function<std::string(Person const &)>;
}  // namespace fax::editor

@interface EntryPanel : EditorPanel {
  struct EntryPanelState *_state;
  NSTextField *_name;
  NSTextField *_number;
  NSTextField *_company;
  NSTextView *_note;
}
// Begins with person's texts; id 0 for a new one. save must outlive the panel.
- (id)initWithPerson:(fax::editor::Person const &)person
              groups:(std::string const &)groups
                save:(fax::editor::SavePerson const &)save;
- (BOOL)run;
@end
