// One page, as it will be sent. Takes the focus: arrows, page keys, Home and End turn the pages.
#pragma once
#import <AppKit/AppKit.h>

#include "host/core/page_tool.h"

@protocol HostPageViewOwner
// By so many pages, forward or back.
- (void)turnBy:(int)pages;
@end

@interface HostPageView : NSView {
  id<HostPageViewOwner> _owner;
  NSBitmapImageRep *_picture;
  NSString *_text;
  BOOL _left;
}
// owner is not retained.
- (id)initWithOwner:(id<HostPageViewOwner>)owner;
- (void)forgetOwner;
- (void)showPicture:(fax::host::PagePicture const &)picture;
// left: the page is not among those that are sent.
- (void)setLeft:(BOOL)left;
// A sentence in the place of a page.
- (void)showText:(NSString *)text;
- (BOOL)showsPicture;
// The largest picture that fits, in pixels.
- (NSSize)room;
@end
