// The base of every view of the bundle: translates its controls from the bundle's string tables and binds pop-ups to the
// options of the printer's PPD.
//
// A controller calls setBundle:, setPPD: and the subclass's initializeControls, in that order.
#pragma once
#import <AppKit/AppKit.h>

#include <cups/ppd.h>

#import "support/ClassNames.h"

@interface BasicPdeView : NSView {
  NSBundle *thisBundle;
  ppd_file_t *ppd;  // the caller's; may be NULL
  NSMutableDictionary *ppdDictionary;  // PPD main keyword -> the control bound to it
  NSString *localizedFileName;  // the printer's own string table, or nil
  IBOutlet NSTextField *hintLabel;  // may be nil
  BOOL showsRefusal;  // hintLabel speaks of an edit that was refused
}

- (void)setBundle:(NSBundle *)bundle;
// Drops every binding to a keyword and takes the name of the printer's own string table from the PPD, which the caller
// keeps alive as long as the view. Where the PPD names no table, the name of an earlier PPD stays.
- (void)setPPD:(ppd_file_t *)file;

// The text of the string tables for a key; the key itself where there is no bundle.
- (NSString *)translationOf:(NSString *)text;

- (void)localizeTextField:(NSTextField *)field;
- (void)localizeButton:(NSButton *)button;
- (void)localizePopup:(NSPopUpButton *)popup;
- (void)localizeTableView:(NSTableView *)table;
- (void)localizeTabView:(NSTabView *)tabs;
- (void)localizeGeneralControl:(NSView *)view;
// Translates a view by its exact class, and what it holds. Text that a person types is left alone.
- (void)localizeControl:(NSView *)view;
- (void)localizeWindowTitle:(NSView *)view;
- (void)localizeAllControls;
// The tool tips of a view and of all that it holds, hidden tabs included.
- (void)localizeToolTips:(NSView *)view;

// keyword: a PPD main keyword, ASCII. A keyword that the PPD lacks leaves the control as it is.
- (void)localizePPDTextField:(NSTextField *)field withKeyword:(char const *)keyword;
- (void)localizePPDPopup:(NSPopUpButton *)popup withKeyword:(char const *)keyword;
- (void)localizePPDControl:(NSView *)control withKeyword:(char const *)keyword;

// nil when the control is not bound.
- (NSString *)ppdKeywordForObject:(id)control;
// value is a displayed title, not a choice keyword.
- (void)setValue:(NSString *)value forPPDKeyword:(NSString *)keyword;
- (void)setEnabled:(BOOL)enabled forPPDKeyword:(NSString *)keyword;
@end
