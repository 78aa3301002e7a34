#import "editor/EditorPanel.h"

#import "editor/controls.h"
#import "editor/text.h"

using namespace fax::editor;

static CGFloat const kMessageHeight = 36;
static CGFloat const kLabelWidth = 110;
static CGFloat const kReturnSign = 20;  // drawn beside the title

@implementation EditorPanel

- (id)initWithTitle:(NSString *)title width:(CGFloat)width height:(CGFloat)height accept:(NSString *)accept {
  if (!(self = [super init])) return nil;
  _panel = [[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, width, height + [self floor] + kMargin)
                                      styleMask:NSTitledWindowMask | NSClosableWindowMask
                                        backing:NSBackingStoreBuffered
                                          defer:NO];
  [_panel setReleasedWhenClosed:NO];
  [_panel setTitle:title];
  [_panel setDelegate:(id)self];
  NSView *content = [_panel contentView];
  _message = make_label(@"");
  [_message setFrame:NSMakeRect(kMargin, kMargin + kRow + kGap, width - 2 * kMargin, kMessageHeight)];
  [[_message cell] setWraps:YES];
  [content addSubview:_message];
  _accept = make_button(accept, self, @selector(accept:), nil);
  [_accept setKeyEquivalent:@"\r"];
  [_accept setFrameSize:NSMakeSize([_accept frame].size.width + kReturnSign, kRow)];
  _cancel = make_button(EditorText(@"Cancel"), self, @selector(cancel:), nil);
  [_cancel setKeyEquivalent:@"\e"];
  CGFloat const buttons = [_accept frame].size.width + kGap + [_cancel frame].size.width;
  place_in_row(content, width - kMargin - buttons, kMargin, [NSArray arrayWithObjects:_cancel, _accept, nil], 0);
  return self;
}

- (void)dealloc {
  [_panel setDelegate:nil];
  [_panel orderOut:nil];
  [_panel release];
  [super dealloc];
}

- (NSView *)content {
  return [_panel contentView];
}
- (CGFloat)width {
  return [[_panel contentView] frame].size.width;
}
- (CGFloat)floor {
  return kMargin + kRow + kGap + kMessageHeight + kGap;
}

- (void)addField:(NSView *)field label:(NSString *)text at:(CGFloat)y height:(CGFloat)height {
  NSTextField *label = make_label(text);
  CGFloat const bottom = [self floor] + y;
  [label setFrame:NSMakeRect(kMargin, bottom + height - kRow + 3, kLabelWidth, 18)];
  [label setAlignment:NSRightTextAlignment];
  CGFloat const left = kMargin + kLabelWidth + kGap;
  [field setFrame:NSMakeRect(left, bottom, [self width] - kMargin - left, height)];
  [[self content] addSubview:label];
  [[self content] addSubview:field];
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
