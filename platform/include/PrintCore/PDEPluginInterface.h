// The print dialog extension protocols: what a host asks of an extension's factory and panels, and what they may ask of
// the host. Declarations only; the method lists are those of macOS.
#pragma once
#import <AppKit/AppKit.h>
#include <PrintCore/PrintCore.h>
#include <cups/ppd.h>

@protocol PDEPlugIn
- (BOOL)initWithBundle:(NSBundle *)bundle;
// Panels for a panel type; host answers PDEPluginCallback.
- (NSArray *)PDEPanelsForType:(NSString *)type withHostInfo:(id)host;
@end

@protocol PDEPanel
- (NSView *)panelView;
- (NSString *)panelName;
- (NSString *)panelKind;
- (NSArray *)supportedPPDOptionKeys;
- (void)PPDOptionKeyValueDidChange:(NSString *)keyword ppdChoice:(NSString *)choice;
- (void)willShow;
- (BOOL)shouldHide;
- (BOOL)saveValuesAndReturnError:(NSError **)error;
- (BOOL)restoreValuesAndReturnError:(NSError **)error;
- (NSDictionary *)summaryInfo;
@optional
- (BOOL)shouldShowHelp;
- (BOOL)shouldPrint;
@end

@protocol PDEPluginCallback
- (PMPrintSession)printSession;
- (PMPrintSettings)printSettings;
- (PMPrinter)PMPrinter;
- (ppd_file_t *)ppdFile;
- (BOOL)willChangePPDOptionKeyValue:(NSString *)keyword ppdChoice:(NSString *)choice;
@end
