#import "editor/EditorPanel.h"

#include <algorithm>
#include <cmath>

#import "editor/controls.h"
#import "toolkit/controls.h"
#import "toolkit/text.h"

using namespace fax::editor;
using namespace fax::toolkit;

static CGFloat const kReturnSign = 20;  // drawn beside the title
static int const kMessageLines = 3;

namespace {

CGFloat width_of(NSView *view) { return [view frame].size.width; }
CGFloat height_of(NSView *view) { return [view frame].size.height; }

// Where lines stand in a window that can grow: those above the tall one stay at the top, those below at the bottom.
NSUInteger resizing(bool above, bool is_tall) {
  NSUInteger const vertical = is_tall ? NSViewHeightSizable : above ? NSViewMinYMargin : NSViewMaxYMargin;
  return vertical | NSViewWidthSizable;
}

}  // namespace

@implementation EditorPanel

- (id)initWithTitle:(NSString *)title accept:(NSString *)accept {
  if (!(self = [super init])) return nil;
  _panel = [[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, 100, 100)
                                      styleMask:NSTitledWindowMask | NSClosableWindowMask | NSResizableWindowMask
                                        backing:NSBackingStoreBuffered
                                          defer:NO];
  [_panel setReleasedWhenClosed:NO];
  [_panel setTitle:title];
  [_panel setDelegate:(id)self];
  _lines = [[NSMutableArray alloc] init];
  _message = make_label(@"");
  [[_message cell] setWraps:YES];
  _accept = make_button(accept, self, @selector(accept:));
  [_accept setKeyEquivalent:@"\r"];
  [_accept setFrameSize:NSMakeSize(width_of(_accept) + kReturnSign, height_of(_accept))];
  _cancel = make_button(ns(tr("Cancel")), self, @selector(cancel:));
  [_cancel setKeyEquivalent:@"\e"];
  return self;
}

- (void)dealloc {
  [_panel setDelegate:nil];
  [_panel orderOut:nil];
  [_panel release];
  [_lines release];
  [super dealloc];
}

- (void)addField:(NSView *)field label:(NSString *)text {
  [_lines addObject:[NSArray arrayWithObjects:make_label(text, NSRightTextAlignment), field, nil]];
}

- (void)addField:(NSView *)field {
  [_lines addObject:[NSArray arrayWithObject:field]];
}

- (CGFloat)widthOfLabels {
  CGFloat width = 0;
  for (NSUInteger at = 0; at < [_lines count]; ++at)
    if ([[_lines objectAtIndex:at] count] > 1)
      width = std::max(width, width_of([[_lines objectAtIndex:at] objectAtIndex:0]));
  return width;
}

// Returns where the next line ends.
- (CGFloat)placeLine:(NSArray *)line below:(CGFloat)top labels:(CGFloat)labels resizing:(NSUInteger)resizing {
  NSView *content = [_panel contentView], *field = [line lastObject];
  CGFloat const y = top - height_of(field);
  CGFloat left = kMargin;
  if ([line count] > 1) {
    NSTextField *label = [line objectAtIndex:0];
    // On the field's first line.
    CGFloat const drop = std::floor((row_height() + height_of(label)) / 2);
    [label setFrame:NSMakeRect(left, top - drop, labels, height_of(label))];
    NSUInteger const side = (resizing & NSViewMaxYMargin) != 0 ? NSViewMaxYMargin : NSViewMinYMargin;
    [label setAutoresizingMask:NSViewMaxXMargin | side];
    [content addSubview:label];
    left += labels + kGap;
  }
  [field setFrame:NSMakeRect(left, y, width_of(content) - kMargin - left, height_of(field))];
  [field setAutoresizingMask:resizing];
  [content addSubview:field];
  return y - kGap;
}

- (void)layOutWithWidth:(CGFloat)width tall:(NSView *)tall {
  CGFloat const message = kMessageLines * text_height() + 4, buttons = width_of(_cancel) + kGap + width_of(_accept);
  CGFloat height = kMargin + row_height() + kGap + message + kGap + kMargin - kGap;
  for (NSUInteger at = 0; at < [_lines count]; ++at) height += height_of([[_lines objectAtIndex:at] lastObject]) + kGap;
  NSSize const size = NSMakeSize(std::max(std::ceil(width * row_height() / kRow), buttons + 2 * kMargin), height);
  [_panel setContentSize:size];
  [_panel setContentMinSize:size];
  [_panel setContentMaxSize:NSMakeSize(4 * size.width, tall != nil ? 4 * size.height : size.height)];
  NSView *content = [_panel contentView];
  CGFloat const labels = [self widthOfLabels];
  CGFloat top = size.height - kMargin;
  bool above = true;
  for (NSUInteger at = 0; at < [_lines count]; ++at) {
    NSArray *line = [_lines objectAtIndex:at];
    bool const is_tall = [line lastObject] == tall;
    top = [self placeLine:line below:top labels:labels resizing:resizing(above, is_tall)];
    above = above && !is_tall;
  }
  [_message setFrame:NSMakeRect(kMargin, kMargin + row_height() + kGap, size.width - 2 * kMargin, message)];
  [_message setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];
  [content addSubview:_message];
  place_in_row(content, size.width - kMargin - buttons, kMargin, [NSArray arrayWithObjects:_cancel, _accept, nil],
               NSViewMinXMargin | NSViewMaxYMargin);
}

- (void)setFocusOrder:(NSArray *)fields {
  join_focus([fields arrayByAddingObjectsFromArray:[NSArray arrayWithObjects:_cancel, _accept, nil]]);
}

- (void)showError:(NSString *)text {
  [_message setTextColor:error_color()];
  [_message setStringValue:text];
  if ([text length] > 0) NSBeep();
}

- (void)showHint:(NSString *)text {
  [_message setTextColor:[NSColor controlTextColor]];
  [_message setStringValue:text];
}

- (BOOL)runFrom:(NSView *)field {
  [_panel center];
  [_panel makeKeyAndOrderFront:nil];
  [_panel makeFirstResponder:field];
  NSInteger const code = [NSApp runModalForWindow:_panel];
  [_panel orderOut:nil];
  return code == NSOKButton;
}

- (BOOL)accepts {
  return YES;
}

- (void)accept:(id)sender {
  [_panel makeFirstResponder:nil];  // what is being typed counts
  if ([self accepts]) [NSApp stopModalWithCode:NSOKButton];
}

- (void)cancel:(id)sender {
  [NSApp stopModalWithCode:NSCancelButton];
}

- (BOOL)windowShouldClose:(id)sender {
  [self cancel:sender];
  return NO;
}

@end
