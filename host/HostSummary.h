// The "Summary" panel: what will be printed and how, as a table of labels and values.
#pragma once
#import <AppKit/AppKit.h>

#include <vector>

#include "host/core/summary.h"

@interface HostSummary : NSObject {
  NSScrollView *_view;
  NSTableView *_table;
  std::vector<fax::host::SummaryRow> *_rows;
}
- (NSView *)view;
// A section's title becomes a row of its own.
- (void)showSections:(std::vector<fax::host::SummarySection> const &)sections;
@end
