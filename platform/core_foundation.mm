#include <CoreFoundation/CoreFoundation.h>

#include "platform/bridge.h"
#include "platform/format.h"
#include "platform/text_encoding.h"
#include "platform/url_text.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <mutex>

using fax::fenced;
using fax::pooled;

namespace {

enum TypeNumber : CFTypeID { kOtherType, kStringType, kArrayType, kDictionaryType, kBooleanType, kUrlType };

id object(CFTypeRef reference) { return static_cast<id>(const_cast<void *>(reference)); }
NSString *text(CFStringRef reference) { return static_cast<NSString *>(object(reference)); }
NSURL *url_of(CFURLRef reference) { return static_cast<NSURL *>(object(reference)); }
NSBundle *bundle_of(CFBundleRef reference) { return reinterpret_cast<NSBundle *>(reference); }

CFStringRef string_reference(NSString *string) { return reinterpret_cast<CFStringRef>(string); }
CFURLRef url_reference(NSURL *url) { return reinterpret_cast<CFURLRef>(url); }

CFStringRef decoded(std::string_view bytes, CFStringEncoding encoding) {
  auto const units = fax::decode_units(bytes, encoding);
  return units ? string_reference(fax::new_string(*units)) : nullptr;
}

// bytes behind the byte order mark that a file in the encoding may begin with.
std::string_view without_mark(std::string_view bytes, CFStringEncoding encoding) {
  std::string_view const mark = encoding == kCFStringEncodingUTF8      ? "\xEF\xBB\xBF"
                                : encoding == kCFStringEncodingUTF16LE ? "\xFF\xFE"
                                                                       : "";
  if (bytes.starts_with(mark)) bytes.remove_prefix(mark.size());
  return bytes;
}

bool fits(std::string_view bytes, char *buffer, CFIndex size) {
  if (buffer == nullptr || size < 1 || bytes.size() > std::size_t(size) - 1) return false;
  std::memcpy(buffer, bytes.data(), bytes.size());
  buffer[bytes.size()] = '\0';
  return true;
}

}  // namespace

CFTypeRef CFRetain(CFTypeRef reference) {
  return fenced(__func__, reference, [&]() -> CFTypeRef { return [object(reference) retain]; });
}

void CFRelease(CFTypeRef reference) {
  fenced(__func__, false, [&] {
    [object(reference) release];
    return true;
  });
}

Boolean CFEqual(CFTypeRef one, CFTypeRef other) {
  if (one == other) return true;
  if (one == nullptr || other == nullptr) return false;
  return pooled(__func__, false, [&] { return [object(one) isEqual:object(other)] != NO; });
}

CFTypeID CFGetTypeID(CFTypeRef reference) {
  return fenced(__func__, kOtherType, [&] {
    id const own = object(reference);
    if ([own isKindOfClass:[NSString class]]) return kStringType;
    if ([own isKindOfClass:[NSArray class]]) return kArrayType;
    if ([own isKindOfClass:[NSDictionary class]]) return kDictionaryType;
    if ([own isKindOfClass:[object(kCFBooleanTrue) class]]) return kBooleanType;
    if ([own isKindOfClass:[NSURL class]]) return kUrlType;
    return kOtherType;
  });
}

CFTypeID CFStringGetTypeID(void) { return kStringType; }
CFTypeID CFArrayGetTypeID(void) { return kArrayType; }
CFTypeID CFDictionaryGetTypeID(void) { return kDictionaryType; }
CFTypeID CFBooleanGetTypeID(void) { return kBooleanType; }
CFTypeID CFURLGetTypeID(void) { return kUrlType; }

CFStringRef __CFStringMakeConstantString(const char *constant) {
  if (constant == nullptr) return nullptr;
  // Never freed: the strings outlive every caller. Keyed by the text, since the literal may go with its bundle.
  static auto &made = *new std::map<std::string, CFStringRef, std::less<>>;
  static std::mutex lock;
  return pooled(__func__, nullptr, [&]() -> CFStringRef {
    std::lock_guard const hold(lock);
    auto found = made.find(std::string_view(constant));
    if (found == made.end()) found = made.emplace(constant, decoded(constant, kCFStringEncodingUTF8)).first;
    return found->second;
  });
}

CFStringRef CFStringCreateCopy(CFAllocatorRef, CFStringRef string) {
  return pooled(__func__, nullptr, [&] { return string_reference([text(string) copy]); });
}

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char *bytes, CFStringEncoding encoding) {
  if (bytes == nullptr) return nullptr;
  return pooled(__func__, nullptr, [&] { return decoded(bytes, encoding); });
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8 *bytes, CFIndex length, CFStringEncoding encoding,
                                    Boolean is_external) {
  if (length < 0 || (bytes == nullptr && length > 0)) return nullptr;
  std::string_view view(reinterpret_cast<char const *>(bytes), std::size_t(length));
  if (is_external) view = without_mark(view, encoding);
  return pooled(__func__, nullptr, [&] { return decoded(view, encoding); });
}

CFStringRef CFStringCreateWithFormat(CFAllocatorRef, CFDictionaryRef, CFStringRef format, ...) {
  if (format == nullptr) return nullptr;
  std::va_list arguments;
  va_start(arguments, format);
  // A va_list cannot be captured where it is an array.
  struct {
    std::va_list list;
  } given;
  va_copy(given.list, arguments);
  CFStringRef const made = pooled(__func__, nullptr, [&]() -> CFStringRef {
    auto const units = fax::format_text(fax::to_units(text(format)), given.list, [](void const *reference) {
      return fax::to_units([object(reference) description]);
    });
    return units ? string_reference(fax::new_string(*units)) : nullptr;
  });
  va_end(given.list);
  va_end(arguments);
  return made;
}

CFIndex CFStringGetLength(CFStringRef string) {
  return fenced(__func__, 0, [&] { return CFIndex([text(string) length]); });
}

UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index) {
  return pooled(__func__, 0, [&] {
    bool const there = index >= 0 && NSUInteger(index) < [text(string) length];
    return there ? UniChar([text(string) characterAtIndex:NSUInteger(index)]) : UniChar(0);
  });
}

Boolean CFStringGetCString(CFStringRef string, char *buffer, CFIndex size, CFStringEncoding encoding) {
  if (string == nullptr) return false;
  return pooled(__func__, false, [&] {
    auto const bytes = fax::encode_units(fax::to_units(text(string)), encoding);
    return bytes && fits(*bytes, buffer, size);
  });
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8 loss_byte,
                         Boolean, UInt8 *buffer, CFIndex max_length, CFIndex *used_length) {
  if (used_length != nullptr) *used_length = 0;
  if (string == nullptr || range.location < 0 || range.length < 0) return 0;
  return pooled(__func__, 0, [&]() -> CFIndex {
    std::u16string const units = fax::to_units(text(string));
    if (std::size_t(range.location) > units.size()) return 0;
    std::size_t const limit =
        buffer == nullptr ? std::numeric_limits<std::size_t>::max() : std::size_t(std::max<CFIndex>(max_length, 0));
    auto const part = fax::encode_part(std::u16string_view(units).substr(std::size_t(range.location),
                                                                         std::size_t(range.length)),
                                       encoding, loss_byte != 0 ? std::optional(loss_byte) : std::nullopt, limit);
    if (buffer != nullptr) std::memcpy(buffer, part.bytes.data(), part.bytes.size());
    if (used_length != nullptr) *used_length = CFIndex(part.bytes.size());
    return CFIndex(part.units);
  });
}

CFComparisonResult CFStringCompare(CFStringRef one, CFStringRef other, CFStringCompareFlags flags) {
  if (one == nullptr || other == nullptr) return CFComparisonResult(one != nullptr) - (other != nullptr);
  return pooled(__func__, kCFCompareLessThan, [&] {
    NSUInteger const options =
        NSLiteralSearch | ((flags & kCFCompareCaseInsensitive) != 0 ? NSUInteger(NSCaseInsensitiveSearch) : 0);
    return CFComparisonResult([text(one) compare:text(other) options:options]);
  });
}

CFIndex CFArrayGetCount(CFArrayRef array) {
  return fenced(__func__, 0, [&] { return CFIndex([static_cast<NSArray *>(object(array)) count]); });
}

const void *CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
  return fenced(__func__, nullptr, [&]() -> void const * {
    NSArray *own = static_cast<NSArray *>(object(array));
    return index >= 0 && NSUInteger(index) < [own count] ? [own objectAtIndex:NSUInteger(index)] : nil;
  });
}

const void *CFDictionaryGetValue(CFDictionaryRef dictionary, const void *key) {
  if (key == nullptr) return nullptr;
  return fenced(__func__, nullptr, [&]() -> void const * {
    return [static_cast<NSDictionary *>(object(dictionary)) objectForKey:object(key)];
  });
}

CFURLRef CFURLCreateWithString(CFAllocatorRef, CFStringRef string, CFURLRef base) {
  if (string == nullptr) return nullptr;
  return pooled(__func__, nullptr, [&]() -> CFURLRef {
    return url_reference([[NSURL URLWithString:text(string) relativeToURL:url_of(base)] retain]);
  });
}

CFStringRef CFURLGetString(CFURLRef url) {
  // The string is the URL's own, so it may leave the fence without a retain.
  return fenced(__func__, nullptr, [&] { return string_reference([url_of(url) relativeString]); });
}

CFStringRef CFURLCopyScheme(CFURLRef url) {
  return pooled(__func__, nullptr, [&] { return string_reference([[url_of(url) scheme] retain]); });
}

CFStringRef CFURLCopyHostName(CFURLRef url) {
  return pooled(__func__, nullptr, [&]() -> CFStringRef {
    auto const address = fax::to_utf8([url_of(url) absoluteString]);
    auto const host = address ? fax::url_host(*address) : std::nullopt;
    return host ? decoded(*host, kCFStringEncodingUTF8) : nullptr;
  });
}

Boolean CFURLGetFileSystemRepresentation(CFURLRef url, Boolean resolve_against_base, UInt8 *buffer, CFIndex size) {
  return pooled(__func__, false, [&] {
    NSURL *own = url_of(url);
    if (![own isFileURL]) return false;
    NSString *path = resolve_against_base ? [[own absoluteURL] path] : [own relativePath];
    if ([path length] == 0) return false;
    return fits([path fileSystemRepresentation], reinterpret_cast<char *>(buffer), size);
  });
}

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
  if (identifier == nullptr) return nullptr;
  // Foundation keeps every bundle that it has opened.
  return pooled(__func__, nullptr,
                [&] { return reinterpret_cast<CFBundleRef>([NSBundle bundleWithIdentifier:text(identifier)]); });
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle) {
  return pooled(__func__, nullptr, [&] { return string_reference([bundle_of(bundle) bundleIdentifier]); });
}

CFURLRef CFBundleCopyBundleURL(CFBundleRef bundle) {
  return pooled(__func__, nullptr, [&]() -> CFURLRef {
    NSString *path = [bundle_of(bundle) bundlePath];
    return path == nil ? nullptr : url_reference([[NSURL alloc] initFileURLWithPath:path isDirectory:YES]);
  });
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
  if (key == nullptr) return nullptr;
  return pooled(__func__, nullptr,
                [&]() -> CFTypeRef { return [[bundle_of(bundle) infoDictionary] objectForKey:text(key)]; });
}
