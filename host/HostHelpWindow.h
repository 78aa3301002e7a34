// The help window: pages of a help book, with links, Back and Forward. It stays usable while a dialog is modal.
#pragma once
#import <AppKit/AppKit.h>

@interface HostHelpWindow : NSObject {
  struct HostHelpState *_state;
  NSPanel *panel;
  NSScrollView *scroller;
  NSTextView *textView;
  NSButton *backButton;
  NSButton *forwardButton;
  NSButton *closeButton;
}
// Shows every page that is asked for through Apple Help in this window, for as long as this object lives.
- (void)serveHelpBooks;
// page: absolute path; anchor may be nil. NO, with the window as it was, when the page cannot be read.
- (BOOL)showPage:(NSString *)page anchor:(NSString *)anchor;
- (void)goBack:(id)sender;
- (void)goForward:(id)sender;
- (void)close;
// nil until a page was shown.
- (NSPanel *)panel;
- (NSTextView *)textView;
@end
