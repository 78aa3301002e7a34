// Asks for one line of text: the name of a book, a password.
#pragma once
#import "editor/EditorPanel.h"

#include <functional>
#include <string>

namespace fax::editor {
// A sentence why the text will not do; "" when it does.
using CheckText = std::function<std::string(std::string const &)>;
}  // namespace fax::editor

@interface NamePanel : EditorPanel {
  struct NamePanelState *_state;
  NSTextField *_field;
}
// hint stands below the field. check must outlive the panel.
- (id)initWithTitle:(NSString *)title
              label:(NSString *)label
             accept:(NSString *)accept
               hint:(NSString *)hint
             secret:(BOOL)secret
              check:(fax::editor::CheckText const &)check;
- (BOOL)run;
- (std::string)text;
@end
