// Core Foundation for GNUstep: the subset of strings, bundles, URLs and containers that the bundle calls.
//
// Every object is a Foundation object (toll-free: a CFStringRef is an NSString *, a CFBundleRef an NSBundle *, a
// CFURLRef an NSURL *, a CFArrayRef an NSArray *, a CFDictionaryRef an NSDictionary *, a CFBooleanRef an NSNumber *),
// so a cast is all that a caller needs. Names, types, ownership and results are those of macOS: Create and Copy give an
// object that the caller releases with CFRelease, Get gives a borrowed one. Plain C: usable without an Objective-C
// compiler.
//
// Differs from macOS: CFBundleRef and NSBundle * are one and the same here and are not there, so portable code never
// casts between them but asks CFBundleGetBundleWithIdentifier.
//
// No exception leaves any function: one that arises inside is logged and the function answers NULL, 0 or false. A
// reference may be NULL, which answers the same, and must else be an object of the type that it is declared with.
#pragma once
#ifdef __APPLE__
#error "platform/ stands in for system headers; on macOS keep it off the include path"
#endif

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define CF_EXPORT extern __attribute__((visibility("default")))

typedef unsigned char Boolean;
typedef int8_t SInt8;
typedef uint8_t UInt8;
typedef int16_t SInt16;
typedef uint16_t UInt16;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef int64_t SInt64;
typedef uint64_t UInt64;
typedef SInt32 OSStatus;
typedef UInt32 FourCharCode;
typedef FourCharCode OSType;
typedef UInt16 UniChar;

#ifndef noErr
#define noErr 0
#endif

typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef CFIndex CFComparisonResult;
typedef const void *CFTypeRef;
typedef const struct __CFAllocator *CFAllocatorRef;
typedef const struct __CFString *CFStringRef;
typedef const struct __CFArray *CFArrayRef;
typedef const struct __CFDictionary *CFDictionaryRef;
typedef const struct __CFBoolean *CFBooleanRef;
typedef const struct __CFURL *CFURLRef;
typedef struct __CFBundle *CFBundleRef;
typedef struct __CFError *CFErrorRef;

typedef struct {
  CFIndex location;
  CFIndex length;
} CFRange;

static inline CFRange CFRangeMake(CFIndex location, CFIndex length) {
  CFRange range = {location, length};
  return range;
}

enum { kCFCompareLessThan = -1, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };
typedef CFOptionFlags CFStringCompareFlags;
enum { kCFCompareCaseInsensitive = 1 };

// Text encodings by their Core Foundation number. The ones listed are the ones that convert; any other number fails
// every conversion. Shift JIS is JIS X 0213 (iconv SHIFT_JISX0213; the bytes 0x5C and 0x7E are read as backslash and
// tilde). All are strict: no transliteration, no loss.
typedef UInt32 CFStringEncoding;
enum {
  kCFStringEncodingMacRoman = 0x0000,
  kCFStringEncodingWindowsLatin1 = 0x0500,
  kCFStringEncodingISOLatin1 = 0x0201,
  kCFStringEncodingASCII = 0x0600,
  kCFStringEncodingShiftJIS_X0213 = 0x0628,
  kCFStringEncodingUTF8 = 0x08000100,
  kCFStringEncodingUTF16LE = 0x14000100
};

#define kCFAllocatorDefault ((CFAllocatorRef)0)

CF_EXPORT const CFBooleanRef kCFBooleanTrue;
CF_EXPORT const CFBooleanRef kCFBooleanFalse;

// Objects. CFRetain and CFRelease take any object but not NULL, as on macOS; here NULL is let through.
CF_EXPORT CFTypeRef CFRetain(CFTypeRef object);
CF_EXPORT void CFRelease(CFTypeRef object);
CF_EXPORT Boolean CFEqual(CFTypeRef one, CFTypeRef other);
// One of the five below; 0 for any other object.
CF_EXPORT CFTypeID CFGetTypeID(CFTypeRef object);
CF_EXPORT CFTypeID CFStringGetTypeID(void);
CF_EXPORT CFTypeID CFArrayGetTypeID(void);
CF_EXPORT CFTypeID CFDictionaryGetTypeID(void);
CF_EXPORT CFTypeID CFBooleanGetTypeID(void);
CF_EXPORT CFTypeID CFURLGetTypeID(void);

// Strings.

// A constant string: lives as long as the process. The text is UTF-8.
#define CFSTR(text) __CFStringMakeConstantString("" text "")
CF_EXPORT CFStringRef __CFStringMakeConstantString(const char *text);

CF_EXPORT CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string);
// NULL when text is not valid in the encoding.
CF_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char *text, CFStringEncoding encoding);
// length in bytes; NULL when the bytes are not valid in the encoding. is_external: a byte order mark is left out.
CF_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8 *bytes, CFIndex length,
                                              CFStringEncoding encoding, Boolean is_external);
// options is not read and should be NULL. %@ takes an object, %s UTF-8 text. NULL for a malformed format (%n and %ls
// are not known) and for a %s that is not UTF-8.
CF_EXPORT CFStringRef CFStringCreateWithFormat(CFAllocatorRef allocator, CFDictionaryRef options, CFStringRef format,
                                               ...);
// In UTF-16 code units.
CF_EXPORT CFIndex CFStringGetLength(CFStringRef string);
// 0 past the end.
CF_EXPORT UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);
// Fills buffer with the text and a NUL; size in bytes. False, with buffer unspecified, when the text does not convert
// or does not fit.
CF_EXPORT Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex size, CFStringEncoding encoding);
// Converts as many whole characters of range as are convertible and fit into max_length bytes, and returns how many
// UTF-16 units those were; *used_length (may be NULL) becomes the number of bytes. loss_byte 0: the conversion ends at
// the first character that the encoding lacks; otherwise that byte stands in for it. buffer NULL only counts. A
// letter and its combining mark that the encoding writes as one code are one character. is_external has no effect.
CF_EXPORT CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 loss_byte,
                                   Boolean is_external, UInt8 *buffer, CFIndex max_length, CFIndex *used_length);
// By UTF-16 units, without regard to the language; NULL comes before every string.
CF_EXPORT CFComparisonResult CFStringCompare(CFStringRef one, CFStringRef other, CFStringCompareFlags flags);

// Containers, read only. NULL for an index or a key that is not there.
CF_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
CF_EXPORT const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
CF_EXPORT const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key);

// URLs.

// NULL when text is no URL (a space or a character outside ASCII is not escaped).
CF_EXPORT CFURLRef CFURLCreateWithString(CFAllocatorRef allocator, CFStringRef text, CFURLRef base);
// The text that it was made from.
CF_EXPORT CFStringRef CFURLGetString(CFURLRef url);
CF_EXPORT CFStringRef CFURLCopyScheme(CFURLRef url);
// As it is written, percent escapes included, an IPv6 address without its brackets; NULL when there is none.
CF_EXPORT CFStringRef CFURLCopyHostName(CFURLRef url);
// The file's path as the system takes it, with a NUL; size in bytes. False when url is no file URL or does not fit.
CF_EXPORT Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolve_against_base, UInt8 *buffer,
                                                   CFIndex size);

// Bundles. Only bundles that the process has opened are found by identifier.
CF_EXPORT CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier);
CF_EXPORT CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
CF_EXPORT CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle);
// Not localised: InfoPlist.strings is not read.
CF_EXPORT CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);

#ifdef __cplusplus
}
#endif
