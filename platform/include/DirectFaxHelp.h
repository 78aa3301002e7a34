// How a host on GNUstep shows help pages in a window of its own instead of the desktop's browser.
#pragma once
#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

// Called on the main thread. page is a file URL, borrowed; anchor may be NULL. True when the page is on the screen.
typedef Boolean (*DirectFaxHelpViewer)(CFURLRef page, CFStringRef anchor, void *context);
// Replaces the viewer; NULL takes it away again. context must outlive it.
CF_EXPORT void DirectFaxSetHelpViewer(DirectFaxHelpViewer viewer, void *context);
// The first page (index.htm or index.html) of every registered book that has one, in the language that AHGotoPage would
// show: file URLs. The caller releases the array. Main thread only.
CF_EXPORT CFArrayRef DirectFaxCopyHelpBooks(void);

#ifdef __cplusplus
}
#endif
