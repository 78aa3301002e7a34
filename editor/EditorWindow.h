// The editor's window: its controls and where they stand. What they do is its owner's.
#pragma once
#import <AppKit/AppKit.h>

#import "editor/controls.h"

@protocol EditorWindowActions <EditorListKeys>
- (void)newBook:(id)sender;
- (void)openBook:(id)sender;
- (void)chooseBook:(id)sender;
@end
@protocol EditorEditActions
- (void)newEntry:(id)sender;
- (void)editEntry:(id)sender;
- (void)deleteEntries:(id)sender;
- (void)newGroup:(id)sender;
- (void)editGroup:(id)sender;
- (void)deleteGroup:(id)sender;
- (void)undo:(id)sender;
- (void)redo:(id)sender;
@end
@protocol EditorTransferActions
- (void)importList:(id)sender;
- (void)exportBook:(id)sender;
- (void)copyFromPrinter:(id)sender;
@end

// All controls live as long as the window.
@interface EditorWindow : NSWindow {
@public
  NSPopUpButton *books;
  NSButton *newBook, *openBook;
  NSTextField *search;
  EditorList *groups;
  EditorList *people;
  NSButton *newEntry, *editEntry, *deleteEntries;
  NSButton *newGroup, *editGroup, *deleteGroup;
  NSButton *undo, *redo;
  NSButton *importList, *exportBook, *copyFromPrinter;
  NSTextField *status;

@private
  id<EditorWindowActions, EditorEditActions, EditorTransferActions> _owner;
  CGFloat _least;  // width of the content
}
// owner (not retained) is the target of all controls and the delegate of the search; after connectLists, when it knows
// the window, also the data source and the delegate of both lists.
- (id)initWithOwner:(id<EditorWindowActions, EditorEditActions, EditorTransferActions>)owner;
- (void)connectLists;
// The owner goes before the window.
- (void)disconnect;
@end
