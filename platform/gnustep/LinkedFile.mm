// Atomic writing (-[NSData writeToFile:options:error:] and all that ends there) to a symbolic link: the file that the link
// leads to is replaced, and the link stays; the toolkit puts a file in the place of the link.
#import <Foundation/Foundation.h>

#include "platform/gnustep/repair.h"

#include <cstdlib>
#include <cstring>
#include <memory>
#include <sys/stat.h>

namespace {

struct Free {
  void operator()(char *text) const { std::free(text); }
};

// The file behind a link to one; any other path as it is.
NSString *real_file(NSString *path) {
  NSFileManager *manager = [NSFileManager defaultManager];
  char const *own = [path length] == 0 ? nullptr : [manager fileSystemRepresentationWithPath:path];
  struct stat status;
  if (own == nullptr || lstat(own, &status) != 0 || !S_ISLNK(status.st_mode)) return path;
  std::unique_ptr<char, Free> const real(realpath(own, nullptr));
  return real ? [manager stringWithFileSystemRepresentation:real.get() length:std::strlen(real.get())] : path;
}

fax::Repair<BOOL(NSString *, NSUInteger, NSError **)> write_to_file{
    "NSData", "writeToFile:options:error:",
    [](id self, SEL command, NSString *path, NSUInteger options, NSError **error) -> BOOL {
      if ((options & NSDataWritingAtomic) != 0) path = real_file(path);
      return write_to_file(self, command, path, options, error);
    }};

}  // namespace
