// What the editor's parts share; for their sources only.
#pragma once
#import "editor/EditorController.h"

#include <memory>
#include <string>
#include <vector>

#include "editor/core/book_list.h"
#include "editor/core/rows.h"

struct EditorState {
  fax::editor::CommandLine line;
  std::vector<std::string> elsewhere;         // paths of books outside the folder
  std::vector<fax::editor::BookPlace> books;  // as the pop-up has them
  std::unique_ptr<fax::editor::OpenBook> book;
  fax::editor::Wish wish;
  fax::editor::Rows rows;
  std::vector<std::uint32_t> groups;           // ids, as the list has them below "All entries"
  fax::Status trouble = fax::Status::success;  // why the book could not be looked at the last time
  bool showing = false;                        // the lists change, and not by the user's hand
};

@interface EditorController (Showing)
- (void)openFirstBook;
- (void)openPath:(std::string const &)path;
- (void)prepareCopyButton;
// All that the window shows, anew, out of the book as it is now.
- (void)showAll;
- (void)showAllSelecting:(std::vector<std::uint32_t> const &)selected;
- (void)showBooks;
- (void)selectRow:(NSInteger)row;
- (fax::editor::Column)columnOf:(NSTableColumn *)column;
// Ids of the people that are selected.
- (std::vector<std::uint32_t>)selectedPeople;
@end
