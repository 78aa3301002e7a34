// Core Foundation strings of tests.
#pragma once

#include "support/cf_owned.h"

#include <optional>
#include <string>

using OwnedString = fax::CFOwned<CFStringRef>;

inline OwnedString make_string(std::string const &utf8) {
  return OwnedString(CFStringCreateWithCString(kCFAllocatorDefault, utf8.c_str(), kCFStringEncodingUTF8));
}

// The text in UTF-8; nullopt for NULL.
inline std::optional<std::string> text_of(CFStringRef string) {
  if (string == nullptr) return std::nullopt;
  std::string text(4 * static_cast<std::size_t>(CFStringGetLength(string)) + 1, '\0');
  if (!CFStringGetCString(string, text.data(), static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8))
    return "(no text)";
  return text.c_str();
}
