// Apple Help for GNUstep: registered help books and their pages.
//
// A book is a bundle whose information dictionary names it (CFBundleHelpBookName) and its folder
// (CFBundleHelpBookFolder, inside the bundle's resources). Inside the folder, or around it, one .lproj folder a
// language holds the pages; the user's languages (the default NSLanguages) are tried in their order, then English, then
// the folder itself. A page is never looked for outside the folder. It opens in the help viewer that the host installed
// (DirectFaxHelp.h); when there is none or it refuses, in the desktop's browser (xdg-open, if DISPLAY or
// WAYLAND_DISPLAY is set), which is not waited for. All functions: main thread only.
#pragma once
#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

enum { kAHInternalErr = -10790, kAHInternalErr2 = -10791 };
enum { kAHParamErr = -50, kAHNoSuchBook = -43 };

// Remembers the book of the bundle at url for this process, in place of any book of the same name. kAHParamErr when no
// bundle is there, kAHNoSuchBook when it names no book or no folder.
CF_EXPORT OSStatus AHRegisterHelpBookWithURL(CFURLRef url);
// Opens a page of a registered book. path and anchor may be NULL: the book's first page, no anchor. kAHNoSuchBook when
// the book or the page is not there, kAHInternalErr when nothing could show it, kAHParamErr for a NULL book. The first
// page is index.htm or index.html.
CF_EXPORT OSStatus AHGotoPage(CFStringRef book, CFStringRef path, CFStringRef anchor);

#ifdef __cplusplus
}
#endif
