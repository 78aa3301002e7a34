// The print dialog's window: its controls, where they are, and the two lines that tell how things stand. Decides
// nothing.
#pragma once
#import <AppKit/AppKit.h>

// What the user does with the controls.
@protocol HostDialogActions
- (void)choosePrinter:(id)sender;
- (void)chooseDestination:(id)sender;
- (void)choosePanel:(id)sender;
- (void)help:(id)sender;
- (void)cancel:(id)sender;
- (void)print:(id)sender;
// The copies are another number now.
- (void)copiesDidChange;
@end

@interface HostDialogWindow : NSObject {
  id<HostDialogActions> _target;
  NSWindow *window;
  NSTextField *printerLabel;
  NSPopUpButton *printerPopUp;
  NSTextField *printerStatus;
  NSTextField *destinationLabel;
  NSPopUpButton *destinationPopUp;
  NSTextField *copiesLabel;
  NSTextField *copiesField;
  NSStepper *copiesStepper;
  NSTextField *panelLabel;
  NSPopUpButton *panelPopUp;
  NSBox *panelArea;
  NSTextField *statusLine;
  NSButton *helpButton;
  NSButton *cancelButton;
  NSButton *printButton;
  NSView *_side;
  CGFloat _sideWidth;  // that it needs
  NSString *_printerStatus;
  BOOL _keepsSize;
  NSSize _sizeOfView;  // with which the view in the area came
}
// target is not retained. Makes the window, does not show it.
- (id)initWithTitle:(NSString *)title copies:(int)copies target:(id<HostDialogActions>)target;
- (NSWindow *)window;
- (NSPopUpButton *)printerPopUp;
- (NSPopUpButton *)destinationPopUp;
- (NSPopUpButton *)panelPopUp;

// The line at the bottom: what happened last. Never nil.
- (NSString *)status;
- (void)setStatus:(NSString *)text;
// The line below the printer. advice, the long text behind it, may be "".
- (void)setPrinterStatus:(NSString *)line advice:(NSString *)advice;
// Whether a job can be made now.
- (void)setReady:(BOOL)ready;

// 0 when the field holds no number from 1 to 9999.
- (int)copies;
// Says that it holds none and puts the focus there.
- (void)refuseCopies;

// Puts a view beside the controls, at the right, as high as the window, and makes the window wider for it. Its controls
// follow those of the panel for the tab key.
- (void)setSide:(NSView *)view;
// The size of the window's content in points. Never smaller than the controls need nor larger than the screen.
- (NSSize)size;
- (void)setSize:(NSSize)size;

// Fills the area below the pop-up of the panels. One that keeps its size makes the window larger when it needs that
// (never smaller) and stands in the middle; any other fills the area.
- (void)showView:(NSView *)view keepsSize:(BOOL)keepsSize;
// Takes away what is in the area.
- (void)clearArea;
@end
