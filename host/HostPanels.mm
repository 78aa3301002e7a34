#import "host/HostPanels.h"

#include <set>
#include <vector>

#import "host/HostEventFence.h"
#import "host/HostScreenMap.h"
#import "host/controls.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

@interface HostPanels ()
- (HostPanel *)panelAt:(NSInteger)item;
- (void)show:(NSInteger)item;
- (void)restore:(HostPanel *)panel;
- (BOOL)save:(HostPanel *)panel;
- (void)tellFailure:(NSString *)what;
@end

// A view that says one sentence.
static NSView *NoticeView(NSString *text) {
  CGFloat const width = text_width(text) + 8;
  NSView *view = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, width, 60)] autorelease];
  NSTextField *label = make_label(text, NSCenterTextAlignment);
  [label setFrame:NSMakeRect(0, 30, width, 18)];
  [view addSubview:label];
  return view;
}

@implementation HostPanels

- (id)initWithWindow:(HostDialogWindow *)window news:(HostNews *)news owner:(id<HostPanelsOwner>)owner {
  if (!(self = [super init])) return nil;
  _window = [window retain];
  _news = [news retain];
  _owner = owner;
  _panels = [NSMutableArray new];
  _features = [[HostFeatures alloc] initWithOwner:self];
  _summary = [HostSummary new];
  _shown = -1;
  [[NSNotificationCenter defaultCenter] addObserver:self
                                           selector:@selector(eventDidFail:)
                                               name:HostEventDidFail
                                             object:nil];
  return self;
}

- (void)dealloc {
  [[NSNotificationCenter defaultCenter] removeObserver:self];
  [self drop];
  [_features release];
  [_summary release];
  [_panels release];
  [_news release];
  [_window release];
  [super dealloc];
}

- (void)drop {
  [_callback detach];
  [_panels makeObjectsPerformSelector:@selector(detach)];
  [_window clearArea];
  _shown = -1;
  [_panels removeAllObjects];
  [_callback release];
  _callback = nil;
}

- (void)usePanels:(NSArray *)panels
         callback:(HostCallback *)callback
              ppd:(std::shared_ptr<PpdFile> const &)ppd
    featuresFirst:(BOOL)featuresFirst {
  _callback = [callback retain];
  [_panels addObjectsFromArray:panels];
  std::set<std::string> taken;
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    NSArray *keys = [[_panels objectAtIndex:at] supportedKeys];
    for (NSUInteger key = 0; key < [keys count]; ++key) taken.insert(utf8([keys objectAtIndex:key]));
  }
  [_features showPPD:ppd except:taken];
  NSMutableArray *titles = [NSMutableArray array];
  for (NSUInteger at = 0; at < [_panels count]; ++at) [titles addObject:[[_panels objectAtIndex:at] name]];
  [titles addObject:ns(tr("Printer Features"))];
  [titles addObject:ns(tr("Summary"))];
  fill_pop_up([_window panelPopUp], titles);
  if (featuresFirst) [[_window panelPopUp] selectItemAtIndex:static_cast<NSInteger>([_panels count])];
}

- (HostPanel *)panelAt:(NSInteger)item {
  bool const own = item < 0 || static_cast<NSUInteger>(item) >= [_panels count];
  return own ? nil : [_panels objectAtIndex:static_cast<NSUInteger>(item)];
}

- (HostPanel *)shownPanel {
  return [self panelAt:_shown];
}

- (BOOL)hasPanels {
  return [_panels count] > 0;
}

// Which one is shown.

- (void)showNotice:(NSString *)text {
  fill_pop_up([_window panelPopUp], [NSArray array]);
  _shown = -1;
  [_window showView:NoticeView(text) keepsSize:YES];
}

- (void)showChosen {
  [self show:[[_window panelPopUp] indexOfSelectedItem]];
}

- (void)show:(NSInteger)item {
  if (item < 0) return;
  [[_window panelPopUp] selectItemAtIndex:item];
  HostPanel *panel = [self panelAt:item];
  NSView *view = nil;
  if (panel) {
    view = [panel view];
    if (!view) view = NoticeView(ns(tr("This panel has nothing to show.")));
    [self restore:panel];
    [panel willShow];
  } else if (item == static_cast<NSInteger>([_panels count])) {
    view = [_features view];
    [_features refresh];
  } else {
    view = [_summary view];
  }
  _shown = item;
  [_window showView:view keepsSize:panel != nil];
  [self refreshSummary];
}

- (void)userDidChoose {
  NSInteger const item = [[_window panelPopUp] indexOfSelectedItem];
  if (item == _shown) return;
  if (![self leave]) {
    [[_window panelPopUp] selectItemAtIndex:_shown];
    return;
  }
  [_window setStatus:@""];
  [self show:item];
}

- (BOOL)leave {
  HostPanel *panel = [self shownPanel];
  if (!panel) return YES;
  [[_window window] makeFirstResponder:nil];
  if (![panel shouldHide]) {
    [_window setStatus:ns(tr("\"{0}\" has to stay open for now.", utf8([panel name])))];
    return NO;
  }
  return [self save:panel];
}

// What they hold.

- (void)restore:(HostPanel *)panel {
  NSString *message = nil;
  if ([panel restore:&message]) return;
  [_window setStatus:message ? message : ns(tr("\"{0}\" could not read its settings.", utf8([panel name])))];
}

- (void)restoreIfDue {
  if (!_restoreDue) return;
  _restoreDue = NO;
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    // What was typed is saved first: to restore means to read the settings.
    HostPanel *panel = [_panels objectAtIndex:at];
    [self save:panel];
    [self restore:panel];
  }
}

// Lets a panel write its values. On a NO the field that the panel set back is named and gets the focus.
- (BOOL)save:(HostPanel *)panel {
  NSView *const view = [self shownPanel] == panel ? [panel view] : nil;
  NSArray *const fields = view ? HostEditableFields(view) : [NSArray array];
  NSMutableArray *const before = [NSMutableArray array];
  for (NSUInteger at = 0; at < [fields count]; ++at) [before addObject:[[fields objectAtIndex:at] stringValue]];
  NSString *message = nil;
  if ([panel save:&message]) return YES;
  for (NSUInteger at = 0; at < [fields count]; ++at) {
    NSTextField *field = [fields objectAtIndex:at];
    if ([[field stringValue] isEqual:[before objectAtIndex:at]]) continue;
    NSString *const label = HostLabelOf(field, view);
    if (!message && [label length]) {
      message = ns(tr("The value of \"{0}\" was not accepted and is as it was before.", utf8(label)));
    }
    [[_window window] makeFirstResponder:field];
    break;
  }
  [_window setStatus:message ? message : ns(tr("\"{0}\" holds a value that is not accepted.", utf8([panel name])))];
  return NO;
}

- (BOOL)saveAll {
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    if ([self save:[_panels objectAtIndex:at]]) continue;
    NSString *const why = [[[_window status] copy] autorelease];
    if (_shown != static_cast<NSInteger>(at)) [self show:static_cast<NSInteger>(at)];
    [_window setStatus:why];
    return NO;
  }
  return YES;
}

- (BOOL)letPrint {
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    if (![[_panels objectAtIndex:at] shouldPrint]) return NO;
  }
  return YES;
}

- (void)refreshSummary {
  if (_shown != static_cast<NSInteger>([_panels count]) + 1) return;
  std::vector<SummarySection> sections{[_owner dialogSummary]};
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    HostPanel *panel = [_panels objectAtIndex:at];
    if (![self save:panel]) continue;
    sections.push_back({utf8([panel name]), [panel summary]});
  }
  [_summary showSections:sections];
}

// What they and Printer Features tell.

- (void)callback:(HostCallback *)callback didMark:(NSString *)keyword {
  [_features refresh];
}

- (void)callback:(HostCallback *)callback didRefuse:(NSString *)keyword reason:(NSString *)reason {
  _restoreDue = YES;
  [_news tellLater:utf8(reason)];
}

- (void)panel:(HostPanel *)panel didRaise:(NSString *)what {
  [self tellFailure:what];
}

- (void)eventDidFail:(NSNotification *)notification {
  [self tellFailure:[notification object]];
}

- (void)tellFailure:(NSString *)what {
  [_window setStatus:what];
  [_news tellOnce:utf8(what)];
}

- (void)featureDidChange:(NSString *)keyword choice:(NSString *)choice {
  for (NSUInteger at = 0; at < [_panels count]; ++at) {
    [[_panels objectAtIndex:at] optionDidChange:keyword choice:choice];
  }
}

- (void)featureRefused:(NSString *)keyword reason:(NSString *)reason {
  [_news tellLater:utf8(reason)];
}

@end
