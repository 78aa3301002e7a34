// What the dialog tells an extension's panels, and where they ask for a change of a PPD option.
#pragma once
#include <PrintCore/PDEPluginInterface.h>

#include <memory>

#include "host/core/ppd_file.h"

@class HostCallback;

@protocol HostCallbackOwner
// A choice was marked for a panel.
- (void)callback:(HostCallback *)callback didMark:(NSString *)keyword;
// A choice was refused; reason is a sentence for the user.
- (void)callback:(HostCallback *)callback didRefuse:(NSString *)keyword reason:(NSString *)reason;
@end

// Keeps the PPD, the printer, the settings and the session alive for as long as a panel holds it.
@interface HostCallback : NSObject <PDEPluginCallback> {
  std::shared_ptr<fax::host::PpdFile> *_ppd;
  PMPrintSession _session;
  PMPrintSettings _settings;
  PMPrinter _printer;
  id<HostCallbackOwner> _owner;
}
// ppd may be empty, printer NULL. owner is not retained; see -detach.
- (id)initWithPPD:(std::shared_ptr<fax::host::PpdFile> const &)ppd
          printer:(PMPrinter)printer
         settings:(PMPrintSettings)settings
          session:(PMPrintSession)session
            owner:(id<HostCallbackOwner>)owner;
// The dialog shows another printer now: further requests are refused without a word.
- (void)detach;
@end
