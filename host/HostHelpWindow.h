// The help window: pages of help books, with links, a search over all books, Back and Forward. It stays usable while a
// dialog is modal.
#pragma once
#import <AppKit/AppKit.h>

#import "host/HostHelpViews.h"

@interface HostHelpWindow : NSObject <HostHelpKeys> {
  struct HostHelpState *_state;
  HostHelpPanel *panel;
  NSScrollView *scroller;
  HostHelpTextView *textView;
  NSSearchField *searchField;
  NSButton *backButton;
  NSButton *forwardButton;
  NSButton *closeButton;
}
// Shows every page that is asked for through Apple Help in this window, for as long as this object lives.
- (void)serveHelpBooks;
// Has searches look through the pages beside this one too (an absolute path; nil adds nothing). The book that is shown and
// those that are registered are searched anyway.
- (void)addBook:(NSString *)page;
// page: absolute path; anchor may be nil. NO, with the window as it was, when the page cannot be read.
- (BOOL)showPage:(NSString *)page anchor:(NSString *)anchor;
// What the field holds, found in all books; with nothing in it the page that was seen before.
- (void)search:(id)sender;
// Out of a search, or else of the window.
- (void)leave:(id)sender;
- (void)close;
// nil until a page was shown.
- (NSPanel *)panel;
- (NSTextView *)textView;
@end
