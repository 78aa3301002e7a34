#import "host/HostDialogWindow.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#import "host/controls.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

static NSSize const kSmallest = {560, 492};
static CGFloat const kTextRow = 18;
static CGFloat const kNarrowGap = 3;  // between a control and the line that belongs to it

@interface HostDialogWindow ()
- (void)makeWindow:(NSString *)title;
- (void)makeControls;
- (void)makeCopies:(int)copies;
- (void)layOut;
- (void)placeSide;
- (NSSize)room;
- (CGFloat)layOutRows;
- (void)layOutButtons:(CGFloat)top;
- (NSView *)shownView;
- (void)takeViewOut;
- (void)makeRoomFor:(NSSize)needed;
- (void)placeView;
- (void)joinFocus;
@end

@implementation HostDialogWindow

- (id)initWithTitle:(NSString *)title copies:(int)copies target:(id<HostDialogActions>)target {
  if (!(self = [super init])) return nil;
  _target = target;
  _printerStatus = @"";
  [self makeWindow:title];
  [self makeControls];
  [self makeCopies:copies];
  NSView *const views[] = {printerLabel, printerPopUp,  printerStatus, destinationLabel, destinationPopUp,
                           copiesLabel,  copiesField,   copiesStepper, panelLabel,       panelPopUp,
                           panelArea,    statusLine,    helpButton,    cancelButton,     printButton};
  for (NSView *view : views) [[window contentView] addSubview:view];
  [window setDefaultButtonCell:[printButton cell]];
  [window setInitialFirstResponder:printerPopUp];
  [self layOut];
  [window center];
  return self;
}

- (void)dealloc {
  [NSObject cancelPreviousPerformRequestsWithTarget:self];
  [window setDelegate:nil];
  [window orderOut:nil];
  [window release];
  [_printerStatus release];
  [super dealloc];
}

- (NSWindow *)window {
  return window;
}

- (NSPopUpButton *)printerPopUp {
  return printerPopUp;
}

- (NSPopUpButton *)destinationPopUp {
  return destinationPopUp;
}

- (NSPopUpButton *)panelPopUp {
  return panelPopUp;
}

// Making it.

- (void)makeWindow:(NSString *)title {
  NSUInteger const style =
      NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask | NSResizableWindowMask;
  NSRect const frame = {NSZeroPoint, kSmallest};
  window = [[NSWindow alloc] initWithContentRect:frame styleMask:style backing:NSBackingStoreBuffered defer:NO];
  [window setReleasedWhenClosed:NO];
  [window setTitle:title];
  [window setContentView:[[[HostFlippedView alloc] initWithFrame:frame] autorelease]];
  [window setContentMinSize:kSmallest];
  [window setDelegate:(id)self];
}

- (void)makeControls {
  printerLabel = make_label(ns(tr("Printer:")), NSRightTextAlignment);
  printerPopUp = make_pop_up(_target, @selector(choosePrinter:));
  printerStatus = make_label(@"", NSLeftTextAlignment);
  //: Where the job goes: to the printer, into a file or to a preview.
  destinationLabel = make_label(ns(tr("Destination:")), NSRightTextAlignment);
  destinationPopUp = make_pop_up(_target, @selector(chooseDestination:));
  //: Before the list of panels of options, such as "Fax Settings".
  panelLabel = make_label(ns(tr("Options:")), NSRightTextAlignment);
  panelPopUp = make_pop_up(_target, @selector(choosePanel:));
  panelArea = [[[NSBox alloc] initWithFrame:NSMakeRect(0, 0, 100, 100)] autorelease];
  [panelArea setTitlePosition:NSNoTitle];
  [panelArea setBorderType:NSLineBorder];
  [panelArea setContentViewMargins:NSMakeSize(kGap, kGap)];
  statusLine = make_label(@"", NSLeftTextAlignment);
  helpButton = make_button(ns(tr("Help")), _target, @selector(help:));
  cancelButton = make_button(ns(tr("Cancel")), _target, @selector(cancel:));
  //: The button that prints.
  printButton = make_button(ns(tr("Print")), self, @selector(printPressed:));
  [cancelButton setKeyEquivalent:@"\e"];
  [printButton setKeyEquivalent:@"\r"];
}

- (void)makeCopies:(int)copies {
  //: How many copies are printed.
  copiesLabel = make_label(ns(tr("Copies:")), NSRightTextAlignment);
  copiesField = [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 0, 60, kRow)] autorelease];
  [copiesField setFont:[NSFont systemFontOfSize:0]];
  [copiesField setAlignment:NSRightTextAlignment];
  [copiesField setDelegate:(id)self];
  [copiesField setIntValue:copies];
  copiesStepper = [[[NSStepper alloc] initWithFrame:NSMakeRect(0, 0, 19, kRow)] autorelease];
  [copiesStepper setMinValue:1];
  [copiesStepper setMaxValue:9999];
  [copiesStepper setIncrement:1];
  [copiesStepper setValueWraps:NO];
  [copiesStepper setIntValue:copies];
  [copiesStepper setTarget:self];
  [copiesStepper setAction:@selector(stepCopies:)];
}

// Where everything is.

- (void)layOut {
  [self placeSide];
  NSSize const size = [self room];
  CGFloat const top = [self layOutRows];
  CGFloat const buttons = size.height - kMargin - kRow;
  CGFloat const status = buttons - kGap - kTextRow;
  [panelArea setFrame:NSMakeRect(kMargin, top, size.width - 2 * kMargin, std::max<CGFloat>(20, status - kGap - top))];
  [statusLine setFrame:NSMakeRect(kMargin, status, size.width - 2 * kMargin, kTextRow)];
  [self layOutButtons:buttons];
  [self setStatus:[self status]];
  [printerStatus setStringValue:fitted(_printerStatus, [printerStatus frame].size.width)];
  [self placeView];
  [[window contentView] setNeedsDisplay:YES];
}

// The labels and what they name; answers where the next thing can be.
- (CGFloat)layOutRows {
  CGFloat labelWidth = 0;
  NSTextField *const labels[] = {printerLabel, destinationLabel, copiesLabel, panelLabel};
  NSView *const controls[] = {printerPopUp, destinationPopUp, copiesField, panelPopUp};
  for (NSTextField *label : labels) labelWidth = std::max(labelWidth, text_width([label stringValue]) + 8);
  CGFloat const left = kMargin + labelWidth + kGap;
  CGFloat const width = [self room].width - left - kMargin;
  CGFloat y = kMargin;
  for (std::size_t at = 0; at < std::size(labels); ++at) {
    if (labels[at] == panelLabel) y += kGap;
    [labels[at] setFrame:NSMakeRect(kMargin, y + 3, labelWidth, kTextRow)];
    [controls[at] setFrame:NSMakeRect(left, y, controls[at] == copiesField ? 60 : width, kRow)];
    y += kRow;
    if (controls[at] == printerPopUp) {
      [printerStatus setFrame:NSMakeRect(left, y + kNarrowGap, width, kTextRow)];
      y += kNarrowGap + kTextRow;
    }
    y += kGap;
  }
  NSRect const copies = [copiesField frame];
  [copiesStepper setFrameOrigin:NSMakePoint(NSMaxX(copies) + 4, copies.origin.y)];
  return y;
}

- (void)layOutButtons:(CGFloat)top {
  [helpButton setFrameOrigin:NSMakePoint(kMargin, top)];
  CGFloat right = [self room].width - kMargin - [printButton frame].size.width;
  [printButton setFrameOrigin:NSMakePoint(right, top)];
  right -= kGap + [cancelButton frame].size.width;
  [cancelButton setFrameOrigin:NSMakePoint(right, top)];
}

// What the controls have for themselves.
- (NSSize)room {
  NSSize const size = [[window contentView] bounds].size;
  return _side ? NSMakeSize(NSMinX([_side frame]), size.height) : size;
}

// Most of what the window is wider than it must be goes to the side: there are the pages.
- (void)placeSide {
  NSSize const size = [[window contentView] bounds].size;
  CGFloat const more = std::max<CGFloat>(0, size.width - [window contentMinSize].width);
  CGFloat const width = _sideWidth + std::floor(more * 0.75);
  [_side setFrame:NSMakeRect(size.width - kMargin - width, kMargin, width, size.height - 2 * kMargin)];
}

- (void)setSide:(NSView *)view {
  CGFloat const more = [view frame].size.width + kMargin;
  NSSize const size = [[window contentView] bounds].size;
  NSSize const smallest = [window contentMinSize];
  _sideWidth = [view frame].size.width;
  [window setContentMinSize:NSMakeSize(smallest.width + more, smallest.height)];
  [window setContentSize:NSMakeSize(size.width + more, size.height)];
  [[window contentView] addSubview:view];
  _side = view;
  [window center];
  [self layOut];
}

- (NSSize)size {
  return [[window contentView] bounds].size;
}

- (void)setSize:(NSSize)size {
  NSSize const pixels = [[NSScreen mainScreen] visibleFrame].size;
  CGFloat const scale = [window userSpaceScaleFactor];
  NSSize const screen = NSMakeSize(std::floor(pixels.width / scale), std::floor(pixels.height / scale));
  NSSize const smallest = [window contentMinSize];
  [window setContentSize:NSMakeSize(std::max(smallest.width, std::min(size.width, screen.width)),
                                    std::max(smallest.height, std::min(size.height, screen.height)))];
  [window center];
  [self layOut];
}

- (void)windowDidResize:(NSNotification *)notification {
  [self layOut];
}

- (BOOL)windowShouldClose:(id)sender {
  [_target cancel:sender];
  return NO;
}

// What it tells.

- (NSString *)status {
  return [statusLine toolTip] ? [statusLine toolTip] : @"";
}

- (void)setStatus:(NSString *)text {
  [statusLine setToolTip:text];
  [statusLine setStringValue:fitted(text, [statusLine frame].size.width)];
}

- (void)setPrinterStatus:(NSString *)line advice:(NSString *)advice {
  [_printerStatus autorelease];
  _printerStatus = [line copy];
  [printerStatus setStringValue:fitted(line, [printerStatus frame].size.width)];
  [printerStatus setToolTip:[advice length] ? [NSString stringWithFormat:@"%@ %@", line, advice] : line];
}

- (void)setReady:(BOOL)ready {
  [panelPopUp setEnabled:ready];
  [printButton setEnabled:ready];
}

// The button would stay lit for as long as its action runs, and that can be a whole modal dialog.
- (void)printPressed:(id)sender {
  [self performSelector:@selector(print:)
             withObject:sender
             afterDelay:0
                inModes:[NSArray arrayWithObject:NSDefaultRunLoopMode]];
}

- (void)print:(id)sender {
  [_target print:sender];
}

// Copies.

- (int)copies {
  NSString *const text =
      [[copiesField stringValue] stringByTrimmingCharactersInSet:[NSCharacterSet whitespaceCharacterSet]];
  NSCharacterSet *const others = [[NSCharacterSet characterSetWithCharactersInString:@"0123456789"] invertedSet];
  if ([text length] == 0 || [text length] > 4 || [text rangeOfCharacterFromSet:others].length > 0) return 0;
  return [text intValue];
}

- (void)sayCopiesAreWrong {
  [self setStatus:ns(tr("Copies must be a number from 1 to 9999."))];
}

- (void)refuseCopies {
  [self sayCopiesAreWrong];
  [window makeFirstResponder:copiesField];
}

- (void)stepCopies:(id)sender {
  [copiesField setIntValue:[copiesStepper intValue]];
  [self setStatus:@""];
  [_target copiesDidChange];
}

- (void)controlTextDidEndEditing:(NSNotification *)notification {
  if ([notification object] != copiesField) return;
  int const copies = [self copies];
  if (copies == 0) return [self sayCopiesAreWrong];
  [copiesStepper setIntValue:copies];
  [self setStatus:@""];
  [_target copiesDidChange];
}

// The arrows step the number, as the buttons beside it do.
- (BOOL)control:(NSControl *)control textView:(NSTextView *)editor doCommandBySelector:(SEL)command {
  bool const up = sel_isEqual(command, @selector(moveUp:));
  if (control != copiesField || (!up && !sel_isEqual(command, @selector(moveDown:))) || [self copies] == 0) return NO;
  [copiesStepper setIntValue:std::clamp([self copies] + (up ? 1 : -1), 1, 9999)];
  [editor setString:[copiesStepper stringValue]];
  [self stepCopies:copiesStepper];
  return YES;
}

// The area below the pop-up of the panels.

- (NSView *)shownView {
  NSArray *const views = [[panelArea contentView] subviews];
  return [views count] ? [views objectAtIndex:0] : nil;
}

// A view leaves with the size that it came with: it may come again.
- (void)takeViewOut {
  NSView *const view = [[[self shownView] retain] autorelease];
  [view removeFromSuperview];
  if (_keepsSize) [view setFrameSize:_sizeOfView];
}

- (void)clearArea {
  [self takeViewOut];
  [panelArea setContentView:[[[NSView alloc] initWithFrame:NSZeroRect] autorelease]];
}

- (void)showView:(NSView *)view keepsSize:(BOOL)keepsSize {
  [self takeViewOut];
  _keepsSize = keepsSize;
  _sizeOfView = [view frame].size;
  if (keepsSize) [self makeRoomFor:_sizeOfView];
  [[panelArea contentView] addSubview:view];
  [self placeView];
  [self joinFocus];
  [panelArea setNeedsDisplay:YES];
}

// Makes the window larger when a view needs it, never smaller.
- (void)makeRoomFor:(NSSize)needed {
  NSSize const room = [[panelArea contentView] bounds].size;
  NSSize const more = NSMakeSize(std::max<CGFloat>(0, needed.width - room.width),
                                 std::max<CGFloat>(0, needed.height - room.height));
  if (more.width <= 0 && more.height <= 0) return;
  NSSize const now = [[window contentView] bounds].size;
  NSRect const content = NSMakeRect(0, 0, now.width + more.width, now.height + more.height);
  [window setContentMinSize:content.size];
  // The upper edge stays where it is.
  NSRect frame = [window frameRectForContentRect:content];
  frame.origin = NSMakePoint(NSMinX([window frame]), NSMaxY([window frame]) - frame.size.height);
  [window setFrame:frame display:YES];
  [self layOut];
}

- (void)placeView {
  NSView *const area = [panelArea contentView];
  NSView *const view = [self shownView];
  if (!view) return;
  NSSize const room = [area bounds].size;
  if (!_keepsSize) {
    [view setFrame:[area bounds]];
    return;
  }
  NSSize size = _sizeOfView;
  if ([view autoresizingMask] & NSViewWidthSizable) size.width = std::max(size.width, room.width);
  // The place is chosen here, not by the view's own mask.
  [view setFrame:NSMakeRect(std::floor(std::max<CGFloat>(0, (room.width - size.width) / 2)),
                            std::floor(room.height - size.height), size.width, size.height)];
  [view setNeedsDisplay:YES];
}

- (void)joinFocus {
  NSMutableArray *ring = [NSMutableArray arrayWithObjects:printerPopUp, destinationPopUp, copiesField, panelPopUp, nil];
  [ring addObjectsFromArray:focus_order([panelArea contentView])];
  if (_side) [ring addObjectsFromArray:focus_order(_side)];
  [ring addObject:helpButton];
  [ring addObject:cancelButton];
  [ring addObject:printButton];
  join_focus(ring);
}

@end
