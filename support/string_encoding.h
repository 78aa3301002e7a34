// Text in the printer's language and from the device: which encoding the PPD declares, an escaped form for texts that
// hold separators, and 16-bit buffers. No state; reentrant.
#pragma once

#include "support/export.h"

#include <CoreFoundation/CoreFoundation.h>
#include <cups/ppd.h>

// The encoding of the PPD attribute "QXPrinterLanguageEncoding"; kCFStringEncodingShiftJIS_X0213 for a null PPD,
// without the attribute and for any value that is not known.
DIRECTFAX_EXPORT CFStringEncoding GetEncodingInfoFromPPD(ppd_file_t *ppd);

// "a,b" -> "/97/44/98": when the text holds a comma, apostrophe, backslash or slash, every byte of it (in the encoding)
// as a slash and its signed decimal value; otherwise string itself, retained. The caller releases the result. An
// escaped form that reaches 1,023 characters ends with the item that reached it. NULL for NULL; NULL with a line on
// standard error when the text does not convert or takes more than 255 bytes.
DIRECTFAX_EXPORT CFStringRef CopyEncodedString(CFStringRef string, CFStringEncoding encoding);

// "/97/44/98" -> "a,b"; a text that does not begin with a slash is returned itself, retained. The caller releases the
// result. Values above 255 become 255, negative ones are taken as a signed byte, a value of 0 ends the text. NULL when
// the decoded bytes are no text in the encoding; NULL with a line on standard error for NULL or when string does not
// convert or takes more than 255 bytes.
DIRECTFAX_EXPORT CFStringRef CopyDecodedString(CFStringRef string, CFStringEncoding encoding);

// Units before the first 0 unit; -1 when there is none in the buffer, for NULL and for a size below 2. size in bytes.
DIRECTFAX_EXPORT SInt32 unicharLength(UniChar const *buffer, SInt32 size);
