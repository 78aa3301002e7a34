// The help book of a bundle and its pages. All of them do nothing, silently, when the bundle is NULL or names no book
// ("CFBundleHelpBookName" in its information dictionary). page and anchor go to the help viewer as they are; anchor may
// be NULL. Nothing is kept of the arguments.
#pragma once

#include "support/export.h"

#include <CoreFoundation/CoreFoundation.h>
#include <cups/ppd.h>

DIRECTFAX_EXPORT void RegisterHelpBook(CFBundleRef bundle);

// Opens a page of the bundle's book. page is its file name.
DIRECTFAX_EXPORT void GotoHelpPage(CFBundleRef bundle, CFStringRef page, CFStringRef anchor);

// Opens a page of the book of the printer's kind: the value of the PPD attribute keyword, else the bundle's book name,
// is a key of the information dictionary that holds the book's name. A value that is no string opens nothing; an absent
// one means the bundle's own book. ppd and keyword may be NULL.
DIRECTFAX_EXPORT void GotoHelpPage2_105(ppd_file_t *ppd, char const *keyword, CFBundleRef bundle, CFStringRef page,
                                        CFStringRef anchor);

// Opens a page of the bundle's book in the folder that the PPD attribute keyword names, else in folder. ppd and keyword
// may be NULL; without a page nothing is opened.
DIRECTFAX_EXPORT void GotoHelpPage2_106(ppd_file_t *ppd, char const *keyword, CFBundleRef bundle, CFStringRef folder,
                                        CFStringRef page, CFStringRef anchor);
