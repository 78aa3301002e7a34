#import "editor/controls.h"

#include <algorithm>
#include <cmath>

#import "toolkit/controls.h"
#import "toolkit/text.h"

using namespace fax::toolkit;

namespace fax::editor {
namespace {

constexpr NSUInteger kAlertWidth = 64;  // characters

}  // namespace

NSTextField *make_field(Class kind) {
  NSTextField *field = [[[kind alloc] initWithFrame:NSMakeRect(0, 0, 200, row_height())] autorelease];
  [field setFont:[NSFont systemFontOfSize:0]];
  [[field cell] setScrollable:YES];
  return field;
}

NSString *wrapped(NSString *text, NSUInteger characters) {
  NSMutableString *all = [NSMutableString string];
  NSUInteger line = 0;
  NSArray *words = [text componentsSeparatedByString:@" "];
  for (NSUInteger at = 0; at < [words count]; ++at) {
    NSString *word = [words objectAtIndex:at];
    bool const breaks = line + [word length] + 1 > characters;
    if (at > 0) [all appendString:breaks ? @"\n" : @" "];
    line = breaks ? [word length] : line + [word length] + 1;
    [all appendString:word];
  }
  return all;
}

void place_in_row(NSView *parent, CGFloat x, CGFloat y, NSArray *views, NSUInteger resizing) {
  for (NSUInteger at = 0; at < [views count]; ++at) {
    NSView *view = [views objectAtIndex:at];
    // A label stands on the line of its neighbours.
    CGFloat const lift = std::max<CGFloat>(0, std::floor((row_height() - [view frame].size.height) / 2));
    [view setFrameOrigin:NSMakePoint(x, y + lift)];
    [view setAutoresizingMask:resizing];
    [parent addSubview:view];
    x += [view frame].size.width + kGap;
  }
}

NSScrollView *make_list(NSTableView *table, NSRect frame, id source) {
  NSScrollView *scroll = [[[NSScrollView alloc] initWithFrame:frame] autorelease];
  [scroll setHasVerticalScroller:YES];
  [scroll setAutohidesScrollers:YES];
  [scroll setBorderType:NSBezelBorder];
  [table setColumnAutoresizingStyle:NSTableViewLastColumnOnlyAutoresizingStyle];
  [table setRowHeight:text_height() + 5];
  NSRect header = [[table headerView] frame];
  header.size.height = std::max(header.size.height, text_height() + 7);
  [[table headerView] setFrame:header];
  [table setDelegate:source];
  [table setTarget:source];
  [table setDataSource:source];
  [table setAllowsColumnReordering:NO];
  [scroll setDocumentView:table];
  return scroll;
}

NSTableColumn *add_column(NSTableView *table, NSString *identifier, NSString *title, CGFloat width) {
  NSTableColumn *column = [[[NSTableColumn alloc] initWithIdentifier:identifier] autorelease];
  [[column headerCell] setStringValue:title];
  [[column headerCell] setAlignment:NSLeftTextAlignment];
  CGFloat const title_width = std::ceil([[column headerCell] cellSize].width);
  [column setWidth:std::max(width, title_width + kGap)];
  [column setMinWidth:std::max<CGFloat>(40, title_width)];
  [column setEditable:NO];
  [table addTableColumn:column];
  return column;
}

NSColor *error_color() {
  NSColor *ground = [[NSColor windowBackgroundColor] colorUsingColorSpaceName:NSCalibratedRGBColorSpace];
  CGFloat red = 1, green = 1, blue = 1;
  if (ground != nil) [ground getRed:&red green:&green blue:&blue alpha:nullptr];
  bool const dark = 0.3 * red + 0.6 * green + 0.1 * blue < 0.45;
  return dark ? [NSColor colorWithCalibratedRed:1 green:0.6 blue:0.6 alpha:1]
              : [NSColor colorWithCalibratedRed:0.5 green:0 blue:0 alpha:1];
}

void tell(NSString *what) {
  NSAlert *alert = [[[NSAlert alloc] init] autorelease];
  [alert setMessageText:ns(tr("Address Book Editor"))];
  [alert setInformativeText:wrapped(what, kAlertWidth)];
  [alert addButtonWithTitle:ns(tr("OK"))];
  [alert runModal];
}

}  // namespace fax::editor

@implementation EditorList

- (void)dealloc {
  [_emptyText release];
  [super dealloc];
}

- (void)setEmptyText:(NSString *)text {
  [_emptyText autorelease];
  _emptyText = [text copy];
  [self setNeedsDisplay:YES];
}

- (void)drawRect:(NSRect)dirty {
  [super drawRect:dirty];
  if ([self numberOfRows] > 0 || [_emptyText length] == 0) return;
  NSMutableParagraphStyle *middle = [[[NSMutableParagraphStyle alloc] init] autorelease];
  [middle setAlignment:NSCenterTextAlignment];
  NSDictionary *look = [NSDictionary
      dictionaryWithObjectsAndKeys:[NSFont systemFontOfSize:0], NSFontAttributeName, middle,
                                   NSParagraphStyleAttributeName, [NSColor controlTextColor],
                                   NSForegroundColorAttributeName, nil];
  NSRect area = NSInsetRect([self visibleRect], kMargin, kMargin);
  CGFloat const height = [_emptyText sizeWithAttributes:look].height;
  area.origin.y += std::max<CGFloat>(0, (area.size.height - height) / 3);
  area.size.height = height + 4;
  [_emptyText drawInRect:area withAttributes:look];
}

- (void)keyDown:(NSEvent *)event {
  NSString *characters = [event characters];
  unichar const key = [characters length] > 0 ? [characters characterAtIndex:0] : 0;
  NSUInteger const modifiers = NSCommandKeyMask | NSControlKeyMask | NSAlternateKeyMask;
  id<EditorListKeys> keys = (id<EditorListKeys>)[self delegate];
  if (([event modifierFlags] & modifiers) != 0) return [super keyDown:event];
  switch (key) {
    case NSCarriageReturnCharacter:
    case NSEnterCharacter: return [keys listReturn:self];
    case NSDeleteFunctionKey:
    case NSDeleteCharacter:
    case NSBackspaceCharacter: return [keys listDelete:self];
    case ' ': return [keys listSpace:self];
    case NSTabCharacter: return [[self window] selectKeyViewFollowingView:self];
    case NSBackTabCharacter: return [[self window] selectKeyViewPrecedingView:self];
    default: return [super keyDown:event];
  }
}

@end
