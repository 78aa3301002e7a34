// PPD attributes as the bundle looks them up: in stored order and by prefix.
#pragma once

#include "support/export.h"

#include <CoreFoundation/CoreFoundation.h>
#include <cups/ppd.h>

// The first attribute in the PPD's stored order whose name begins with name, or NULL; borrowed from the PPD. So "QXFoo"
// finds "QXFooBar" when that comes first; of several attributes of one name the first stored wins, whatever its option
// part. NULL for a NULL PPD, a NULL name and an empty one. The third argument is not read.
DIRECTFAX_EXPORT ppd_attr_t *ppdFindAttr_ALT(ppd_file_t *ppd, char const *name, char const *spec);

// The attribute's value, read as UTF-8, as a new string that the caller releases. NULL for a NULL PPD, and when there
// is no such attribute, it has no value or the value is not UTF-8.
DIRECTFAX_EXPORT CFStringRef CopyPPDAttribute(ppd_file_t *ppd, char const *name);
