#include "support/help.h"

#include "support/cf_owned.h"
#include "support/ppd_attributes.h"

#include <Carbon/Carbon.h>

namespace {

using fax::CFOwned;

char const *attribute_value(ppd_file_t *ppd, char const *keyword) {
  ppd_attr_t const *attribute = ppdFindAttr_ALT(ppd, keyword, nullptr);
  return attribute != nullptr ? attribute->value : nullptr;
}

// The value as a string; null when it is absent or anything else.
CFStringRef as_string(CFTypeRef value) {
  return value != nullptr && CFGetTypeID(value) == CFStringGetTypeID() ? static_cast<CFStringRef>(value) : nullptr;
}

CFStringRef bundle_book(CFBundleRef bundle) {
  return as_string(CFBundleGetValueForInfoDictionaryKey(bundle, CFSTR("CFBundleHelpBookName")));
}

// What the information dictionary holds under the attribute's value; null without either.
CFTypeRef book_of_attribute(CFBundleRef bundle, char const *value) {
  if (value == nullptr) return nullptr;
  CFOwned<CFStringRef> const key(CFStringCreateWithCString(kCFAllocatorDefault, value, kCFStringEncodingASCII));
  return key ? CFBundleGetValueForInfoDictionaryKey(bundle, key.get()) : nullptr;
}

// What it holds under the name of the bundle's book, else that name.
CFTypeRef book_of_bundle(CFBundleRef bundle) {
  CFStringRef const name = bundle_book(bundle);
  if (name == nullptr) return nullptr;
  CFTypeRef const named = CFBundleGetValueForInfoDictionaryKey(bundle, name);
  return named != nullptr ? named : name;
}

}  // namespace

void RegisterHelpBook(CFBundleRef bundle) {
  if (bundle == nullptr) return;
  CFOwned<CFURLRef> const url(CFBundleCopyBundleURL(bundle));
  if (url) AHRegisterHelpBookWithURL(url.get());
}

void GotoHelpPage(CFBundleRef bundle, CFStringRef page, CFStringRef anchor) {
  if (bundle == nullptr) return;
  if (CFStringRef const book = bundle_book(bundle)) AHGotoPage(book, page, anchor);
}

void GotoHelpPage2_105(ppd_file_t *ppd, char const *keyword, CFBundleRef bundle, CFStringRef page,
                       CFStringRef anchor) {
  if (bundle == nullptr) return;
  CFTypeRef named = book_of_attribute(bundle, attribute_value(ppd, keyword));
  if (named == nullptr) named = book_of_bundle(bundle);
  if (CFStringRef const book = as_string(named)) AHGotoPage(book, page, anchor);
}

void GotoHelpPage2_106(ppd_file_t *ppd, char const *keyword, CFBundleRef bundle, CFStringRef folder, CFStringRef page,
                       CFStringRef anchor) {
  if (bundle == nullptr || page == nullptr) return;
  char const *const printer_folder = attribute_value(ppd, keyword);
  CFOwned<CFStringRef> const path(
      printer_folder != nullptr
          ? CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%s/%@"), printer_folder, page)
          : CFStringCreateWithFormat(kCFAllocatorDefault, nullptr, CFSTR("%@/%@"), folder, page));
  if (path) GotoHelpPage(bundle, path.get(), anchor);
}
