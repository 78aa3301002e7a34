#import "editor/EditorWindow.h"

#import "editor/text.h"

#include <algorithm>

using namespace fax::editor;

namespace {

constexpr CGFloat kWidth = 1000, kHeight = 600;
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
  [self setTitle:EditorText(@"Address Book Editor")];
  [self makeTop];
  CGFloat const left = [self makeButtons];
  [self makeLists:left];
  [self setContentMinSize:NSMakeSize(820, 360)];
  join_focus([NSArray arrayWithObjects:people, newEntry, editEntry, deleteEntries, undo, redo, importList, exportBook,
                                       copyFromPrinter, books, search, groups, newGroup, editGroup, deleteGroup, nil]);
  [self setInitialFirstResponder:people];
  return self;
}

- (void)makeTop {
  CGFloat const y = kHeight - kMargin - kRow;
  NSView *content = [self contentView];
  books = make_pop_up(_owner, @selector(chooseBook:));
  NSButton *newBook = make_button(EditorText(@"New Book…"), _owner, @selector(newBook:), nil);
  NSButton *openBook = make_button(EditorText(@"Open…"), _owner, @selector(openBook:), EditorText(@"Ctrl+O"));
  place_in_row(content, kMargin, y,
               [NSArray arrayWithObjects:make_label(EditorText(@"Address book:")), books, newBook, openBook, nil],
               kTopLeft);
  search = make_field([NSTextField class]);
  [search setToolTip:EditorText(@"In name, number and company (Ctrl+F)")];
  [search setDelegate:(id)_owner];
  NSArray *searching = [NSArray arrayWithObjects:make_label(EditorText(@"Search:")), search, nil];
  place_in_row(content, kWidth - kMargin - width_of_row(searching), y, searching, kTopRight);
}

// Returns how wide the left column is.
- (CGFloat)makeButtons {
  NSView *content = [self contentView];
  CGFloat const y = kMargin + kRow + kGap;
  id const owner = _owner;
  auto const button = [owner](NSString *title, SEL action, NSString *tip) {
    return make_button(EditorText(title), owner, action, tip != nil ? EditorText(tip) : nil);
  };
  newGroup = button(@"New Group…", @selector(newGroup:), @"Ctrl+Shift+N");
  editGroup = button(@"Edit…", @selector(editGroup:), @"Name and members of the selected group");
  deleteGroup = button(@"Delete", @selector(deleteGroup:), @"Deletes the selected group; its members stay in the book");
  NSArray *ofGroups = [NSArray arrayWithObjects:newGroup, editGroup, deleteGroup, nil];
  place_in_row(content, kMargin, y, ofGroups, kBottomLeft);
  CGFloat const left = width_of_row(ofGroups);
  newEntry = button(@"New Entry…", @selector(newEntry:), @"Ctrl+N");
  editEntry = button(@"Edit…", @selector(editEntry:), @"Return, or a double click");
  deleteEntries = button(@"Delete", @selector(deleteEntries:), @"The Delete key");
  place_in_row(content, kMargin + left + kMargin, y,
               [NSArray arrayWithObjects:newEntry, editEntry, deleteEntries, nil], kBottomLeft);
  undo = button(@"Undo", @selector(undo:), @"Ctrl+Z");
  redo = button(@"Redo", @selector(redo:), @"Ctrl+Shift+Z");
  NSArray *steps = [NSArray arrayWithObjects:undo, redo, nil];
  place_in_row(content, kWidth - kMargin - width_of_row(steps), y, steps, kBottomRight);
  importList = button(@"Import…", @selector(importList:), @"From vCards (.vcf) or a table (.csv) of another program");
  exportBook = button(@"Export…", @selector(exportBook:), @"As vCards (.vcf) or a table (.csv)");
  copyFromPrinter = button(@"Copy from Printer…", @selector(copyFromPrinter:), nil);
  NSArray *transfers = [NSArray arrayWithObjects:importList, exportBook, copyFromPrinter, nil];
  CGFloat const right = width_of_row(transfers);
  place_in_row(content, kWidth - kMargin - right, kMargin, transfers, kBottomRight);
  status = make_label(@"");
  [status setFrame:NSMakeRect(kMargin, kMargin + 3, kWidth - 3 * kMargin - right, 18)];
  [[status cell] setLineBreakMode:NSLineBreakByTruncatingTail];
  [status setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];
  [content addSubview:status];
  return left;
}

- (void)makeLists:(CGFloat)left {
  CGFloat const y = kMargin + 2 * (kRow + kGap), height = kHeight - y - kMargin - kRow - kGap;
  groups = [[[EditorList alloc] initWithFrame:NSMakeRect(0, 0, left, height)] autorelease];
  add_column(groups, @"group", EditorText(@"Groups"), left - 22);
  [groups setAllowsEmptySelection:NO];
  [groups setDoubleAction:@selector(editGroup:)];
  NSScrollView *groupsArea = make_list(groups, NSMakeRect(kMargin, y, left, height), nil);
  [groupsArea setAutoresizingMask:NSViewHeightSizable | NSViewMaxXMargin];
  people = [[[EditorList alloc] initWithFrame:NSMakeRect(0, 0, 600, height)] autorelease];
  CGFloat const x = kMargin + left + kMargin, width = kWidth - x - kMargin;
  add_column(people, @"name", EditorText(@"Name"), 200);
  add_column(people, @"number", EditorText(@"Fax number"), 150);
  add_column(people, @"company", EditorText(@"Company"), 150);
  add_column(people, @"note", EditorText(@"Note"), width - 200 - 2 * 150 - 30);
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
