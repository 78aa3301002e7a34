#import "editor/PlanPanel.h"

#import "editor/controls.h"
#import "editor/text.h"

using namespace fax::editor;

@interface PlanPanel (Parts)
- (void)makeRemarks;
@end

@implementation PlanPanel

static CGFloat const kRemarksHeight = 180;

- (id)initWithPlan:(ImportPlan const &)plan source:(NSString *)source {
  CGFloat const height = plan.remarks.empty() ? 2 * kRow : kRemarksHeight + 2 * kRow + kGap;
  if (!(self = [super initWithTitle:EditorText(@"Import") width:620 height:height accept:EditorText(@"Import")]))
    return nil;
  _plan = &plan;
  CGFloat const inner = [self width] - 2 * kMargin;
  CGFloat const top = [self floor] + height;
  NSTextField *from = make_label(EditorFormat(@"From %@:", source));
  [from setFrame:NSMakeRect(kMargin, top - kRow, inner, 18)];
  [[from cell] setLineBreakMode:NSLineBreakByTruncatingMiddle];
  [[self content] addSubview:from];
  NSTextField *summary = make_label(ns(plan.summary()));
  [summary setFrame:NSMakeRect(kMargin, top - 2 * kRow, inner, 18)];
  [[self content] addSubview:summary];
  if (!plan.remarks.empty()) [self makeRemarks];
  bool const does_something = !plan.step.changes.empty();
  [_accept setEnabled:does_something];
  if (does_something) [self showHint:EditorText(@"The import is one step: it can be undone as a whole.")];
  [self setFocusOrder:_remarks != nil ? [NSArray arrayWithObject:_remarks] : [NSArray array]];
  return self;
}

- (void)makeRemarks {
  _remarks = [[[EditorList alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  add_column(_remarks, @"kind", EditorText(@"What"), 80);
  add_column(_remarks, @"text", EditorText(@"Why"), 900);
  NSRect const frame = NSMakeRect(kMargin, [self floor], [self width] - 2 * kMargin, kRemarksHeight);
  NSScrollView *scroll = make_list(_remarks, frame, self);
  [scroll setHasHorizontalScroller:YES];
  [[self content] addSubview:scroll];
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
  return remark.skipped ? EditorText(@"Skipped") : EditorText(@"Note");
}

- (void)listSpace:(NSTableView *)list {
}
- (void)listReturn:(NSTableView *)list {
  if ([_accept isEnabled]) [self accept:list];
}
- (void)listDelete:(NSTableView *)list {
}

@end
