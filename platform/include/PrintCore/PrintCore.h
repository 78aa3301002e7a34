// Core Printing for GNUstep: print settings, sessions and printers.
//
// Backed by libcups destinations; print settings are an ordered dictionary of strings. All three objects are reference
// counted with PMRetain and PMRelease. Differs from macOS: a printer is a queue of the CUPS server that libcups talks
// to (CUPS_SERVER), and a queue removed while it is held keeps its name and device URI; a setting holds a string and
// nothing else; the session alone keeps the destination.
//
// Every function answers kPMInvalidParameter, or NULL, for NULL or an object of another kind where it needs one of its
// own, and for a NULL result pointer. No exception leaves any of them.
#pragma once
#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const void *PMObject;
typedef struct OpaquePMPrintSession *PMPrintSession;
typedef struct OpaquePMPrintSettings *PMPrintSettings;
typedef struct OpaquePMPrinter *PMPrinter;
typedef UInt16 PMDestinationType;

enum {
  kPMDestinationInvalid = 0,
  kPMDestinationPrinter = 1,
  kPMDestinationFile = 2,
  kPMDestinationFax = 3,
  kPMDestinationPreview = 4,
  kPMDestinationProcessPDF = 5
};

enum {
  kPMNoError = 0,
  kPMInvalidParameter = -50,
  kPMKeyNotFound = -30836,
  kPMKeyOrValueNotFound = -9549,
  kPMLocked = -9548
};

CF_EXPORT OSStatus PMRetain(PMObject object);
CF_EXPORT OSStatus PMRelease(PMObject object);

CF_EXPORT OSStatus PMCreatePrintSettings(PMPrintSettings *settings);
// *value is borrowed from the settings. kPMKeyNotFound, with *value NULL, when the key is absent.
CF_EXPORT OSStatus PMPrintSettingsGetValue(PMPrintSettings settings, CFStringRef key, CFTypeRef *value);
// Keeps a copy of value; NULL removes the key. A locked key answers kPMLocked to every later change, NULL included.
// kPMInvalidParameter for a value that is no string.
CF_EXPORT OSStatus PMPrintSettingsSetValue(PMPrintSettings settings, CFStringRef key, CFTypeRef value, Boolean locked);
// A new array of the keys in the order in which they were first set (a removed key that comes back is last); the caller
// releases it.
CF_EXPORT OSStatus PMPrintSettingsCopyKeys(PMPrintSettings settings, CFArrayRef *keys);

CF_EXPORT OSStatus PMCreateSession(PMPrintSession *session);
CF_EXPORT OSStatus PMSessionGetDestinationType(PMPrintSession session, PMPrintSettings settings,
                                               PMDestinationType *type);
// format is not read; location may be NULL. kPMInvalidParameter for a type that is not listed above. A new session's
// destination is the printer.
CF_EXPORT OSStatus PMSessionSetDestination(PMPrintSession session, PMPrintSettings settings, PMDestinationType type,
                                           CFStringRef format, CFURLRef location);
// *location is a new URL, or NULL when none was set; the caller releases it.
CF_EXPORT OSStatus PMSessionCopyDestinationLocation(PMPrintSession session, PMPrintSettings settings,
                                                    CFURLRef *location);

// A queue by name; NULL when the server has no such queue or does not answer.
CF_EXPORT PMPrinter PMPrinterCreateFromPrinterID(CFStringRef name);
// The queue's name, and the name for people: the queue's description, or its name when it has none. Both borrowed.
CF_EXPORT CFStringRef PMPrinterGetID(PMPrinter printer);
CF_EXPORT CFStringRef PMPrinterGetName(PMPrinter printer);
// *uri is a new URL that the caller releases; kPMKeyNotFound, with *uri NULL, when the queue has none or its URI is no
// URL.
CF_EXPORT OSStatus PMPrinterCopyDeviceURI(PMPrinter printer, CFURLRef *uri);

#ifdef __cplusplus
}
#endif
