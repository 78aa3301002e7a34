#import "editor/EditorController.h"

#include <algorithm>
#include <unistd.h>
#include <vector>

#import "editor/EditorState.h"
#import "editor/NamePanel.h"
#import "editor/background_work.h"
#import "toolkit/gnustep_texts.h"
#import "toolkit/text.h"

#include "editor/core/messages.h"

using namespace fax::editor;
using namespace fax::toolkit;

static NSString *const kLastBook = @"LastBook";
static NSTimeInterval const kLookAgain = 1;
// A window that comes while the window manager still brings up the first one may be left without the keyboard.
static NSTimeInterval const kSettled = 0.5;

@implementation EditorController

- (id)initWithCommandLine:(CommandLine const &)line {
  if (!(self = [super init])) return nil;
  _state = new EditorState;
  _state->line = line;
  _state->elsewhere = line.books;
  return self;
}

- (void)dealloc {
  [_timer invalidate];
  [_window disconnect];
  [_window release];
  delete _state;
  [super dealloc];
}

- (OpenBook *)book {
  return _state->book.get();
}

- (CommandLine const &)commandLine {
  return _state->line;
}

// Start and end.

- (void)applicationDidFinishLaunching:(NSNotification *)notification {
  _window = [[EditorWindow alloc] initWithOwner:self];
  [_window connectLists];
  [_window setDelegate:(id)self];
  [_window center];
  [_window setFrameAutosaveName:@"AddressBookEditor"];
  [self prepareCopyButton];
  [self showAll];
  [self openFirstBook];  // before the window is there: no key is typed at an editor without a book
  [_window makeKeyAndOrderFront:nil];
  [NSApp activateIgnoringOtherApps:YES];
  _timer = [NSTimer scheduledTimerWithTimeInterval:kLookAgain
                                            target:self
                                          selector:@selector(lookAgain:)
                                          userInfo:nil
                                           repeats:YES];
  [self performSelector:@selector(importGivenLists) withObject:nil afterDelay:kSettled];
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication *)application {
  return YES;
}

- (void)windowWillClose:(NSNotification *)notification {
  [NSApp terminate:nil];
}

// The toolkit's own clean-up at exit waits for its daemons, and a thread may still be asking a printer. Every edit is on
// the disk.
- (void)applicationWillTerminate:(NSNotification *)notification {
  [_window saveFrameUsingName:[_window frameAutosaveName]];
  [[NSUserDefaults standardUserDefaults] synchronize];
  _exit(0);
}

- (void)prepareCopyButton {
  bool const usb = _state->line.connection == Connection::usb;
  NSString *tip = usb ? ns(tr("A printer on USB has no address to read its book from."))
                      : ns(tr("Start the editor from the fax panel of a network printer for this."));
  if (!_state->line.address.empty())
    tip = ns(tr("From the address book of the printer at {0}", _state->line.address));
  [_window->copyFromPrinter setToolTip:tip];
}

- (void)openFirstBook {
  if (!_state->line.books.empty()) {
    [self openPath:_state->line.books.front()];
    return;
  }
  if (_state->books.empty()) return;
  std::string const last = utf8([[NSUserDefaults standardUserDefaults] stringForKey:kLastBook]);
  bool const known = std::any_of(_state->books.begin(), _state->books.end(),
                                 [&](BookPlace const &book) { return book.path == last; });
  [self openPath:known ? last : _state->books.front().path];
}

// Books.

// The book that is open stays when this one cannot be opened.
- (void)openPath:(std::string const &)path {
  std::unique_ptr<OpenBook> opened;
  fax::Status status = fax::Status::unexpected;
  run_aside(ns(tr("Opening the address book…")), Cancel::impossible,
            [&](Share const &) { status = OpenBook::open(path, opened); });
  if (status != fax::Status::success) {
    [self showBooks];
    tell(ns(path + ": " + sentence_about(status)));
    return;
  }
  _state->book = std::move(opened);
  _state->trouble = fax::Status::success;
  _state->wish = {};
  if (std::find(_state->elsewhere.begin(), _state->elsewhere.end(), path) == _state->elsewhere.end())
    _state->elsewhere.push_back(path);
  [[NSUserDefaults standardUserDefaults] setObject:ns(path) forKey:kLastBook];
  [_window->search setStringValue:@""];
  [self showAll];
  [self selectRow:0];
  [_window makeFirstResponder:_window->people];
  [self say:_state->book->can_change() ? "" : tr("This address book can only be read.")];
}

- (void)newBook:(id)sender {
  std::string const folder = fax::gad::folder();
  std::string path;
  CheckText const create = [&](std::string const &name) -> std::string {
    if (std::string const fault = fault_of_book_name(name); !fault.empty()) return fault;
    fax::Status const status = create_book(folder, name, path);
    return status == fax::Status::success ? "" : sentence_about(status);
  };
  NamePanel *panel = [[[NamePanel alloc] initWithTitle:ns(tr("New Address Book"))
                                                 label:ns(tr("Name:"))
                                                accept:ns(tr("Create"))
                                                  hint:ns(tr("In the folder {0}", folder))
                                                secret:NO
                                                 check:create] autorelease];
  if ([panel run]) [self openPath:path];
}

- (void)openBook:(id)sender {
  NSOpenPanel *panel = [NSOpenPanel openPanel];
  [panel setTitle:ns(tr("Open"))];
  [panel setAllowsMultipleSelection:NO];
  fit_buttons(panel);
  NSArray *types = [NSArray arrayWithObject:@"gad"];
  if ([panel runModalForDirectory:ns(fax::gad::folder()) file:nil types:types] == NSOKButton)
    [self openPath:utf8([panel filename])];
}

- (void)chooseBook:(id)sender {
  NSInteger const at = [_window->books indexOfSelectedItem];
  if (at < 0 || static_cast<std::size_t>(at) >= _state->books.size()) return;
  std::string const path = _state->books[static_cast<std::size_t>(at)].path;
  if (_state->book == nullptr || _state->book->path() != path) [self openPath:path];
}

// Other programs make books, and change this one.
- (void)lookAgain:(NSTimer *)timer {
  [self showBooks];
  if (_state->book == nullptr) return;
  bool changed = false;
  fax::Status const status = _state->book->refresh(changed);
  if (changed) {
    [self showAll];
    [self say:tr("Another program has changed this address book; it is shown as it is now.")];
  }
  if (status != _state->trouble) [self say:status == fax::Status::success ? "" : sentence_about(status)];
  _state->trouble = status;
}

- (void)windowDidBecomeKey:(NSNotification *)notification {
  if (_timer != nil) [self lookAgain:nil];
}

// What is shown.

- (void)say:(std::string const &)sentence {
  std::string text = sentence;
  if (text.empty() && _state->book != nullptr) {
    std::size_t const shown = _state->rows.count(), all = _state->book->contents()->people().size();
    text = shown == all ? tr_n("{0} entry", "{0} entries", all, all)
                        : tr_n("{0} of {1} entry", "{0} of {1} entries", all, shown, all);
  }
  [_window->status setStringValue:ns(text)];
  [_window->status setToolTip:ns(text)];  // it may be longer than the room for it
}

- (void)showBooks {
  std::vector<BookPlace> books = known_books(fax::gad::folder(), _state->elsewhere);
  auto const alike = [](BookPlace const &one, BookPlace const &other) {
    return one.path == other.path && one.title == other.title;
  };
  NSPopUpButton *popUp = _window->books;
  if (!std::equal(books.begin(), books.end(), _state->books.begin(), _state->books.end(), alike)) {
    [popUp removeAllItems];
    for (BookPlace const &book : books) [[popUp menu] addItemWithTitle:ns(book.title) action:NULL keyEquivalent:@""];
    _state->books = std::move(books);
  }
  [popUp setEnabled:!_state->books.empty()];
  std::string const open = _state->book != nullptr ? _state->book->path() : "";
  auto const found = std::find_if(_state->books.begin(), _state->books.end(),
                                  [&](BookPlace const &book) { return book.path == open; });
  NSInteger const at = found == _state->books.end() ? -1 : found - _state->books.begin();
  if ([popUp indexOfSelectedItem] != at) [popUp selectItemAtIndex:at];
}

- (void)showGroups {
  _state->groups.clear();
  if (_state->book != nullptr) _state->groups = groups_by_name(*_state->book->contents());
  auto const found = std::find(_state->groups.begin(), _state->groups.end(), _state->wish.group);
  if (found == _state->groups.end()) _state->wish.group = 0;
  NSInteger const row = _state->wish.group == 0 ? 0 : 1 + (found - _state->groups.begin());
  [_window->groups reloadData];
  if (_state->book != nullptr)
    [_window->groups selectRowIndexes:[NSIndexSet indexSetWithIndex:static_cast<NSUInteger>(row)]
                 byExtendingSelection:NO];
}

- (NSString *)emptyText {
  if (_state->book == nullptr)
    //: The quoted words are the title of a button.
    return ns(_state->books.empty() ? tr("There is no address book yet.\n“New Book…” makes one.")
                                    : tr("No address book is open."));
  if (!_state->wish.search.empty()) return ns(tr("Nothing is found for “{0}”.", _state->wish.search));
  //: The quoted words are the title of a button.
  if (_state->wish.group != 0) return ns(tr("Nobody is in this group.\n“Edit…” below the groups chooses members."));
  //: The quoted words are the titles of buttons.
  return ns(tr("This address book is empty.\n“New Entry…” adds somebody, “Import…” takes over a list."));
}

- (void)showPeople:(std::vector<std::uint32_t> const &)selected {
  _state->rows = _state->book != nullptr ? Rows(_state->book->contents(), _state->wish) : Rows();
  [_window->people setEmptyText:[self emptyText]];
  [_window->people reloadData];
  NSMutableIndexSet *rows = [NSMutableIndexSet indexSet];
  for (std::size_t row : _state->rows.rows_of(selected)) [rows addIndex:row];
  [_window->people selectRowIndexes:rows byExtendingSelection:NO];
  if ([rows count] > 0) [_window->people scrollRowToVisible:static_cast<NSInteger>([rows firstIndex])];
}

- (void)showButtons {
  bool const open = _state->book != nullptr, can = open && _state->book->can_change();
  NSInteger const chosen = open ? [_window->people numberOfSelectedRows] : 0;
  [_window->newEntry setEnabled:can];
  [_window->editEntry setEnabled:can && chosen == 1];
  [_window->deleteEntries setEnabled:can && chosen > 0];
  [_window->newGroup setEnabled:can];
  [_window->editGroup setEnabled:can && _state->wish.group != 0];
  [_window->deleteGroup setEnabled:can && _state->wish.group != 0];
  [_window->search setEnabled:open];
  [_window->importList setEnabled:can];
  [_window->exportBook setEnabled:open];
  [_window->copyFromPrinter setEnabled:can && !_state->line.address.empty()];
  Step const *undo = open ? _state->book->steps().to_undo() : nullptr;
  Step const *redo = open ? _state->book->steps().to_redo() : nullptr;
  [_window->undo setEnabled:undo != nullptr];
  [_window->redo setEnabled:redo != nullptr];
  [_window->undo setToolTip:undo != nullptr ? ns(tr("Undo “{0}” ({1})", undo->title, "Ctrl+Z"))
                                            : @"Ctrl+Z"];
  [_window->redo setToolTip:redo != nullptr ? ns(tr("Redo “{0}” ({1})", redo->title, "Ctrl+Shift+Z"))
                                            : @"Ctrl+Shift+Z"];
}

- (std::vector<std::uint32_t>)selectedPeople {
  std::vector<std::uint32_t> ids;
  NSIndexSet *rows = [_window->people selectedRowIndexes];
  for (NSUInteger row = [rows firstIndex]; row != NSNotFound; row = [rows indexGreaterThanIndex:row])
    if (row < _state->rows.count()) ids.push_back(_state->rows.person(row).id);
  return ids;
}

// Or the last one, when there are fewer.
- (void)selectRow:(NSInteger)row {
  NSInteger const at = std::min<NSInteger>(row, [_window->people numberOfRows] - 1);
  if (at < 0) return;
  [_window->people selectRowIndexes:[NSIndexSet indexSetWithIndex:static_cast<NSUInteger>(at)]
               byExtendingSelection:NO];
  [_window->people scrollRowToVisible:at];
}

- (void)showAllSelecting:(std::vector<std::uint32_t> const &)selected {
  _state->showing = true;
  [self showBooks];
  [self showGroups];
  [self showPeople:selected];
  _state->showing = false;
  [self showButtons];
  [self say:""];
}

- (void)showAll {
  [self showAllSelecting:[self selectedPeople]];
}

// The lists.

- (NSInteger)numberOfRowsInTableView:(NSTableView *)table {
  if (table == _window->people) return static_cast<NSInteger>(_state->rows.count());
  return _state->book == nullptr ? 0 : 1 + static_cast<NSInteger>(_state->groups.size());
}

- (NSString *)titleOfGroupRow:(NSInteger)row {
  auto const contents = _state->book->contents();
  if (row == 0) return ns(tr("All entries"));
  Group const *group = contents->group(_state->groups[static_cast<std::size_t>(row - 1)]);
  if (group == nullptr) return @"";
  //: A group and how many members it has.
  return ns(tr("{0} ({1})", group->name, group->members.size()));
}

- (id)tableView:(NSTableView *)table objectValueForTableColumn:(NSTableColumn *)column row:(NSInteger)row {
  if (row < 0 || row >= [self numberOfRowsInTableView:table]) return nil;
  if (table == _window->groups) return [self titleOfGroupRow:row];
  NSString *text = ns(_state->rows.text(static_cast<std::size_t>(row), [self columnOf:column]));
  return [[text componentsSeparatedByString:@"\n"] componentsJoinedByString:@" "];
}

- (Column)columnOf:(NSTableColumn *)column {
  NSString *which = [column identifier];
  if ([which isEqualToString:@"number"]) return Column::number;
  if ([which isEqualToString:@"company"]) return Column::company;
  return [which isEqualToString:@"note"] ? Column::note : Column::name;
}

- (void)tableView:(NSTableView *)table didClickTableColumn:(NSTableColumn *)column {
  if (table != _window->people) return;
  Column const order = [self columnOf:column];
  _state->wish.descending = order == _state->wish.order && !_state->wish.descending;
  _state->wish.order = order;
  [self showAll];
}

- (void)tableViewSelectionDidChange:(NSNotification *)notification {
  if (_state->showing) return;
  if ([notification object] == _window->groups) {
    NSInteger const row = [_window->groups selectedRow];
    std::uint32_t const group = row <= 0 ? 0 : _state->groups[static_cast<std::size_t>(row - 1)];
    if (group == _state->wish.group) return;
    _state->wish.group = group;
    _state->showing = true;
    [self showPeople:std::vector<std::uint32_t>()];
    _state->showing = false;
    [self say:""];
  }
  [self showButtons];
}

- (void)controlTextDidChange:(NSNotification *)notification {
  std::vector<std::uint32_t> const selected = [self selectedPeople];
  _state->wish.search = utf8([_window->search stringValue]);
  _state->showing = true;
  [self showPeople:selected];
  _state->showing = false;
  [self showButtons];
  [self say:""];
}

- (void)listReturn:(NSTableView *)list {
  list == _window->groups ? [self editGroup:list] : [self editEntry:list];
}
- (void)listDelete:(NSTableView *)list {
  list == _window->groups ? [self deleteGroup:list] : [self deleteEntries:list];
}
- (void)listSpace:(NSTableView *)list {
}

@end
