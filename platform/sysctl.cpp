#include <sys/sysctl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <sys/utsname.h>

int sysctl(int *name, u_int name_length, void *old, size_t *old_length, void *new_value, size_t) {
  if (name == nullptr || name_length != 2 || name[0] != CTL_KERN || name[1] != KERN_OSRELEASE) {
    errno = ENOENT;
    return -1;
  }
  if (new_value != nullptr) {
    errno = EPERM;
    return -1;
  }
  if (old != nullptr && old_length == nullptr) {
    errno = EFAULT;
    return -1;
  }
  utsname system;
  if (uname(&system) != 0) return -1;
  std::string_view const release(system.release);
  size_t const digits = std::min(release.find_first_not_of("0123456789."), release.size());
  system.release[digits] = '\0';
  if (old_length == nullptr) return 0;
  size_t const needed = digits + 1;
  size_t const room = *old_length;
  *old_length = needed;
  if (old == nullptr) return 0;
  std::memcpy(old, system.release, std::min(room, needed));
  if (room < needed) {
    *old_length = room;
    errno = ENOMEM;
    return -1;
  }
  return 0;
}
