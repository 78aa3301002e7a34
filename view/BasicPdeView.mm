#import "view/BasicPdeView.h"

#include "support/ppd_attributes.h"
#import "view/NSBundle+KORLUM.h"

@implementation BasicPdeView

- (id)initWithFrame:(NSRect)frame {
  self = [super initWithFrame:frame];
  if (self != nil) {
    thisBundle = nil;
    ppd = NULL;
    ppdDictionary = nil;
    localizedFileName = nil;
  }
  return self;
}

- (void)setBundle:(NSBundle *)bundle {
  [bundle retain];
  [thisBundle release];
  thisBundle = bundle;
}

- (void)setPPD:(ppd_file_t *)file {
  ppd = file;
  [ppdDictionary release];
  ppdDictionary = [[NSMutableDictionary alloc] init];
  if (ppd == NULL) return;
  NSString *index = (NSString *)CopyPPDAttribute(ppd, "QXLocalizableFileIndex");
  if (index == nil) return;
  [localizedFileName release];
  localizedFileName = [[NSString alloc] initWithFormat:@"Localizable%@", index];
  [index release];
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [thisBundle release];
  [ppdDictionary release];
  [localizedFileName release];
  [super dealloc];
}

- (NSString *)translationOf:(NSString *)text {
  if (thisBundle == nil || text == nil) return text;
  return [thisBundle korlumLocalizedStringForKey:text value:nil table:localizedFileName];
}

- (void)localizeTextField:(NSTextField *)field {
  [field setStringValue:[self translationOf:[field stringValue]]];
}

- (void)localizeButton:(NSButton *)button {
  [button setTitle:[self translationOf:[button title]]];
}

- (void)localizePopup:(NSPopUpButton *)popup {
  NSEnumerator *items = [[popup itemArray] objectEnumerator];
  while (NSMenuItem *item = [items nextObject]) [item setTitle:[self translationOf:[item title]]];
}

- (void)localizeTableView:(NSTableView *)table {
  NSEnumerator *columns = [[table tableColumns] objectEnumerator];
  while (NSTableColumn *column = [columns nextObject])
    [[column headerCell] setStringValue:[self translationOf:[[column headerCell] stringValue]]];
}

- (void)localizeTabView:(NSTabView *)tabs {
  NSEnumerator *items = [[tabs tabViewItems] objectEnumerator];
  while (NSTabViewItem *item = [items nextObject]) {
    [item setLabel:[self translationOf:[item label]]];
    [self localizeControl:[item view]];
  }
}

- (void)localizeGeneralControl:(NSView *)view {
  if (![view respondsToSelector:@selector(setTitle:)] || ![view respondsToSelector:@selector(title)]) return;
  [(NSBox *)view setTitle:[self translationOf:[(NSBox *)view title]]];
}

- (void)localizeSubviewsOf:(NSView *)view {
  NSEnumerator *subviews = [[NSArray arrayWithArray:[view subviews]] objectEnumerator];
  while (NSView *subview = [subviews nextObject]) [self localizeControl:subview];
}

- (void)localizeControl:(NSView *)view {
  if ([view isMemberOfClass:[NSPopUpButton class]]) {
    [self localizePopup:(NSPopUpButton *)view];
  } else if ([view isMemberOfClass:[NSTextField class]]) {
    if (![(NSTextField *)view isEditable]) [self localizeTextField:(NSTextField *)view];
  } else if ([view isMemberOfClass:[NSButton class]]) {
    [self localizeButton:(NSButton *)view];
  } else if ([view isMemberOfClass:[NSTableView class]]) {
    [self localizeTableView:(NSTableView *)view];
  } else if ([view isMemberOfClass:[NSTabView class]]) {
    [self localizeTabView:(NSTabView *)view];
  } else {
    [self localizeGeneralControl:view];
    [self localizeSubviewsOf:view];
  }
}

- (void)localizeWindowTitle:(NSView *)view {
  NSWindow *window = [view window];
  if (window != nil) [window setTitle:[self translationOf:[window title]]];
}

- (void)localizeAllControls {
  [self localizeWindowTitle:self];
  [self localizeSubviewsOf:self];
}

- (void)localizeToolTips:(NSView *)view {
  if ([[view toolTip] length] > 0) [view setToolTip:[self translationOf:[view toolTip]]];
  NSMutableArray *inner = [NSMutableArray arrayWithArray:[view subviews]];
  if ([view isKindOfClass:[NSTabView class]])
    [inner addObjectsFromArray:[[(NSTabView *)view tabViewItems] valueForKey:@"view"]];
  NSEnumerator *views = [inner objectEnumerator];
  while (NSView *next = [views nextObject]) [self localizeToolTips:next];
}

- (void)localizePPDTextField:(NSTextField *)field withKeyword:(char const *)keyword {
  if (ppd == NULL) return;
  ppd_option_t *option = ppdFindOption(ppd, keyword);
  if (option == NULL) return;
  NSString *text = [NSString stringWithUTF8String:option->text];
  if (text != nil) [field setStringValue:text];
}

- (void)localizePPDPopup:(NSPopUpButton *)popup withKeyword:(char const *)keyword {
  if (ppd == NULL) return;
  NSString *key = [NSString stringWithCString:keyword encoding:NSASCIIStringEncoding];
  if (key == nil) return;
  [ppdDictionary setObject:popup forKey:key];
  ppd_option_t *option = ppdFindOption(ppd, keyword);
  if (option == NULL) return;
  [popup removeAllItems];
  for (int i = 0; i < option->num_choices; i++) {
    ppd_choice_t const &choice = option->choices[i];
    NSString *title = [NSString stringWithUTF8String:choice.text];
    if (title == nil) title = [NSString stringWithCString:choice.text encoding:NSISOLatin1StringEncoding];
    // A pop-up keeps its titles unique and would drop the earlier of two choices with one text; its menu does not.
    if ([popup indexOfItemWithTitle:title] >= 0)
      [[popup menu] addItemWithTitle:title action:NULL keyEquivalent:@""];
    else
      [popup addItemWithTitle:title];
    [[popup lastItem] setRepresentedObject:[NSString stringWithCString:choice.choice
                                                              encoding:NSASCIIStringEncoding]];
  }
}

- (void)localizePPDControl:(NSView *)control withKeyword:(char const *)keyword {
  if ([control isMemberOfClass:[NSPopUpButton class]])
    [self localizePPDPopup:(NSPopUpButton *)control withKeyword:keyword];
  else if ([control isMemberOfClass:[NSTextField class]])
    [self localizePPDTextField:(NSTextField *)control withKeyword:keyword];
}

- (NSString *)ppdKeywordForObject:(id)control {
  NSArray *keywords = [ppdDictionary allKeysForObject:control];
  return [keywords count] > 0 ? [keywords objectAtIndex:0] : nil;
}

- (void)setValue:(NSString *)value forPPDKeyword:(NSString *)keyword {
  id control = [ppdDictionary objectForKey:keyword];
  if ([control respondsToSelector:@selector(selectItemWithTitle:)])
    [control selectItemWithTitle:value];
  else
    [control setTitle:value];
}

- (void)setEnabled:(BOOL)enabled forPPDKeyword:(NSString *)keyword {
  [[ppdDictionary objectForKey:keyword] setEnabled:enabled];
}

@end
