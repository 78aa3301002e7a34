#import "host/HostCallback.h"

#import "toolkit/text.h"

@implementation HostCallback

- (id)initWithPPD:(std::shared_ptr<fax::host::PpdFile> const &)ppd
          printer:(PMPrinter)printer
         settings:(PMPrintSettings)settings
          session:(PMPrintSession)session
            owner:(id<HostCallbackOwner>)owner {
  if (!(self = [super init])) return nil;
  _ppd = new std::shared_ptr<fax::host::PpdFile>(ppd);
  _printer = printer;
  _settings = settings;
  _session = session;
  _owner = owner;
  if (_printer) PMRetain(_printer);
  if (_settings) PMRetain(_settings);
  if (_session) PMRetain(_session);
  return self;
}

- (void)dealloc {
  if (_printer) PMRelease(_printer);
  if (_settings) PMRelease(_settings);
  if (_session) PMRelease(_session);
  delete _ppd;
  [super dealloc];
}

- (void)detach {
  _owner = nil;
}

- (PMPrintSession)printSession {
  return _session;
}

- (PMPrintSettings)printSettings {
  return _settings;
}

- (PMPrinter)PMPrinter {
  return _printer;
}

- (ppd_file_t *)ppdFile {
  return *_ppd ? (*_ppd)->handle() : nullptr;
}

- (BOOL)willChangePPDOptionKeyValue:(NSString *)keyword ppdChoice:(NSString *)choice {
  if (!_owner || !*_ppd || !keyword || !choice) return NO;
  auto const result = (*_ppd)->mark(fax::toolkit::utf8(keyword), fax::toolkit::utf8(choice));
  if (result) {
    [_owner callback:self didMark:keyword];
  } else {
    [_owner callback:self didRefuse:keyword reason:fax::toolkit::ns(result.reason)];
  }
  return result.accepted;
}

@end
