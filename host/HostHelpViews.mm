#import "host/HostHelpViews.h"

#include <algorithm>

namespace {

constexpr CGFloat kLine = 40;

// The toolkit has its command key there.
constexpr unsigned kAltKey = NSCommandKeyMask;

// The keys that make another one of a key.
unsigned modifiers(NSEvent *event) {
  return [event modifierFlags] & (NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask | NSShiftKeyMask);
}

unichar key(NSEvent *event) {
  NSString *characters = [event charactersIgnoringModifiers];
  return [characters length] == 1 ? [characters characterAtIndex:0] : 0;
}

}  // namespace

@implementation HostHelpPanel

- (void)setKeys:(id<HostHelpKeys>)keys {
  _keys = keys;
}

- (BOOL)takeKey:(NSEvent *)event {
  unsigned const with = modifiers(event);
  switch (key(event)) {
    case 0x1B: [_keys leave:self]; return YES;
    case 'f': if (with == NSControlKeyMask) [_keys focusSearch:self]; return with == NSControlKeyMask;
    case NSLeftArrowFunctionKey: if (with == kAltKey) [_keys goBack:self]; return with == kAltKey;
    case NSRightArrowFunctionKey: if (with == kAltKey) [_keys goForward:self]; return with == kAltKey;
    default: return NO;
  }
}

- (void)sendEvent:(NSEvent *)event {
  if ([event type] != NSKeyDown || ![self takeKey:event]) [super sendEvent:event];
}

@end

@implementation HostHelpTextView

// The link that the character belongs to, with all of its text; the range is empty where there is none.
- (NSRange)linkAt:(NSUInteger)place {
  NSRange range;
  id const link = [[self textStorage] attribute:NSLinkAttributeName
                                        atIndex:place
                          longestEffectiveRange:&range
                                        inRange:NSMakeRange(0, [[self textStorage] length])];
  return link ? range : NSMakeRange(place, 0);
}

- (BOOL)selectLink:(int)direction {
  NSUInteger const length = [[self textStorage] length];
  NSRange const selected = [self selectedRange];
  for (NSUInteger at = direction > 0 ? NSMaxRange(selected) : selected.location; direction > 0 ? at < length : at > 0;
       direction > 0 ? ++at : --at) {
    NSRange const link = [self linkAt:direction > 0 ? at : at - 1];
    if (link.length == 0) continue;
    [self setSelectedRange:link];
    [self scrollRangeToVisible:link];
    return YES;
  }
  return NO;
}

- (BOOL)followLink {
  NSRange const selected = [self selectedRange];
  if (selected.length == 0) return NO;
  id const link = [[self textStorage] attribute:NSLinkAttributeName atIndex:selected.location effectiveRange:NULL];
  if (link) [self clickedOnLink:link atIndex:selected.location];
  return link != nil;
}

- (BOOL)scrollTo:(CGFloat)top {
  NSClipView *clip = [[self enclosingScrollView] contentView];
  CGFloat const lowest = std::max<CGFloat>(0, [self frame].size.height - [clip bounds].size.height);
  [clip scrollToPoint:NSMakePoint(0, std::clamp<CGFloat>(top, 0, lowest))];
  [[self enclosingScrollView] reflectScrolledClipView:clip];
  return YES;
}

- (BOOL)takeKey:(NSEvent *)event {
  unsigned const with = modifiers(event);
  unichar const pressed = key(event);
  if (pressed == NSBackTabCharacter || (pressed == '\t' && with == NSShiftKeyMask)) return [self selectLink:-1];
  if (with != 0) return NO;
  NSRect const seen = [[[self enclosingScrollView] contentView] bounds];
  switch (pressed) {
    case '\t': return [self selectLink:+1];
    case '\r': return [self followLink];
    case NSUpArrowFunctionKey: return [self scrollTo:seen.origin.y - kLine];
    case NSDownArrowFunctionKey: return [self scrollTo:seen.origin.y + kLine];
    case NSPageUpFunctionKey: return [self scrollTo:seen.origin.y - seen.size.height + kLine];
    case NSPageDownFunctionKey:
    case ' ': return [self scrollTo:seen.origin.y + seen.size.height - kLine];
    case NSHomeFunctionKey: return [self scrollTo:0];
    case NSEndFunctionKey: return [self scrollTo:[self frame].size.height];
    default: return NO;
  }
}

- (void)keyDown:(NSEvent *)event {
  if ([self takeKey:event]) return;
  unichar const pressed = key(event);
  if (pressed == '\t' && modifiers(event) == 0) {
    [[self window] selectKeyViewFollowingView:self];
  } else if (pressed == NSBackTabCharacter || pressed == '\t') {
    [[self window] selectKeyViewPrecedingView:self];
  } else {
    [super keyDown:event];
  }
}

@end
