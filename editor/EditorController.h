// The editor: one window on one address book at a time.
#pragma once
#import <AppKit/AppKit.h>

#import "editor/EditorWindow.h"

#include <string>

#include "editor/core/command_line.h"
#include "editor/core/open_book.h"

@interface EditorController : NSObject <EditorWindowActions> {
  struct EditorState *_state;
  EditorWindow *_window;
  NSTimer *_timer;
}
- (id)initWithCommandLine:(fax::editor::CommandLine const &)line;

// nullptr when no book is open.
- (fax::editor::OpenBook *)book;
- (fax::editor::CommandLine const &)commandLine;
- (void)say:(std::string const &)sentence;
@end

// Entries, groups, undo.
@interface EditorController (Edits) <EditorEditActions>
// Makes a step that may be long, and shows what came of it.
- (void)makeStep:(fax::editor::Step const &)step doing:(NSString *)what;
@end

// Import, export, and the printer's book.
@interface EditorController (Transfer) <EditorTransferActions>
// The lists of the command line, one after the other, into the book that is open.
- (void)importGivenLists;
@end
