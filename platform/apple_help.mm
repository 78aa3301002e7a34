#include <Carbon/Carbon.h>
#include <DirectFaxHelp.h>

#include "platform/bridge.h"
#include "platform/help_books.h"
#include "platform/launch.h"
#include "platform/url_text.h"

#include <cstdlib>
#include <map>

using fax::pooled;

namespace {

struct RegisteredBook {
  fax::HelpBook book;
  NSBundle *bundle;  // retained, for good
};

// Books by name, and the host's viewer: touched on the main thread only.
std::map<std::u16string, RegisteredBook> &shelf() {
  static auto &books = *new std::map<std::u16string, RegisteredBook>;
  return books;
}

DirectFaxHelpViewer the_viewer = nullptr;
void *the_viewer_context = nullptr;

NSString *text_of(CFTypeRef value) { return fax::object_of<NSString>(value, [NSString class]); }

// The bytes of a path; empty when it has none in this locale.
std::string path_bytes(NSString *path) {
  char const *bytes = [path length] == 0 ? nullptr : [path fileSystemRepresentation];
  return bytes == nullptr ? "" : bytes;
}

// The language that the bundle's texts are in, so that pages name buttons as they are called; then those of the user.
std::vector<std::string> languages_for(NSBundle *bundle) {
  std::vector<std::string> languages;
  NSString *texts = [[bundle pathForResource:@"Localizable" ofType:@"strings"] stringByDeletingLastPathComponent];
  if ([[texts pathExtension] isEqualToString:@"lproj"])
    if (auto name = fax::to_utf8([[texts lastPathComponent] stringByDeletingPathExtension]))
      languages.push_back(std::move(*name));
  NSArray *names = [[NSUserDefaults standardUserDefaults] stringArrayForKey:@"NSLanguages"];
  for (NSUInteger index = 0; index < [names count]; ++index)
    if (auto name = fax::to_utf8([names objectAtIndex:index])) languages.push_back(std::move(*name));
  return languages;
}

// nullopt when the book has no such page in any language.
std::optional<std::string> page_of(RegisteredBook const &shelved, std::string const &page) {
  auto const found = fax::find_help_page(shelved.book, page, languages_for(shelved.bundle));
  return found ? std::optional{found->native()} : std::nullopt;
}

NSURL *url_of(std::string const &file) {
  NSString *path = [[NSFileManager defaultManager] stringWithFileSystemRepresentation:file.data() length:file.size()];
  return path == nil ? nil : [NSURL fileURLWithPath:path isDirectory:NO];
}

bool show_in_viewer(std::string const &file, CFStringRef anchor) {
  if (the_viewer == nullptr) return false;
  NSURL *page = url_of(file);
  return page != nil && fax::fenced("help viewer", false, [&] {
    return the_viewer(reinterpret_cast<CFURLRef>(page), anchor, the_viewer_context) != 0;
  });
}

bool is_set(char const *variable) {
  char const *value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

bool show_in_browser(std::string const &file, std::string const &anchor) {
  if (!is_set("DISPLAY") && !is_set("WAYLAND_DISPLAY")) return false;
  return fax::launch({"xdg-open", fax::file_url(file, anchor)}) == 0;
}

}  // namespace

void DirectFaxSetHelpViewer(DirectFaxHelpViewer viewer, void *context) {
  the_viewer = viewer;
  the_viewer_context = context;
}

CFArrayRef DirectFaxCopyHelpBooks(void) {
  NSMutableArray *pages = [NSMutableArray new];
  pooled(__func__, false, [&] {
    for (auto const &[name, shelved] : shelf())
      if (auto const page = page_of(shelved, ""))
        if (NSURL *url = url_of(*page)) [pages addObject:url];
    return true;
  });
  return reinterpret_cast<CFArrayRef>(pages);
}

OSStatus AHRegisterHelpBookWithURL(CFURLRef url) {
  return pooled(__func__, kAHInternalErr, [&]() -> OSStatus {
    NSURL *place = fax::object_of<NSURL>(url, [NSURL class]);
    if (![place isFileURL]) return kAHParamErr;
    NSBundle *bundle = [NSBundle bundleWithPath:[place path]];
    if (bundle == nil) return kAHParamErr;
    NSString *name = text_of([[bundle infoDictionary] objectForKey:@"CFBundleHelpBookName"]);
    NSString *folder = text_of([[bundle infoDictionary] objectForKey:@"CFBundleHelpBookFolder"]);
    std::string const resources = path_bytes([bundle resourcePath]);
    if ([name length] == 0 || [folder length] == 0 || resources.empty()) return kAHNoSuchBook;
    RegisteredBook &shelved = shelf()[fax::to_units(name)];
    [shelved.bundle release];
    shelved = {fax::HelpBook{resources, path_bytes(folder)}, [bundle retain]};
    return noErr;
  });
}

OSStatus AHGotoPage(CFStringRef book, CFStringRef path, CFStringRef anchor) {
  return pooled(__func__, kAHInternalErr, [&]() -> OSStatus {
    bool const wrong = text_of(book) == nil || (path != nullptr && text_of(path) == nil) ||
                       (anchor != nullptr && text_of(anchor) == nil);
    if (wrong) return kAHParamErr;
    auto const found = shelf().find(fax::to_units(text_of(book)));
    if (found == shelf().end()) return kAHNoSuchBook;
    auto const page = page_of(found->second, path_bytes(text_of(path)));
    if (!page) return kAHNoSuchBook;
    if (show_in_viewer(*page, anchor)) return noErr;
    return show_in_browser(*page, fax::to_utf8(text_of(anchor)).value_or("")) ? noErr : kAHInternalErr;
  });
}
