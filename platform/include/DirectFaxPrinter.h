// How a host on GNUstep gives its extensions a printer under another device URI than its queue's.
#pragma once
#include <PrintCore/PrintCore.h>

#ifdef __cplusplus
extern "C" {
#endif

// A new printer of the same queue and name; uri is its device URI, NULL for none. NULL when printer is none. Asks no
// server. The caller releases it.
CF_EXPORT PMPrinter DirectFaxPrinterWithDeviceURI(PMPrinter printer, CFStringRef uri);

#ifdef __cplusplus
}
#endif
