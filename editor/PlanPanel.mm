#import "editor/PlanPanel.h"

#include <algorithm>

#import "editor/controls.h"
#import "toolkit/controls.h"
#import "toolkit/text.h"

using namespace fax::editor;
using namespace fax::toolkit;

@interface PlanPanel (Parts)
- (NSView *)makeRemarks;
@end

// Of the remarks; of very many the first ones.
static CGFloat widest(ImportPlan const &plan) {
  CGFloat width = 480;
  std::size_t const some = std::min<std::size_t>(plan.remarks.size(), 200);
  for (std::size_t at = 0; at < some; ++at) width = std::max(width, text_width(ns(plan.remarks[at].text)) + 16);
  return width;
}

@implementation PlanPanel

- (id)initWithPlan:(ImportPlan const &)plan source:(std::string const &)source {
  if (!(self = [super initWithTitle:ns(tr("Import")) accept:ns(tr("Import"))])) return nil;
  _plan = &plan;
  NSTextField *from = make_label(ns(tr("From {0}:", source)));
  [[from cell] setLineBreakMode:NSLineBreakByTruncatingMiddle];
  [self addField:from];
  NSTextField *summary = make_label(ns(plan.summary()));
  [self addField:summary];
  NSView *remarks = plan.remarks.empty() ? nil : [self makeRemarks];
  if (remarks != nil) [self addField:remarks];
  [self layOutWithWidth:std::max<CGFloat>(620, [summary frame].size.width + 2 * kMargin) tall:remarks];
  bool const does_something = !plan.step.changes.empty();
  [_accept setEnabled:does_something];
  if (does_something) [self showHint:ns(tr("The import is one step: it can be undone as a whole."))];
  [self setFocusOrder:_remarks != nil ? [NSArray arrayWithObject:_remarks] : [NSArray array]];
  return self;
}

- (NSView *)makeRemarks {
  _remarks = [[[EditorList alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  //: Title of a column that says "Skipped" or "Remark".
  NSString *kind = ns(tr("What"));
  CGFloat const wide = std::max(text_width(ns(tr("Skipped"))), text_width(ns(tr("Remark"))));
  add_column(_remarks, @"kind", kind, std::max(wide, text_width(kind)) + 16);
  add_column(_remarks, @"text", ns(tr("Why")), widest(*_plan));
  NSScrollView *scroll = make_list(_remarks, NSMakeRect(0, 0, 588, 180), self);
  [scroll setHasHorizontalScroller:YES];
  return scroll;
}

- (void)dealloc {
  [_remarks setDataSource:nil];
  [_remarks setDelegate:nil];
  [super dealloc];
}

- (BOOL)run {
  return [self runFrom:[_accept isEnabled] ? static_cast<NSView *>(_accept) : static_cast<NSView *>(_cancel)];
}

- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
  return static_cast<NSInteger>(_plan->remarks.size());
}

- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)column row:(NSInteger)row {
  PlanRemark const &remark = _plan->remarks[static_cast<std::size_t>(row)];
  if ([[column identifier] isEqualToString:@"text"]) return ns(remark.text);
  return remark.skipped ? ns(tr("Skipped")) : ns(tr("Remark"));
}

- (void)listSpace:(NSTableView *)list {
}
- (void)listReturn:(NSTableView *)list {
  if ([_accept isEnabled]) [self accept:list];
}
- (void)listDelete:(NSTableView *)list {
}

@end
