#import "host/HostPanel.h"

#import "host/fence.h"
#import "toolkit/text.h"

using namespace fax::toolkit;

// Runs work if the panel implements the operation. YES when it ran to its end.
template <typename Work>
static BOOL Asked(HostPanel *self, id panel, id<HostPanelOwner> owner, SEL operation, Work &&work) {
  NSException *raised = fax::host::fenced([&] {
    if ([panel respondsToSelector:operation]) work(panel);
  });
  if (!raised) return YES;
  NSLog(@"%@ raised %@: %@", NSStringFromSelector(operation), [raised name], [raised reason]);
  [owner panel:self
      didRaise:ns(tr("The print dialog extension failed in {0}: {1}", utf8(NSStringFromSelector(operation)),
                      utf8([raised reason])))];
  return NO;
}

@implementation HostPanel

- (id)initWithPanel:(id)panel owner:(id<HostPanelOwner>)owner {
  if (!(self = [super init])) return nil;
  _panel = [panel retain];
  _owner = owner;
  return self;
}

- (void)dealloc {
  // The view goes first: its controls may still point at the panel.
  id const view = _view;
  id const panel = _panel;
  fax::host::fenced([&] {
    [view release];
    [panel release];
  });
  [_name release];
  [super dealloc];
}

- (void)detach {
  _owner = nil;
}

- (NSString *)name {
  if (_name) return _name;
  NSString *name = nil;
  Asked(self, _panel, _owner, @selector(panelName), [&](id<PDEPanel> panel) { name = [panel panelName]; });
  //: The name of a panel that has none.
  if (![name isKindOfClass:[NSString class]] || [name length] == 0) name = ns(tr("Extension"));
  _name = [name copy];
  return _name;
}

- (NSView *)view {
  if (_viewAsked) return _view;
  _viewAsked = YES;
  NSView *view = nil;
  Asked(self, _panel, _owner, @selector(panelView), [&](id<PDEPanel> panel) { view = [panel panelView]; });
  if ([view isKindOfClass:[NSView class]]) _view = [view retain];
  return _view;
}

- (NSArray *)supportedKeys {
  NSArray *keys = nil;
  Asked(self, _panel, _owner, @selector(supportedPPDOptionKeys),
        [&](id<PDEPanel> panel) { keys = [panel supportedPPDOptionKeys]; });
  return [keys isKindOfClass:[NSArray class]] ? keys : [NSArray array];
}

- (void)willShow {
  Asked(self, _panel, _owner, @selector(willShow), [&](id<PDEPanel> panel) { [panel willShow]; });
}

- (BOOL)shouldHide {
  BOOL answer = YES;
  Asked(self, _panel, _owner, @selector(shouldHide), [&](id<PDEPanel> panel) { answer = [panel shouldHide]; });
  return answer;
}

- (BOOL)shouldPrint {
  BOOL answer = YES;
  if (!Asked(self, _panel, _owner, @selector(shouldPrint),
             [&](id<PDEPanel> panel) { answer = [panel shouldPrint]; })) {
    return NO;
  }
  return answer;
}

- (BOOL)shouldShowHelp {
  BOOL answer = YES;
  Asked(self, _panel, _owner, @selector(shouldShowHelp), [&](id<PDEPanel> panel) { answer = [panel shouldShowHelp]; });
  return answer;
}

- (void)optionDidChange:(NSString *)keyword choice:(NSString *)choice {
  Asked(self, _panel, _owner, @selector(PPDOptionKeyValueDidChange:ppdChoice:),
        [&](id<PDEPanel> panel) { [panel PPDOptionKeyValueDidChange:keyword ppdChoice:choice]; });
}

- (BOOL)restore:(NSString **)message {
  BOOL answer = YES;
  NSError *error = nil;
  if (!Asked(self, _panel, _owner, @selector(restoreValuesAndReturnError:),
             [&](id<PDEPanel> panel) { answer = [panel restoreValuesAndReturnError:&error]; })) {
    answer = NO;
  }
  if (message) *message = answer ? nil : [error localizedDescription];
  return answer;
}

- (BOOL)save:(NSString **)message {
  BOOL answer = YES;
  NSError *error = nil;
  if (!Asked(self, _panel, _owner, @selector(saveValuesAndReturnError:),
             [&](id<PDEPanel> panel) { answer = [panel saveValuesAndReturnError:&error]; })) {
    answer = NO;
  }
  if (message) *message = answer ? nil : [error localizedDescription];
  return answer;
}

- (std::vector<fax::host::SummaryRow>)summary {
  NSString *const orderKey = @"Summary Display Order";
  std::vector<std::pair<std::string, std::string>> values;
  std::vector<std::string> order;
  Asked(self, _panel, _owner, @selector(summaryInfo), [&](id<PDEPanel> panel) {
    NSDictionary *info = [panel summaryInfo];
    if (![info isKindOfClass:[NSDictionary class]]) return;
    NSEnumerator *keys = [info keyEnumerator];
    while (id key = [keys nextObject]) {
      if (![key isEqual:orderKey]) values.emplace_back(utf8(key), utf8([info objectForKey:key]));
    }
    NSArray *list = [info objectForKey:orderKey];
    if (![list isKindOfClass:[NSArray class]]) return;
    for (NSUInteger at = 0; at < [list count]; ++at) order.push_back(utf8([list objectAtIndex:at]));
  });
  return fax::host::summary_rows(values, order);
}

@end
