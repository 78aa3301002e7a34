#import "editor/EditorWindow.h"

#import "toolkit/controls.h"
#import "toolkit/text.h"

#include <algorithm>

using namespace fax::editor;
using namespace fax::toolkit;

namespace {

constexpr CGFloat kWidth = 1000, kHeight = 600, kStatusWidth = 240, kScroller = 30;
constexpr NSUInteger kTopLeft = NSViewMaxXMargin | NSViewMinYMargin;
constexpr NSUInteger kTopRight = NSViewMinXMargin | NSViewMinYMargin;
constexpr NSUInteger kBottomLeft = NSViewMaxXMargin | NSViewMaxYMargin;
constexpr NSUInteger kBottomRight = NSViewMinXMargin | NSViewMaxYMargin;

CGFloat width_of_row(NSArray *views) {
  CGFloat width = -kGap;
  for (NSUInteger at = 0; at < [views count]; ++at) width += [[views objectAtIndex:at] frame].size.width + kGap;
  return width;
}

}  // namespace

@interface EditorWindow (Parts)
- (CGFloat)width;
- (CGFloat)height;
- (void)widenTo:(CGFloat)row;
- (void)makeTop;
- (CGFloat)makeButtons;
- (void)makeLists:(CGFloat)left;
@end

@implementation EditorWindow

- (id)initWithOwner:(id<EditorWindowActions, EditorEditActions, EditorTransferActions>)owner {
  if (!(self = [super initWithContentRect:NSMakeRect(0, 0, kWidth, kHeight)
                                styleMask:NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask |
                                          NSResizableWindowMask
                                  backing:NSBackingStoreBuffered
                                    defer:NO]))
    return nil;
  _owner = owner;
  [self setReleasedWhenClosed:NO];
  [self setTitle:ns(tr("Address Book Editor"))];
  [self makeTop];
  CGFloat const left = [self makeButtons];
  [self makeLists:left];
  [self setContentMinSize:NSMakeSize(_least, 360)];
  join_focus([NSArray arrayWithObjects:people, newEntry, editEntry, deleteEntries, undo, redo, importList, exportBook,
                                       copyFromPrinter, books, newBook, openBook, search, groups, newGroup, editGroup,
                                       deleteGroup, nil]);
  [self setInitialFirstResponder:people];
  return self;
}

- (CGFloat)width {
  return [[self contentView] frame].size.width;
}
- (CGFloat)height {
  return [[self contentView] frame].size.height;
}

// The window is never narrower than this row of controls.
- (void)widenTo:(CGFloat)row {
  _least = std::max(_least, row + 2 * kMargin);
  if (_least > [self width]) [self setContentSize:NSMakeSize(_least, [self height])];
}

- (void)makeTop {
  books = make_pop_up(_owner, @selector(chooseBook:));
  newBook = make_button(ns(tr("New Book…")), _owner, @selector(newBook:));
  openBook = make_button(ns(tr("Open…")), _owner, @selector(openBook:), @"Ctrl+O");
  search = make_field([NSTextField class]);
  [search setToolTip:ns(tr("In name, number and company ({0})", "Ctrl+F"))];
  [search setDelegate:(id)_owner];
  NSArray *choosing = [NSArray arrayWithObjects:make_label(ns(tr("Address book:"))), books, newBook, openBook, nil];
  NSArray *searching = [NSArray arrayWithObjects:make_label(ns(tr("Search:"))), search, nil];
  [self widenTo:width_of_row(choosing) + kMargin + width_of_row(searching)];
  CGFloat const y = [self height] - kMargin - row_height();
  place_in_row([self contentView], kMargin, y, choosing, kTopLeft);
  place_in_row([self contentView], [self width] - kMargin - width_of_row(searching), y, searching, kTopRight);
}

// Returns how wide the left column is.
- (CGFloat)makeButtons {
  NSView *content = [self contentView];
  id const owner = _owner;
  auto const button = [owner](std::string const &title, SEL action, std::string const &tip) {
    return make_button(ns(title), owner, action, ns(tip));
  };
  newGroup = button(tr("New Group…"), @selector(newGroup:), "Ctrl+Shift+N");
  editGroup = button(tr("Edit…"), @selector(editGroup:), tr("Name and members of the selected group"));
  deleteGroup = button(tr("Delete"), @selector(deleteGroup:), tr("Deletes the selected group; its members stay in the book"));
  NSArray *ofGroups = [NSArray arrayWithObjects:newGroup, editGroup, deleteGroup, nil];
  newEntry = button(tr("New Entry…"), @selector(newEntry:), "Ctrl+N");
  editEntry = button(tr("Edit…"), @selector(editEntry:), tr("Return, or a double click"));
  deleteEntries = button(tr("Delete"), @selector(deleteEntries:), tr("The Delete key"));
  NSArray *ofEntries = [NSArray arrayWithObjects:newEntry, editEntry, deleteEntries, nil];
  undo = button(tr("Undo"), @selector(undo:), "Ctrl+Z");
  redo = button(tr("Redo"), @selector(redo:), "Ctrl+Shift+Z");
  NSArray *steps = [NSArray arrayWithObjects:undo, redo, nil];
  importList = button(tr("Import…"), @selector(importList:), tr("From vCards (.vcf) or a table (.csv) of another program"));
  exportBook = button(tr("Export…"), @selector(exportBook:), tr("As vCards (.vcf) or a table (.csv)"));
  copyFromPrinter = button(tr("Copy from Printer…"), @selector(copyFromPrinter:), "");
  NSArray *transfers = [NSArray arrayWithObjects:importList, exportBook, copyFromPrinter, nil];
  CGFloat const left = width_of_row(ofGroups), right = width_of_row(transfers);
  [self widenTo:left + kMargin + width_of_row(ofEntries) + kMargin + width_of_row(steps)];
  [self widenTo:kStatusWidth + kMargin + right];

  CGFloat const y = kMargin + row_height() + kGap;
  place_in_row(content, kMargin, y, ofGroups, kBottomLeft);
  place_in_row(content, kMargin + left + kMargin, y, ofEntries, kBottomLeft);
  place_in_row(content, [self width] - kMargin - width_of_row(steps), y, steps, kBottomRight);
  place_in_row(content, [self width] - kMargin - right, kMargin, transfers, kBottomRight);
  status = make_label(@"");
  place_in_row(content, kMargin, kMargin, [NSArray arrayWithObject:status], NSViewWidthSizable | NSViewMaxYMargin);
  [status setFrameSize:NSMakeSize([self width] - 3 * kMargin - right, [status frame].size.height)];
  [[status cell] setLineBreakMode:NSLineBreakByTruncatingTail];
  return left;
}

- (void)makeLists:(CGFloat)left {
  CGFloat const y = kMargin + 2 * (row_height() + kGap), height = [self height] - y - kMargin - row_height() - kGap;
  groups = [[[EditorList alloc] initWithFrame:NSMakeRect(0, 0, left, height)] autorelease];
  add_column(groups, @"group", ns(tr("Groups")), left - kScroller);
  [groups setAllowsEmptySelection:NO];
  [groups setDoubleAction:@selector(editGroup:)];
  NSScrollView *groupsArea = make_list(groups, NSMakeRect(kMargin, y, left, height), nil);
  [groupsArea setAutoresizingMask:NSViewHeightSizable | NSViewMaxXMargin];
  people = [[[EditorList alloc] initWithFrame:NSMakeRect(0, 0, 600, height)] autorelease];
  CGFloat const x = kMargin + left + kMargin, width = [self width] - x - kMargin;
  CGFloat rest = width - kScroller;
  rest -= [add_column(people, @"name", ns(tr("Name")), 200) width];
  rest -= [add_column(people, @"number", ns(tr("Fax number")), 150) width];
  rest -= [add_column(people, @"company", ns(tr("Company")), 150) width];
  add_column(people, @"note", ns(tr("Note")), rest);
  [people setAllowsMultipleSelection:YES];
  [people setDoubleAction:@selector(editEntry:)];
  NSScrollView *peopleArea = make_list(people, NSMakeRect(x, y, width, height), nil);
  [peopleArea setAutoresizingMask:NSViewHeightSizable | NSViewWidthSizable];
  [[self contentView] addSubview:groupsArea];
  [[self contentView] addSubview:peopleArea];
}

- (void)connectLists {
  NSTableView *const lists[] = {groups, people};
  for (NSTableView *list : lists) {
    [list setDelegate:(id)_owner];
    [list setTarget:_owner];
    [list setDataSource:(id)_owner];
  }
}

- (void)disconnect {
  [self setDelegate:nil];
  [search setDelegate:nil];
  NSTableView *const lists[] = {groups, people};
  for (NSTableView *list : lists) {
    [list setDataSource:nil];
    [list setDelegate:nil];
  }
}

- (BOOL)editsText {
  return [[self firstResponder] isKindOfClass:[NSTextView class]];
}

// The character of a key with Control or Command held; 0 for any other.
static unichar ShortcutOf(NSEvent *event) {
  if ([event type] != NSKeyDown) return 0;
  if (([event modifierFlags] & (NSControlKeyMask | NSCommandKeyMask)) == 0) return 0;
  NSString *characters = [[event charactersIgnoringModifiers] lowercaseString];
  if ([characters length] == 0) return 0;
  unichar const key = [characters characterAtIndex:0];
  return key < ' ' ? key + 'a' - 1 : key;  // the X server gives the control character itself
}

- (BOOL)takesShortcut:(NSEvent *)event {
  bool const shift = ([event modifierFlags] & NSShiftKeyMask) != 0;
  switch (ShortcutOf(event)) {
    case 'n': shift ? [_owner newGroup:self] : [_owner newEntry:self]; return YES;
    case 'o': [_owner openBook:self]; return YES;
    case 'f': [search selectText:self]; return YES;
    case 'z':
      if ([self editsText]) return NO;
      shift ? [_owner redo:self] : [_owner undo:self];
      return YES;
    case 'a':
      if ([self editsText]) return NO;
      [people selectAll:self];
      return YES;
    case 'w':
    case 'q': [self performClose:self]; return YES;
    default: return NO;
  }
}

// Escape empties the search; Return and the arrow down go on to what was found.
- (BOOL)leavesSearch:(NSEvent *)event {
  if ([event type] != NSKeyDown || ![self editsText] || [[event characters] length] == 0) return NO;
  switch ([[event characters] characterAtIndex:0]) {
    case 033:
      [search setStringValue:@""];
      [[NSNotificationCenter defaultCenter] postNotificationName:NSControlTextDidChangeNotification object:search];
      [self makeFirstResponder:people];
      return YES;
    case NSCarriageReturnCharacter:
    case NSEnterCharacter:
    case NSDownArrowFunctionKey: [self makeFirstResponder:people]; return YES;
    default: return NO;
  }
}

- (void)sendEvent:(NSEvent *)event {
  if ([self takesShortcut:event] || [self leavesSearch:event]) return;
  [super sendEvent:event];
}

@end
