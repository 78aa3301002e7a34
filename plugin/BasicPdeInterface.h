// What every panel of the bundle shares: the bundle, the host's callback, the PPD, the panel's name, and a default answer
// to every question of the host.
#pragma once
#import <PrintCore/PDEPluginInterface.h>

#import "support/ClassNames.h"

@interface BasicPdeInterface : NSObject <PDEPanel> {
  NSBundle *pluginBundle;
  id<PDEPluginCallback> pdePluginCallbackObject;
  NSString *thePDEName;  // nil until it was asked for
  ppd_file_t *ppd;  // the host's; may be NULL
  NSString *localizedFileName;  // the printer's own string table, or nil
}

// Keeps both for the panel's life.
- (id)initWithCallback:(id<PDEPluginCallback>)callback andBundle:(NSBundle *)bundle;
@end
