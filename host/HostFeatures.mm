#import "host/HostFeatures.h"

#include <algorithm>

#import "host/controls.h"
#import "toolkit/text.h"

using namespace fax::host;
using namespace fax::toolkit;

@implementation HostFeatures

- (id)initWithOwner:(id<HostFeaturesOwner>)owner {
  if (!(self = [super init])) return nil;
  _owner = owner;
  _ppd = new std::shared_ptr<PpdFile>;
  _popUps = [NSMutableArray new];
  _keywords = [NSMutableArray new];
  _view = [[NSScrollView alloc] initWithFrame:NSMakeRect(0, 0, 400, 200)];
  [_view setHasVerticalScroller:YES];
  [_view setAutohidesScrollers:YES];
  [_view setBorderType:NSNoBorder];
  [_view setDrawsBackground:NO];
  [_view setAutoresizingMask:NSViewWidthSizable | NSViewHeightSizable];
  return self;
}

- (void)dealloc {
  [_view release];
  [_popUps release];
  [_keywords release];
  delete _ppd;
  [super dealloc];
}

- (NSView *)view {
  return _view;
}

- (void)addRow:(Feature const &)feature at:(CGFloat)y labelWidth:(CGFloat)labelWidth in:(NSView *)rows {
  CGFloat const left = labelWidth + 2 * kGap;
  NSString *const title = [ns(feature.text) stringByAppendingString:@":"];
  NSTextField *label = make_label(fitted(title, labelWidth), NSRightTextAlignment);
  [label setFrame:NSMakeRect(kGap, y + 3, labelWidth, 18)];
  [label setToolTip:title];
  NSPopUpButton *popUp = make_pop_up(self, @selector(choose:));
  [popUp setFrame:NSMakeRect(left, y, [rows frame].size.width - left - kGap, kRow)];
  [popUp setAutoresizingMask:NSViewWidthSizable];
  [popUp setTag:static_cast<NSInteger>([_popUps count])];
  NSMutableArray *titles = [NSMutableArray array];
  for (auto const &choice : feature.choices) [titles addObject:ns(choice.text)];
  fill_pop_up(popUp, titles);
  for (std::size_t at = 0; at < feature.choices.size(); ++at) {
    [[popUp itemAtIndex:static_cast<NSInteger>(at)] setRepresentedObject:ns(feature.choices[at].keyword)];
  }
  [_popUps addObject:popUp];
  [_keywords addObject:ns(feature.keyword)];
  [rows addSubview:label];
  [rows addSubview:popUp];
}

- (void)showPPD:(std::shared_ptr<PpdFile> const &)ppd except:(std::set<std::string> const &)taken {
  *_ppd = ppd;
  [_popUps removeAllObjects];
  [_keywords removeAllObjects];
  std::vector<FeatureGroup> const groups = ppd ? ppd->features(taken) : std::vector<FeatureGroup>{};
  NSSize const room = [_view contentSize];
  NSRect const area = NSMakeRect(0, 0, room.width, room.height);
  HostFlippedView *rows = [[[HostFlippedView alloc] initWithFrame:area] autorelease];
  [rows setAutoresizingMask:NSViewWidthSizable];
  CGFloat labelWidth = 0;
  for (auto const &group : groups) {
    for (auto const &feature : group.features) {
      labelWidth = std::max(labelWidth, text_width([ns(feature.text) stringByAppendingString:@":"]) + 8);
    }
  }
  labelWidth = std::min(labelWidth, std::floor(room.width * 0.5));
  CGFloat y = 0;
  for (auto const &group : groups) {
    if (groups.size() > 1) {
      NSTextField *heading = make_label(ns(group.text), NSLeftTextAlignment);
      [heading setFont:[NSFont boldSystemFontOfSize:0]];
      [heading setFrame:NSMakeRect(kGap, y + (y > 0 ? kGap : 0), room.width - 2 * kGap, 18)];
      [heading setAutoresizingMask:NSViewWidthSizable];
      [rows addSubview:heading];
      y = NSMaxY([heading frame]) + kGap;
    }
    for (auto const &feature : group.features) {
      [self addRow:feature at:y labelWidth:labelWidth in:rows];
      y += kRow + kGap;
    }
  }
  if (groups.empty()) {
    NSTextField *none = make_label(ns(tr("This printer has no further features.")), NSCenterTextAlignment);
    [none setFrame:NSMakeRect(0, kMargin, room.width, 18)];
    [none setAutoresizingMask:NSViewWidthSizable];
    [rows addSubview:none];
  }
  [rows setFrameSize:NSMakeSize(room.width, std::max(y, static_cast<CGFloat>(40)))];
  [_view setDocumentView:rows];
  [self refresh];
}

- (void)refresh {
  for (NSUInteger at = 0; at < [_popUps count]; ++at) {
    auto const marked = *_ppd ? (*_ppd)->marked_choice(utf8([_keywords objectAtIndex:at])) : std::nullopt;
    NSPopUpButton *popUp = [_popUps objectAtIndex:at];
    [popUp selectItemAtIndex:marked ? [popUp indexOfItemWithRepresentedObject:ns(*marked)] : -1];
  }
}

- (void)choose:(id)sender {
  NSString *const keyword = [_keywords objectAtIndex:static_cast<NSUInteger>([sender tag])];
  NSString *const choice = [[sender selectedItem] representedObject];
  if (!choice || !*_ppd) return;
  auto const result = (*_ppd)->mark(utf8(keyword), utf8(choice));
  // The PPD may know the choice by another spelling, so what is marked is read back in either case.
  [self refresh];
  if (result) {
    [_owner featureDidChange:keyword choice:choice];
  } else {
    [_owner featureRefused:keyword reason:ns(result.reason)];
  }
}

@end
