#import "toolkit/controls.h"

#include <algorithm>
#include <cmath>

namespace fax::toolkit {

CGFloat text_width(NSString *text) {
  NSDictionary *font = [NSDictionary dictionaryWithObject:[NSFont systemFontOfSize:0] forKey:NSFontAttributeName];
  return std::ceil([text sizeWithAttributes:font].width);
}

CGFloat text_height() { return std::ceil([[NSFont systemFontOfSize:0] defaultLineHeightForFont]); }

CGFloat row_height() { return std::max(kRow, text_height() + 8); }

NSTextField *make_label(NSString *text, NSTextAlignment alignment) {
  NSRect const frame = NSMakeRect(0, 0, text_width(text) + 8, std::max<CGFloat>(18, text_height() + 2));
  NSTextField *label = [[[NSTextField alloc] initWithFrame:frame] autorelease];
  [label setEditable:NO];
  [label setSelectable:NO];
  [label setBezeled:NO];
  [label setBordered:NO];
  [label setDrawsBackground:NO];
  [label setFont:[NSFont systemFontOfSize:0]];
  [label setAlignment:alignment];
  [label setStringValue:text];
  return label;
}

NSButton *make_button(NSString *title, id target, SEL action, NSString *tip) {
  CGFloat const width = std::max<CGFloat>(80, text_width(title) + 28);
  NSButton *button = [[[NSButton alloc] initWithFrame:NSMakeRect(0, 0, width, row_height())] autorelease];
  [button setButtonType:NSMomentaryPushInButton];
  [button setBezelStyle:NSRoundedBezelStyle];
  [button setFont:[NSFont systemFontOfSize:0]];
  [button setTitle:title];
  [button setTarget:target];
  [button setAction:action];
  if ([tip length] > 0) [button setToolTip:tip];
  return button;
}

NSPopUpButton *make_pop_up(id target, SEL action) {
  NSPopUpButton *button = [[[NSPopUpButton alloc] initWithFrame:NSMakeRect(0, 0, 220, row_height()) pullsDown:NO] autorelease];
  [button setFont:[NSFont systemFontOfSize:0]];
  [button setAutoenablesItems:NO];
  [button setTarget:target];
  [button setAction:action];
  return button;
}

void join_focus(NSArray *views) {
  NSUInteger const count = [views count];
  for (NSUInteger at = 0; at < count; ++at)
    [[views objectAtIndex:at] setNextKeyView:[views objectAtIndex:(at + 1) % count]];
}

}  // namespace fax::toolkit
