// Shows what an import would do before it is done.
#pragma once
#import "editor/EditorPanel.h"

#include <string>

#include "editor/core/import_plan.h"

@interface PlanPanel : EditorPanel {
  fax::editor::ImportPlan const *_plan;
  NSTableView *_remarks;
}
// The plan must outlive the panel. source names where the entries come from.
- (id)initWithPlan:(fax::editor::ImportPlan const &)plan source:(std::string const &)source;
- (BOOL)run;
@end
