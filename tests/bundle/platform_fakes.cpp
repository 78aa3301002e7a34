#include "platform_fakes.h"

#include <sys/sysctl.h>

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

namespace {

std::string text_of(CFStringRef string) {
  if (string == nullptr) return "";
  char text[512] = "";
  CFStringGetCString(string, text, sizeof text, kCFStringEncodingUTF8);
  return text;
}

template <typename Function> Function *platform_own(char const *name) {
  return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}

}  // namespace

PlatformFakes &fakes() {
  static PlatformFakes the_fakes;
  return the_fakes;
}

OSStatus PMPrintSettingsSetValue(PMPrintSettings settings, CFStringRef key, CFTypeRef value, Boolean locked) {
  int const number = int(fakes().stored_keys.size());
  fakes().stored_keys.push_back(text_of(key));
  if (fakes().first_failing_store >= 0 && number >= fakes().first_failing_store &&
      number <= fakes().last_failing_store)
    return kPMInvalidParameter;
  static auto *const own = platform_own<decltype(PMPrintSettingsSetValue)>("PMPrintSettingsSetValue");
  return own(settings, key, value, locked);
}

OSStatus PMSessionGetDestinationType(PMPrintSession session, PMPrintSettings settings, PMDestinationType *type) {
  if (fakes().destination_status != noErr) return fakes().destination_status;
  static auto *const own = platform_own<decltype(PMSessionGetDestinationType)>("PMSessionGetDestinationType");
  return own(session, settings, type);
}

OSStatus PMPrinterCopyDeviceURI(PMPrinter, CFURLRef *uri) {
  *uri = nullptr;
  if (fakes().device_uri.empty()) return kPMKeyNotFound;
  CFStringRef const text =
      CFStringCreateWithCString(kCFAllocatorDefault, fakes().device_uri.c_str(), kCFStringEncodingUTF8);
  *uri = CFURLCreateWithString(kCFAllocatorDefault, text, nullptr);
  CFRelease(text);
  return *uri != nullptr ? noErr : kPMKeyNotFound;
}

OSStatus AHRegisterHelpBookWithURL(CFURLRef url) {
  fakes().registered_books += url != nullptr;
  return noErr;
}

OSStatus AHGotoPage(CFStringRef book, CFStringRef path, CFStringRef anchor) {
  fakes().help_pages.push_back(text_of(book) + "|" + text_of(path) + "|" + text_of(anchor));
  return noErr;
}

int sysctl(int *, u_int, void *old, size_t *old_length, void *, size_t) {
  char const *const given = std::getenv("DIRECTFAX_TEST_KERNEL");
  std::string const release = given != nullptr ? given : "9.8.0";
  if (release.size() + 1 > *old_length) return -1;
  std::memcpy(old, release.c_str(), release.size() + 1);
  return 0;
}
