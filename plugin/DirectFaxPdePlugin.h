// The bundle's principal class: the factory that the host asks for panels.
#pragma once
#import <PrintCore/PDEPluginInterface.h>

#import "support/ClassNames.h"

@interface DirectFaxPdePlugin : NSObject <PDEPlugIn> {
  NSBundle *theBundle;
}
@end
