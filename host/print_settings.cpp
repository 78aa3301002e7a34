#include "host/print_settings.h"

#include <algorithm>
#include <optional>
#include <string>

namespace fax::host {
namespace {

std::string utf8_bytes(CFStringRef text) {
  CFRange const all = CFRangeMake(0, CFStringGetLength(text));
  CFIndex size = 0;
  CFStringGetBytes(text, all, kCFStringEncodingUTF8, '?', false, nullptr, 0, &size);
  std::string bytes(static_cast<std::size_t>(size), '\0');
  CFStringGetBytes(text, all, kCFStringEncodingUTF8, '?', false, reinterpret_cast<UInt8 *>(bytes.data()), size, &size);
  return bytes;
}

std::optional<std::string> value_text(CFTypeRef value) {
  if (!value) return std::nullopt;
  if (CFGetTypeID(value) == CFStringGetTypeID()) return utf8_bytes(static_cast<CFStringRef>(value));
  if (CFGetTypeID(value) == CFBooleanGetTypeID()) return CFEqual(value, kCFBooleanTrue) ? "true" : "false";
  return std::nullopt;
}

CFStringRef make_string(std::string const &text) {
  return CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<UInt8 const *>(text.data()),
                                 static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, false);
}

}  // namespace

std::vector<Setting> read_settings(PMPrintSettings settings) {
  std::vector<Setting> found;
  CFArrayRef keys = nullptr;
  if (!settings || PMPrintSettingsCopyKeys(settings, &keys) != noErr || !keys) return found;
  for (CFIndex at = 0; at < CFArrayGetCount(keys); ++at) {
    auto key = static_cast<CFStringRef>(CFArrayGetValueAtIndex(keys, at));
    CFTypeRef value = nullptr;
    if (PMPrintSettingsGetValue(settings, key, &value) != noErr) continue;
    if (auto text = value_text(value)) found.push_back({utf8_bytes(key), *text});
  }
  CFRelease(keys);
  return found;
}

void restore_settings(PMPrintSettings settings, std::vector<Setting> const &before) {
  for (auto const &now : read_settings(settings)) {
    auto const was = std::find_if(before.begin(), before.end(), [&](auto const &old) { return old.key == now.key; });
    if (was != before.end() && was->value == now.value) continue;
    CFStringRef key = make_string(now.key);
    CFStringRef value = was == before.end() ? nullptr : make_string(was->value);
    PMPrintSettingsSetValue(settings, key, value, false);
    if (value) CFRelease(value);
    CFRelease(key);
  }
}

}  // namespace fax::host
