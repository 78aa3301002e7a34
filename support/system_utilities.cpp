#include "support/system_utilities.h"

#include <sys/sysctl.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <grp.h>
#include <optional>
#include <pwd.h>
#include <string>
#include <unistd.h>

namespace {

constexpr UInt32 kNotComputed = 0xFFFFFFFF;
UInt32 minor_version = kNotComputed;
UInt32 version_word = kNotComputed;

std::optional<std::string> kernel_release() {
  constexpr size_t kRelease = 16;
  std::array<char, kRelease + 1> release{};
  int name[] = {CTL_KERN, KERN_OSRELEASE};
  size_t length = kRelease;
  if (sysctl(name, 2, release.data(), &length, nullptr, 0) != 0) return std::nullopt;
  return release.data();
}

// "11.4.2" -> 0x1074: minor version and bug fix in one hexadecimal digit each.
UInt32 word_of(std::optional<std::string> const &release) {
  UInt32 word = 0x1000;
  if (!release) return word;
  long const first = std::strtol(release->c_str(), nullptr, 10);
  if (first > 0) word += (static_cast<UInt32>(first) * 16 + 4032) & 0xFF0;
  size_t const dot = release->find('.');
  long const second = dot == std::string::npos ? 0 : std::strtol(release->c_str() + dot + 1, nullptr, 10);
  if (second > 0) word += static_cast<UInt32>(second) & 15;
  return word;
}

UInt32 digit(UInt32 word, int place) { return word >> 4 * place & 15; }

}  // namespace

SInt32 getOSMinorVersion(void) {
  if (minor_version == kNotComputed) {
    auto const release = kernel_release();
    long const first = release ? std::strtol(release->c_str(), nullptr, 10) : 0;
    if (first > 0) minor_version = static_cast<UInt32>(first - 4);
  }
  return static_cast<SInt32>(minor_version);
}

SInt32 Gestalt_ALT(OSType selector, UInt32 *result) {
  if (version_word == kNotComputed) version_word = word_of(kernel_release());
  UInt32 answer = 0;
  switch (selector) {
    case 0x73797331:  // 'sys1'
      answer = digit(version_word, 3) * 10 + digit(version_word, 2);
      break;
    case 0x73797332:  // 'sys2'
      answer = digit(version_word, 1);
      break;
    case 0x73797333:  // 'sys3'
      answer = digit(version_word, 0);
      break;
    case 0x73797376:  // 'sysv'
      answer = version_word;
      break;
    default:
      std::fprintf(stderr, "Gestalt_ALT : selector '%x' not supported.\n", selector);
      return -1;
  }
  if (result == nullptr) return -1;
  *result = answer;
  return 0;
}

Boolean IsUserAdmin(void) {
  passwd const *entry = getpwuid(getuid());
  if (entry == nullptr || entry->pw_name == nullptr) return false;
  // A copy: the next look-up overwrites the entry.
  std::array<char, 1024> name{};
  std::strncpy(name.data(), entry->pw_name, name.size() - 1);
  return CheckUserGroups(name.data(), "admin");
}

Boolean CheckUserGroups(char const *user, char const *group) {
  if (user == nullptr || group == nullptr) return false;
  passwd const *user_entry = getpwnam(user);
  if (user_entry == nullptr) return false;
  gid_t const primary = user_entry->pw_gid;
  bool is_member = false;
  setgrent();
  while (::group const *entry = getgrent()) {
    if (std::strcmp(entry->gr_name, group) != 0) continue;
    if (entry->gr_gid == primary) return true;
    for (char *const *member = entry->gr_mem; member != nullptr && *member != nullptr; ++member)
      if (std::strcmp(*member, user) == 0) is_member = true;
  }
  return is_member;
}
