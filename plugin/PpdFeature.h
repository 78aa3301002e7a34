// One option of the printer's PPD on the panel, with the choice that the panel holds for current.
//
// Owns nothing: title and choice point into the host's PPD, which outlives every feature. Marking choices in the PPD is
// the host's business.
#pragma once
#import <Foundation/Foundation.h>

#include <cups/ppd.h>

#import "support/ClassNames.h"

@interface PpdFeature : NSObject {
  ppd_file_t *ppd;
  char keyword[256];  // UTF-8
  char *title;  // UTF-8; NULL when the PPD lacks the option
  ppd_choice_t *curChoice;  // NULL when none
}

// file may be NULL. A keyword of 255 bytes or more is cut.
- (id)initWithPPD:(ppd_file_t *)file andKeyowrd:(NSString *)key;
- (void)setSummaryInfo:(NSMutableDictionary *)summary;
// Also appends the title to order.
- (void)setSummaryInfo:(NSMutableDictionary *)summary andOrder:(NSMutableArray *)order;
// Makes the PPD's default choice current, where the option has it.
- (void)setDefault;
- (NSString *)keyword;
// The option's and the current choice's texts for display, and the current choice's keyword. nil when there is none.
- (NSString *)title;
- (NSString *)curValue;
- (NSString *)curChoice;
- (void)setCurChoice:(ppd_choice_t *)choice;
@end
