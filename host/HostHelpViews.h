// The parts of the help window that take keys.
#pragma once
#import <AppKit/AppKit.h>

// What the keys of the window ask for, whatever has the focus: Control+F, Alt+Left, Alt+Right, Escape.
@protocol HostHelpKeys
- (void)focusSearch:(id)sender;
- (void)goBack:(id)sender;
- (void)goForward:(id)sender;
- (void)leave:(id)sender;
@end

@interface HostHelpPanel : NSPanel {
  id<HostHelpKeys> _keys;
}
// Not retained.
- (void)setKeys:(id<HostHelpKeys>)keys;
@end

// A page. Tab and Shift+Tab go from link to link, and past the last one out of the page; Return follows the link that is
// selected; arrows, Page Up, Page Down, Space, Home and End scroll.
@interface HostHelpTextView : NSTextView
// The next (+1) or previous (-1) link from the selection on, selected and in sight. NO when there is none.
- (BOOL)selectLink:(int)direction;
// top: from the upper edge of the text, in points; as far as the text reaches. Always YES.
- (BOOL)scrollTo:(CGFloat)top;
@end
