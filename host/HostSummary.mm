#import "host/HostSummary.h"

#import "host/controls.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

// A section's title is kept as a row whose value is this; no value of a panel holds a NUL.
static std::string const kTitleMark(1, '\0');

@interface HostSummary ()
- (void)addColumn:(NSString *)identifier title:(NSString *)title width:(CGFloat)width;
@end

@implementation HostSummary

- (id)init {
  if (!(self = [super init])) return nil;
  _rows = new std::vector<SummaryRow>;
  NSRect const frame = NSMakeRect(0, 0, 400, 200);
  _view = [[NSScrollView alloc] initWithFrame:frame];
  [_view setHasVerticalScroller:YES];
  [_view setAutohidesScrollers:YES];
  [_view setBorderType:NSBezelBorder];
  [_view setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  _table = [[NSTableView alloc] initWithFrame:frame];
  //: The headings of a table.
  [self addColumn:@"label" title:ns(tr("Setting")) width:150];
  [self addColumn:@"value" title:ns(tr("Value")) width:240];
  [_table setColumnAutoresizingStyle:NSTableViewLastColumnOnlyAutoresizingStyle];
  [_table setRowHeight:20];
  [_table setAllowsEmptySelection:YES];
  [_table setDataSource:(id)self];
  [_table setDelegate:(id)self];
  [_view setDocumentView:_table];
  return self;
}

- (void)dealloc {
  [_table setDataSource:nil];
  [_table setDelegate:nil];
  [_table release];
  [_view release];
  delete _rows;
  [super dealloc];
}

- (void)addColumn:(NSString *)identifier title:(NSString *)title width:(CGFloat)width {
  NSTableColumn *column = [[[NSTableColumn alloc] initWithIdentifier:identifier] autorelease];
  [[column headerCell] setStringValue:title];
  [column setWidth:width];
  [column setEditable:NO];
  [_table addTableColumn:column];
}

- (NSView *)view {
  return _view;
}

- (void)showSections:(std::vector<SummarySection> const &)sections {
  _rows->clear();
  for (auto const &section : sections) {
    _rows->push_back({section.title, kTitleMark});
    _rows->insert(_rows->end(), section.rows.begin(), section.rows.end());
  }
  CGFloat widest = 120;
  for (auto const &row : *_rows) widest = std::max(widest, std::ceil(text_width(ns(row.label)) * 1.2) + 8);
  [[_table tableColumnWithIdentifier:@"label"] setWidth:std::min(widest, std::floor([_view contentSize].width / 2))];
  [_table sizeLastColumnToFit];
  [_table reloadData];
}

- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
  return static_cast<NSInteger>(_rows->size());
}

- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)column row:(NSInteger)row {
  SummaryRow const &shown = _rows->at(static_cast<std::size_t>(row));
  if ([[column identifier] isEqual:@"label"]) return ns(shown.label);
  return shown.value == kTitleMark ? @"" : ns(shown.value);
}

- (void)tableView:(NSTableView *)table
    willDisplayCell:(id)cell
     forTableColumn:(NSTableColumn *)column
                row:(NSInteger)row {
  bool const title = _rows->at(static_cast<std::size_t>(row)).value == kTitleMark;
  [cell setFont:title ? [NSFont boldSystemFontOfSize:0] : [NSFont systemFontOfSize:0]];
}

- (BOOL)tableView:(NSTableView *)table shouldSelectRow:(NSInteger)row {
  return _rows->at(static_cast<std::size_t>(row)).value != kTitleMark;
}

@end
