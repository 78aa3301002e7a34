#import "plugin/DirectFaxPdeView.h"

#import "view/BasicPdeView+Hints.h"

namespace {

struct TaggedControl {
  NSInteger tag;
  char const *keyword;  // NULL: not a PPD option, translated from the string tables
};

// Each option has two controls: its title, then its pop-up.
constexpr TaggedControl directFaxPPDDict[] = {
    {1, "QXFaxImageQuality"},
    {2, "QXFaxImageQuality"},
    {3, "QXFaxTransmissionReport"},
    {4, "QXFaxTransmissionReport"},
    {5, NULL},
    {6, NULL},
    {7, "QXFaxCoverPageMode"},
    {8, "QXFaxCoverPageMode"},
    {9, "QXFaxSenderMode"},
    {10, "QXFaxSenderMode"},
    {11, NULL},
    {12, NULL},
    {0, NULL},
};

}  // namespace

@implementation DirectFaxPdeView

- (void)initializeControls {
  for (TaggedControl const *row = directFaxPPDDict; row->tag != 0; row++) {
    NSView *control = [self viewWithTag:row->tag];
    if (control == nil) continue;
    if (row->keyword != NULL)
      [self localizePPDControl:control withKeyword:row->keyword];
    else
      [self localizeControl:control];
  }
  [self localizeControl:coverSettingGroup];
  [self beginHints];
}

- (NSString *)hint {
  if (senderModePopup != nil && ![senderModePopup isEnabled]) return @"Choose a cover page first.";
  if (senderNameTextEdit != nil && ![senderNameTextEdit isEnabled]) return @"To type a name, choose that under Sender.";
  return nil;
}

@end
