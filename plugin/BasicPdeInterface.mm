#import "plugin/BasicPdeInterface.h"

#include "support/ppd_attributes.h"
#import "view/NSBundle+KORLUM.h"

@implementation BasicPdeInterface

- (id)initWithCallback:(id<PDEPluginCallback>)callback andBundle:(NSBundle *)bundle {
  self = [super init];
  if (self == nil) return nil;
  if (pluginBundle == nil) pluginBundle = [bundle retain];
  pdePluginCallbackObject = [(id)callback retain];
  thePDEName = nil;
  ppd = [pdePluginCallbackObject ppdFile];
  localizedFileName = nil;
  if (ppd != NULL) {
    NSString *index = (NSString *)CopyPPDAttribute(ppd, "QXLocalizableFileIndex");
    if (index != nil) localizedFileName = [[NSString alloc] initWithFormat:@"Localizable%@", index];
    [index release];
  }
  return self;
}

- (void)dealloc {
  [(id)pdePluginCallbackObject release];
  [thePDEName release];
  [pluginBundle release];
  [localizedFileName release];
  [super dealloc];
}

- (NSView *)panelView {
  return nil;
}

- (NSString *)panelName {
  if (thePDEName == nil)
    thePDEName = [[pluginBundle korlumLocalizedStringForKey:@"Custom PDE Title"
                                                      value:nil
                                                      table:localizedFileName] retain];
  return thePDEName;
}

- (NSString *)panelKind {
  return [pluginBundle bundleIdentifier];
}

- (NSArray *)supportedPPDOptionKeys {
  return nil;
}

- (void)willShow {
}

- (BOOL)shouldHide {
  return YES;
}

- (BOOL)shouldPrint {
  return YES;
}

- (BOOL)shouldShowHelp {
  return YES;
}

- (void)PPDOptionKeyValueDidChange:(NSString *)keyword ppdChoice:(NSString *)choice {
  (void)keyword;
  (void)choice;
}

- (BOOL)restoreValuesAndReturnError:(NSError **)error {
  (void)error;
  return YES;
}

- (BOOL)saveValuesAndReturnError:(NSError **)error {
  (void)error;
  return YES;
}

- (NSDictionary *)summaryInfo {
  return nil;
}

@end
