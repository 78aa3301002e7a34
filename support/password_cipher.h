// The fax password as it stands in the print settings: encoded, scrambled, base64. Plain C linkage; reentrant.
#pragma once

#include "support/export.h"

#include <CoreFoundation/CoreFoundation.h>

// A new string, the caller's, of base64 characters; encoding is the printer's (GetEncodingInfoFromPPD). NULL, without a
// message, for NULL, an empty text, or one of more than 189 bytes in the encoding. A character that the encoding lacks
// ends the text.
DIRECTFAX_EXPORT CFStringRef CreateEncryptedString(CFStringRef string, CFStringEncoding encoding);

// The reverse: a new string, the caller's, of the plain text. NULL, without a message, for NULL, an empty text, a
// length that is no multiple of 4, or bytes that are no text in the encoding. The characters are not checked.
DIRECTFAX_EXPORT CFStringRef CreateDecryptedString(CFStringRef string, CFStringEncoding encoding);
