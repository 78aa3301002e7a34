// Alerts of our own make: the kind's picture, what happened, what can be done, the buttons. The toolkit's panel sets
// the message on one line, centres the rest and breaks no lines.
#import "host/theme/AlertPanel.h"

#include <algorithm>
#include <cmath>

#import "host/theme/drawing.h"
#include "platform/gnustep/repair.h"
#import "toolkit/text.h"

using namespace fax::theme;

static CGFloat const kEdge = 20;
static CGFloat const kIcon = 48;
static CGFloat const kBetween = 12;
static CGFloat const kNarrowest = 260;  // of the text
static CGFloat const kWidest = 460;
static CGFloat const kTallest = 320;  // of the second text, which scrolls when it is longer
static CGFloat const kButtonHeight = 28;
static CGFloat const kButtonNarrowest = 86;

@interface FaxAlertPanel ()
- (void)addButtons:(NSArray *)buttons right:(CGFloat)right;
@end

static NSDictionary *Look(NSFont *font) {
  return [NSDictionary dictionaryWithObjectsAndKeys:font, NSFontAttributeName, ns(current_palette().text),
                                                    NSForegroundColorAttributeName, nil];
}

static NSSize Measured(NSString *text, NSFont *font) {
  if ([text length] == 0) return NSZeroSize;
  NSAttributedString *set = [[[NSAttributedString alloc] initWithString:text attributes:Look(font)] autorelease];
  NSSize const size = [set boundingRectWithSize:NSMakeSize(kWidest, 1e6)
                                        options:NSStringDrawingUsesLineFragmentOrigin].size;
  // Room for the cell's own margins, or the last word would go to a line that is not there.
  return NSMakeSize(std::ceil(size.width) + 8, std::ceil(size.height) + 2);
}

static NSView *TextView(NSString *text, NSFont *font, NSRect frame) {
  NSTextField *field = [[[NSTextField alloc] initWithFrame:frame] autorelease];
  [field setEditable:NO];
  [field setSelectable:NO];
  [field setBezeled:NO];
  [field setBordered:NO];
  [field setDrawsBackground:NO];
  [[field cell] setWraps:YES];
  [field setFont:font];
  [field setStringValue:text];
  return field;
}

static NSView *ScrolledText(NSString *text, NSFont *font, NSRect frame) {
  NSScrollView *scroll = [[[NSScrollView alloc] initWithFrame:frame] autorelease];
  [scroll setHasVerticalScroller:YES];
  [scroll setBorderType:NSBezelBorder];
  NSSize const room = [scroll contentSize];
  NSTextView *view = [[[NSTextView alloc] initWithFrame:NSMakeRect(0, 0, room.width, room.height)] autorelease];
  [view setEditable:NO];
  [view setFont:font];
  [view setString:text];
  [view setMaxSize:NSMakeSize(1e6, 1e6)];
  [view setVerticallyResizable:YES];
  [[view textContainer] setWidthTracksTextView:YES];
  [view sizeToFit];
  [scroll setDocumentView:view];
  return scroll;
}

static CGFloat ButtonWidth(NSButton *button) {
  return std::max(kButtonNarrowest, std::ceil([[button title] sizeWithAttributes:Look([button font])].width) + 32);
}

static CGFloat WidthOfAll(NSArray *buttons) {
  CGFloat width = -kBetween;
  for (NSUInteger at = 0; at < [buttons count]; ++at) width += kBetween + ButtonWidth([buttons objectAtIndex:at]);
  return width;
}

@implementation FaxAlertPanel

- (id)initWithAlert:(NSAlert *)alert {
  if ([[alert buttons] count] == 0) [alert addButtonWithTitle:fax::toolkit::ns(fax::tr("OK"))];
  NSFont *plain = [NSFont systemFontOfSize:0];
  NSFont *bold = [NSFont boldSystemFontOfSize:[plain pointSize] + 1];
  NSString *message = [alert messageText] ? [alert messageText] : @"";
  NSString *advice = [alert informativeText] ? [alert informativeText] : @"";
  NSSize const first = Measured(message, bold);
  NSSize second = Measured(advice, plain);
  bool const scrolls = second.height > kTallest;
  if (scrolls) second = NSMakeSize(kWidest, kTallest);

  CGFloat const left = kEdge + kIcon + kEdge;
  CGFloat const column = std::max({kNarrowest, first.width, second.width, WidthOfAll([alert buttons]) - left + kEdge});
  CGFloat const gap = first.height > 0 && second.height > 0 ? 8 : 0;
  CGFloat const texts = std::max(kIcon, first.height + gap + second.height);
  NSSize const whole = {left + column + kEdge, kEdge + texts + kEdge + kButtonHeight + kEdge};
  self = [super initWithContentRect:NSMakeRect(0, 0, whole.width, whole.height)
                          styleMask:NSTitledWindowMask
                            backing:NSBackingStoreBuffered
                              defer:YES];
  if (!self) return nil;
  [self setReleasedWhenClosed:NO];
  [self setHidesOnDeactivate:NO];
  [self setLevel:NSModalPanelWindowLevel];
  // What the toolkit calls its own, and where people and scripts look for it.
  //: The title of a window with a message.
  [self setTitle:fax::toolkit::ns(fax::tr("Alert"))];

  CGFloat const top = whole.height - kEdge;
  NSView *content = [self contentView];
  NSImageView *picture = [[[NSImageView alloc] initWithFrame:NSMakeRect(kEdge, top - kIcon, kIcon, kIcon)] autorelease];
  [picture setEditable:NO];
  [picture setImage:[alert icon] ? [alert icon] : alert_image([alert alertStyle])];
  [content addSubview:picture];
  // A single short text stands beside the middle of the picture.
  CGFloat const sunk = (texts - first.height - gap - second.height) / 2;
  CGFloat const middle = top - sunk - first.height;
  if (first.height > 0) [content addSubview:TextView(message, bold, NSMakeRect(left, middle, column, first.height))];
  if (second.height > 0) {
    NSRect const frame = NSMakeRect(left, middle - gap - second.height, column, second.height);
    [content addSubview:scrolls ? ScrolledText(advice, plain, frame) : TextView(advice, plain, frame)];
  }
  [self addButtons:[alert buttons] right:whole.width - kEdge];
  [self center];
  return self;
}

- (void)dealloc {
  [_buttons release];
  [super dealloc];
}

// From the right, as they were added: the first is what Return does.
- (void)addButtons:(NSArray *)buttons right:(CGFloat)right {
  _buttons = [buttons copy];
  for (NSUInteger at = 0; at < [buttons count]; ++at) {
    NSButton *button = [buttons objectAtIndex:at];
    [button setFont:[NSFont systemFontOfSize:0]];
    CGFloat const width = ButtonWidth(button);
    [button setButtonType:NSMomentaryPushInButton];
    [button setBezelStyle:NSRoundedBezelStyle];
    [button setFrame:NSMakeRect(right - width, kEdge, width, kButtonHeight)];
    [button setTarget:self];
    [button setAction:@selector(answer:)];
    [[self contentView] addSubview:button];
    right -= width + kBetween;
    if (at > 0) [[buttons objectAtIndex:at - 1] setNextKeyView:button];
  }
  [[buttons lastObject] setNextKeyView:[buttons objectAtIndex:0]];
  [self setDefaultButtonCell:[[buttons objectAtIndex:0] cell]];
  [self setInitialFirstResponder:[buttons objectAtIndex:0]];
}

- (void)answer:(id)sender {
  [NSApp stopModalWithCode:[sender tag]];
}

// Escape is the answer where there is only one.
- (void)keyDown:(NSEvent *)event {
  if ([[event characters] isEqualToString:@"\e"] && [_buttons count] == 1) {
    [[_buttons objectAtIndex:0] performClick:self];
    return;
  }
  [super keyDown:event];
}

- (NSInteger)run {
  NSInteger const answer = [NSApp runModalForWindow:self];
  [self orderOut:nil];
  return answer;
}

@end

namespace {

// Alerts run on the main thread only; elsewhere the toolkit's own way stands.
fax::Repair<NSInteger()> run_modal{"NSAlert", "runModal", [](id self, SEL command) -> NSInteger {
                                     if (![NSThread isMainThread]) return run_modal(self, command);
                                     FaxAlertPanel *panel = [[FaxAlertPanel alloc] initWithAlert:self];
                                     NSInteger const answer = [panel run];
                                     [panel release];
                                     return answer;
                                   }};

}  // namespace
